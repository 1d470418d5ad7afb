#include "toolkit/list_view.h"

#include "toolkit/key_codes.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QUrl>

namespace
{

constexpr std::int16_t returnKey = 13;

// The path's own bytes, also where they are no valid text.
Text pathOf(const QUrl& url)
{
    const QByteArray path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8());
    return {path.constData(), static_cast<std::size_t>(path.size())};
}

std::vector<Text> filesIn(const QMimeData& data)
{
    std::vector<Text> paths;
    for (const auto& url : data.urls())
        if (url.isLocalFile())
            paths.push_back(pathOf(url));
    return paths;
}

// As copies, whatever the other program offers first: a move would delete its files. What brings no files, a
// link to the web for one, is turned away.
bool offerCopy(QDropEvent& event)
{
    const bool takes =
        !filesIn(*event.mimeData()).empty() && event.possibleActions().testFlag(Qt::CopyAction);
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(takes);
    return takes;
}

}

namespace ctl
{

ListView::ListView(ListBox& list) : list_(list)
{
    setUniformItemSizes(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setTextElideMode(Qt::ElideMiddle);
}

void ListView::showSelection(std::int32_t index)
{
    quietly([&] {
        const QModelIndex row = model()->index(index, 0);
        if (row.isValid())
            selectionModel()->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect);
        else
            selectionModel()->clear();
    });
}

// Whatever the pointer or a key does, the view only moves its current row: the list box hears of that and
// answers by `showSelection`.
QItemSelectionModel::SelectionFlags ListView::selectionCommand(const QModelIndex&, const QEvent*) const
{
    return QItemSelectionModel::NoUpdate;
}

void ListView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QListView::currentChanged(current, previous);
    if (!quiet_ && current.isValid())
        list_.chosen(current.row());
}

// The left button alone points at rows: any other would change what the next key or button works on.
void ListView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QModelIndex row = indexAt(event->position().toPoint());
    quietly([&] { QListView::mousePressEvent(event); });
    if (row.isValid())
        list_.chosen(row.row());
}

void ListView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QModelIndex row = indexAt(event->position().toPoint());
    if (row.isValid() && row.row() != list_.ListIndex())
        list_.chosen(row.row());
    list_.fromOutside([this] { list_.DblClick.raise(); });
}

void ListView::keyPressEvent(QKeyEvent* event)
{
    const auto code = keyCodeOf(*event);
    if (code != 0)
        list_.fromOutside([&] { list_.KeyDown.raise(code, shiftStateOf(*event)); });
    if (code == returnKey && !event->isAutoRepeat())
        list_.fromOutside([this] { list_.DblClick.raise(); });
    QListView::keyPressEvent(event);
}

// Getting the focus selects nothing, and scrolls nowhere: a click's place must still lie on the row that the
// user saw there.
void ListView::focusInEvent(QFocusEvent* event)
{
    quietly([&] { QListView::focusInEvent(event); });
    showSelection(list_.ListIndex());
}

void ListView::dragEnterEvent(QDragEnterEvent* event) { offerCopy(*event); }

void ListView::dragMoveEvent(QDragMoveEvent* event) { offerCopy(*event); }

void ListView::dropEvent(QDropEvent* event)
{
    if (!offerCopy(*event))
        return;
    const DroppedFiles files(filesIn(*event->mimeData()));
    list_.fromOutside([&] { list_.OLEDragDrop.raise(files); });
}

}
