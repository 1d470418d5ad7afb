// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/list_view.h"

#include "platform/paths.h"
#include "toolkit/key_codes.h"
#include "toolkit/later.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/tip.h"

#include <QDropEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QUrl>
#include <algorithm>

namespace
{

constexpr std::int16_t returnKey = 13;

// Of another computer's file there may be a namesake here, which nobody means.
bool isHere(const QUrl& url)
{
    const QString host = url.host();
    return host.isEmpty() || host == "localhost" ||
           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

// A name ends at a NUL for the system, not for the row that would show it.
bool isPath(const Text& path) { return path.starts_with(pathSeparator) && path.find('\0') == Text::npos; }

std::vector<Text> filesIn(const QMimeData& data)
{
    std::vector<Text> paths;
    for (const auto& url : data.urls())
        if (const Text path = pathOf(url); url.isLocalFile() && isHere(url) && isPath(path))
            paths.push_back(path);
    return paths;
}

// What it brings is asked for when it is dropped, not while it passes: the other program may hang, and the
// window library waits for its answer.
bool mayBringFiles(const QDropEvent& event)
{
    return event.mimeData()->hasUrls() && event.possibleActions().testFlag(Qt::CopyAction);
}

// As copies, whatever the other program offers first: a move would delete its files.
void answer(QDropEvent& event, bool takes)
{
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(takes);
}

// Thin, so that it takes no row away.
constexpr int barHeight = 6;
constexpr const char* barLook =
    "QScrollBar:horizontal { height: 6px; border: none; background: transparent; }"
    "QScrollBar::handle:horizontal { background: %1; border-radius: 2px; min-width: "
    "24px; }"
    "QScrollBar::handle:horizontal:hover { background: palette(highlight); }"
    "QScrollBar::add-line:horizontal, QScrollBar::sub-line:horizontal { width: 0; }"
    "QScrollBar::add-page:horizontal, QScrollBar::sub-page:horizontal { background: transparent; }";

class RowDelegate final : public QStyledItemDelegate
{
public:
    explicit RowDelegate(ctl::ListView& view) : QStyledItemDelegate(&view), view_(view) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return view_.rowSize(QStyledItemDelegate::sizeHint(option, index), index);
    }

private:
    const ctl::ListView& view_;
};

}

namespace ctl
{

ListView::ListView(ListBox& list) : list_(list), widths_(font())
{
    setUniformItemSizes(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTextElideMode(Qt::ElideNone);
    setAlternatingRowColors(true);
    setItemDelegate(new RowDelegate(*this));
    colourBar();
}

void ListView::colourBar()
{
    horizontalScrollBar()->setStyleSheet(
        QString(barLook).arg(palette().color(QPalette::PlaceholderText).name()));
}

void ListView::setModel(QAbstractItemModel* model)
{
    QListView::setModel(model);
    measureAll();
}

void ListView::reset()
{
    QListView::reset();
    measureAll();
}

void ListView::measureAll()
{
    widths_ = RowWidths(font());
    if (model())
        measure(0, model()->rowCount() - 1);
}

void ListView::measure(int first, int last)
{
    for (int row = first; row <= last; ++row)
        widths_.insert(row, model()->index(row, 0).data().toString());
}

void ListView::changeEvent(QEvent* event)
{
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        measureAll();
    if (event->type() == QEvent::PaletteChange)
        colourBar();
}

void ListView::rowsInserted(const QModelIndex& parent, int first, int last)
{
    measure(first, last);
    QListView::rowsInserted(parent, first, last);
}

void ListView::rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last)
{
    QListView::rowsAboutToBeRemoved(parent, first, last); // may measure the rows once more
    widths_.remove(first, last);
}

QSize ListView::rowSize(QSize own, const QModelIndex& index) const
{
    const int besideText = own.width() - widths_.of(index.row());
    const int room = height() - 2 * frameWidth();
    const int rows = room / own.height();
    const int highest = rows > 0 ? (room - barHeight) / rows : own.height();
    return {std::max(own.width(), widths_.widest() + besideText), std::min(own.height(), highest)};
}

// A selection comes into view from above or below; sideways the user looks where he likes.
void ListView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    const int before = horizontalScrollBar()->value();
    QListView::scrollTo(index, hint);
    horizontalScrollBar()->setValue(before);
}

