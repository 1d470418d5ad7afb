// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/file_lists.h"

#include "platform/failure.h"
#include "platform/paths.h"
#include "toolkit/drop_down.h"
#include "toolkit/folder_listing.h"
#include "toolkit/later.h"
#include "toolkit/qt_bridge.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <cstdint>

namespace
{

// A path without separators at its end, but for a drive's root.
Text trimmed(Text path)
{
    while (path.size() > driveRoot.size() && endsInSeparator(path))
        path.pop_back();
    return path;
}

// A folder that has answered a hand, for as long as the hand's choice has its effects. They take it unasked:
// another answer may come too late, and a hand has nobody to tell that to.
class ChosenByHand
{
public:
    explicit ChosenByHand(const Text& folder) : before_(std::exchange(current, trimmed(folder))) {}
    ~ChosenByHand() { current = before_; }
    ChosenByHand(const ChosenByHand&) = delete;
    ChosenByHand& operator=(const ChosenByHand&) = delete;

    static bool is(const Text& folder) { return !current.empty() && trimmed(folder) == current; }

private:
    inline static Text current; // of the window's thread
    const Text before_;
};

Text existingFolder(const Text& path)
{
    if (!ChosenByHand::is(path) && !listing::isFolder(path))
        throw Failure(Trouble::pathNotFound);
    return trimmed(path);
}

// Obeys the left button alone, as all lists do. As with them, a row has the focus only while the list has it.
class LeftHandList : public QListWidget
{
protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override
    {
        QListWidget::currentChanged(current, previous);
        if (!current.isValid())
            return;
        last_ = current;
        if (!hasFocus())
            selectionModel()->clearCurrentIndex();
    }
    void focusInEvent(QFocusEvent* event) override
    {
        selectionModel()->setCurrentIndex(last_, QItemSelectionModel::NoUpdate);
        QListWidget::focusInEvent(event);
    }
    void focusOutEvent(QFocusEvent* event) override
    {
        QListWidget::focusOutEvent(event);
        selectionModel()->clearCurrentIndex();
    }
    void mousePressEvent(QMouseEvent* event) override
    {
        if (event->button() == Qt::LeftButton)
            QListWidget::mousePressEvent(event);
    }
    void mouseDoubleClickEvent(QMouseEvent* event) override
    {
        if (event->button() == Qt::LeftButton)
            QListWidget::mouseDoubleClickEvent(event);
    }

private:
    QPersistentModelIndex last_; // that had the focus
};

// Enter goes where a double click goes.
class FolderView final : public LeftHandList
{
protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem())
            emit itemDoubleClicked(currentItem());
        else
            QListWidget::keyPressEvent(event);
    }
};

// `show` has the names that come late, on the window's thread, unless the list has gone.
listing::Question questionOf(QWidget* list, const std::function<void(listing::Names)>& show)
{
    const QPointer<QWidget> asker(list);
    const auto late = [asker, show](const listing::Names& names) {
        const auto deliver = [asker, show, names] {
            if (asker)
                show(names);
        };
        if (auto* application = QCoreApplication::instance())
            later(application, deliver);
    };
    return {std::to_string(reinterpret_cast<std::uintptr_t>(list)), late};
}

}

namespace ctl
{

// The wheel turns over it on the way to something else: it obeys the wheel in its open list alone.
class DriveBox final : public DropDown
{
public:
    explicit DriveBox(DriveListBox& list) : list_(list)
    {
        using namespace std::chrono_literals;
        looking_.setInterval(250ms);
        looking_.callOnTimeout(this, [this] { list_.fill(); });
    }