bool ListView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && showTip(static_cast<const QHelpEvent&>(*event)))
        return true;
    return QListView::viewportEvent(event);
}

// A row that does not fit is its own tip.
bool ListView::showTip(const QHelpEvent& event)
{
    const QModelIndex row = indexAt(event.pos());
    if (!row.isValid())
        return false;
    const int besideText = sizeHintForIndex(row).width() - widths_.widest();
    if (widths_.of(row.row()) + besideText <= viewport()->width())
        return false;
    QToolTip::showText(event.globalPos(), wholeTip(row.data().toString()), viewport(), visualRect(row));
    return true;
}

bool ListView::scrolledSideways(int key)
{
    if (key != Qt::Key_Left && key != Qt::Key_Right)
        return false;
    horizontalScrollBar()->triggerAction(key == Qt::Key_Left ? QScrollBar::SliderSingleStepSub
                                                             : QScrollBar::SliderSingleStepAdd);
    return true;
}

void ListView::showSelection(std::int32_t index)
{
    quietly([&] {
        const QModelIndex row = model()->index(index, 0);
        if (row.isValid())
            mark(row);
        else
            selectionModel()->clear();
    });
}

// Only a list that has the focus has a row that has it: a screen reader would speak of a row in a list that
// the user has left.
void ListView::mark(const QModelIndex& row)
{
    if (hasFocus())
        return selectionModel()->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect);
    selectionModel()->select(row, QItemSelectionModel::ClearAndSelect);
    scrollTo(row);
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

// Neither the pointer nor a key selects, so this is assistive technology. It is answered first: what a click
// does may take long.
void ListView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QListView::selectionChanged(selected, deselected);
    if (!quiet_)
        later(this, [this] { takeSelection(); });
}

void ListView::takeSelection()
{
    const QModelIndexList rows = selectionModel()->selectedIndexes();
    const int row = rows.isEmpty() ? -1 : rows.front().row();
    if (row != list_.ListIndex())
        list_.chosen(row);
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
    if (!currentIndex().isValid())
        quietly([&] { selectionModel()->setCurrentIndex(model()->index(list_.ListIndex(), 0), {}); });
    if (!scrolledSideways(event->key()))
        QListView::keyPressEvent(event);
}

// Getting the focus selects nothing, and scrolls nowhere: a click's place must still lie on the row that the
// user saw there.
void ListView::focusInEvent(QFocusEvent* event)
{
    quietly([&] { QListView::focusInEvent(event); });
    showSelection(list_.ListIndex());
}

void ListView::focusOutEvent(QFocusEvent* event)
{
    QListView::focusOutEvent(event);
    quietly([&] { selectionModel()->clearCurrentIndex(); });
}

// Until it is shown it does not know how many rows it has room for.
void ListView::showEvent(QShowEvent* event)
{
    QListView::showEvent(event);
    scrollTo(model()->index(list_.ListIndex(), 0));
}

void ListView::dragEnterEvent(QDragEnterEvent* event) { answer(*event, mayBringFiles(*event)); }

void ListView::dragMoveEvent(QDragMoveEvent* event) { answer(*event, mayBringFiles(*event)); }

// What brings no files, a link to the web for one, is turned away.
void ListView::dropEvent(QDropEvent* event)
{
    const auto paths = mayBringFiles(*event) ? filesIn(*event->mimeData()) : std::vector<Text>();
    answer(*event, !paths.empty());
    if (paths.empty())
        return;
    const DroppedFiles files(paths);
    list_.fromOutside([&] { list_.OLEDragDrop.raise(files); });
}

}