    void showPopup() override
    {
        list_.fill();
        looking_.start();
        QComboBox::showPopup();
    }
    void hidePopup() override
    {
        looking_.stop();
        DropDown::hidePopup();
    }

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

private:
    DriveListBox& list_;
    QTimer looking_; // for what answers late or is plugged in, while the list stands open
};

DriveListBox::DriveListBox(Container& container, const char* name, Place place, Drives& drives) :
    ControlOf(container, name, place, new DriveBox(*this)), drives_(drives), drive_(defaultDrive)
{
    fill();
    QObject::connect(widget_, &QComboBox::activated, [this](int row) {
        fromOutside([this, row] { choose(shown_[static_cast<std::size_t>(row)].path); });
    });
}

void DriveListBox::fill()
{
    const QSignalBlocker quiet(widget_);
    const auto before = std::exchange(shown_, drives_.all());
    if (before != shown_) {
        widget_->clear();
        for (const auto& drive : shown_)
            widget_->addItem(
                shown(drive.label.empty() ? drive.path : drive.path + "  [" + drive.label + "]"));
    }
    const auto current =
        std::find_if(shown_.begin(), shown_.end(), [this](auto& d) { return d.path == drive_; });
    widget_->setCurrentIndex(current == shown_.end() ? -1 : static_cast<int>(current - shown_.begin()));
}

bool DriveListBox::offers(const Text& drive) const
{
    const auto drives = drives_.all();
    return std::any_of(drives.begin(), drives.end(), [&](auto& d) { return d.path == drive; });
}

void DriveListBox::choose(const Text& drive)
{
    const bool isThere = offers(drive) && listing::isFolder(drive);
    if (isThere)
        drive_ = drive;
    fill();
    if (!isThere)
        return;
    const ChosenByHand chosen(drive_);
    Change.raise();
}

void DriveListBox::setDrive(const Text& drive)
{
    if (drive == drive_)
        return;
    if (!offers(drive))
        throw Failure(Trouble::deviceUnavailable);
    drive_ = drive;
    fill();
    Change.raise();
}

DirListBox::DirListBox(Container& container, const char* name, Place place) :
    ControlOf(container, name, place, new FolderView), path_(listing::homeFolder())
{
    QObject::connect(widget_, &QListWidget::itemDoubleClicked, [this](QListWidgetItem* item) {
        const int row = widget_->row(item);
        fromOutside([this, row] { goTo(row); });
    });
    fill();
}

void DirListBox::setPath(const Text& path)
{
    const Text folder = existingFolder(path);
    if (std::exchange(path_, folder) == folder)
        return;
    fill();
    Change.raise();
}

void DirListBox::fill()
{
    const auto late = [this, asked = path_](const listing::Names& names) {
        if (asked == path_)
            show(names);
    };
    show(listing::foldersIn(path_, questionOf(widget_, late)).value_or(listing::Names()));
}

// The way down to the current directory, one step further in a row, then its subfolders.
void DirListBox::show(const std::vector<Text>& subfolders)
{
    widget_->clear();
    rows_ = listing::pathDownTo(path_);
    const auto depth = rows_.size();
    for (const auto& name : subfolders)
        rows_.push_back(joined(path_, name));
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        const Text name = row == 0 ? rows_[0] : Text(fileTitle(rows_[row]));
        widget_->addItem(QString(static_cast<int>(std::min(row, depth)) * 2, ' ') + shown(name));
    }
    widget_->setCurrentRow(static_cast<int>(depth) - 1);
    widget_->scrollToItem(widget_->item(static_cast<int>(depth) - 1));
}

// A folder that went away meanwhile, or does not answer, leaves the list where it is.
void DirListBox::goTo(int row)
{
    const Text folder = rows_[static_cast<std::size_t>(row)];
    if (!listing::isFolder(folder))
        return fill();
    const ChosenByHand chosen(folder);
    setPath(folder);
}

FileListBox::FileListBox(Container& container, const char* name, Place place, const Text& pattern) :
    ControlOf(container, name, place, new LeftHandList), path_(listing::homeFolder()), pattern_(pattern)
{
    widget_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    fill();
}

void FileListBox::setPath(const Text& path)
{
    path_ = existingFolder(path);
    fill();
}

void FileListBox::fill()
{
    const auto late = [this, asked = path_](const listing::Names& names) {
        if (asked == path_)
            show(names);
    };
    show(listing::filesIn(path_, pattern_, questionOf(widget_, late)).value_or(listing::Names()));
}

void FileListBox::show(const std::vector<Text>& files)
{
    widget_->clear();
    files_ = files;
    for (const auto& file : files_)
        widget_->addItem(shown(file));
}

Text FileListBox::List(std::int32_t index) const
{
    return holds(index) ? files_[static_cast<std::size_t>(index)] : Text();
}

bool FileListBox::Selected(std::int32_t index) const
{
    return holds(index) && widget_->item(index)->isSelected();
}

void FileListBox::setSelected(std::int32_t index, bool selected)
{
    if (!holds(index))
        throw Failure(Trouble::invalidPropertyArrayIndex);
    widget_->item(index)->setSelected(selected);
}

}
