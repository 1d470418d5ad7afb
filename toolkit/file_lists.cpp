#include "toolkit/file_lists.h"

#include "platform/failure.h"
#include "platform/paths.h"
#include "toolkit/folder_listing.h"
#include "toolkit/qt_bridge.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QListWidget>
#include <QSignalBlocker>
#include <algorithm>

namespace
{

// A path without separators at its end, but for a drive's root.
Text trimmed(Text path)
{
    while (path.size() > driveRoot.size() && endsInSeparator(path))
        path.pop_back();
    return path;
}

Text existingFolder(const Text& path)
{
    if (!listing::isFolder(path))
        throw failure(76);
    return trimmed(path);
}

// Enter goes where a double click goes.
class FolderView final : public QListWidget
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

}

namespace ctl
{

class DriveBox final : public QComboBox
{
public:
    explicit DriveBox(DriveListBox& list) : list_(list) {}

protected:
    void showPopup() override
    {
        list_.fill();
        QComboBox::showPopup();
    }

private:
    DriveListBox& list_;
};

DriveListBox::DriveListBox(Container& container, const char* name, Place place, Drives& drives) :
    Control(container, name, place, new DriveBox(*this)), drives_(drives), drive_(defaultDrive)
{
    fill();
    QObject::connect(static_cast<QComboBox*>(widget_), &QComboBox::activated, [this](int row) {
        fromOutside([this, row] { setDrive(shown_[static_cast<std::size_t>(row)].path); });
    });
}

void DriveListBox::fill()
{
    const QSignalBlocker quiet(widget_);
    auto* box = static_cast<QComboBox*>(widget_);
    shown_ = drives_.all();
    box->clear();
    for (const auto& drive : shown_)
        box->addItem(shown(drive.label.empty() ? drive.path : drive.path + "  [" + drive.label + "]"));
    const auto current =
        std::find_if(shown_.begin(), shown_.end(), [this](auto& d) { return d.path == drive_; });
    box->setCurrentIndex(current == shown_.end() ? -1 : static_cast<int>(current - shown_.begin()));
}

void DriveListBox::setDrive(const Text& drive)
{
    if (drive == drive_)
        return;
    const auto drives = drives_.all();
    if (std::none_of(drives.begin(), drives.end(), [&](auto& d) { return d.path == drive; }))
        throw failure(68);
    drive_ = drive;
    fill();
    Change.raise();
}

DirListBox::DirListBox(Container& container, const char* name, Place place) :
    Control(container, name, place, new FolderView), path_(listing::homeFolder())
{
    auto* view = static_cast<QListWidget*>(widget_);
    QObject::connect(view, &QListWidget::itemDoubleClicked, [this, view](QListWidgetItem* item) {
        const int row = view->row(item);
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

// The way down to the current directory, one step further in a row, then its subfolders.
void DirListBox::fill()
{
    auto* view = static_cast<QListWidget*>(widget_);
    view->clear();
    rows_ = listing::pathDownTo(path_);
    const auto depth = rows_.size();
    for (const auto& name : listing::foldersIn(path_))
        rows_.push_back(joined(path_, name));
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        const Text name = row == 0 ? rows_[0] : Text(fileTitle(rows_[row]));
        view->addItem(QString(static_cast<int>(std::min(row, depth)) * 2, ' ') + shown(name));
    }
    view->setCurrentRow(static_cast<int>(depth) - 1);
    view->scrollToItem(view->currentItem());
}

// A folder that went away meanwhile leaves the list where it is.
void DirListBox::goTo(int row)
{
    const Text folder = rows_[static_cast<std::size_t>(row)];
    if (listing::isFolder(folder))
        setPath(folder);
    else
        fill();
}

FileListBox::FileListBox(Container& container, const char* name, Place place, const Text& pattern) :
    Control(container, name, place, new QListWidget), path_(listing::homeFolder()), pattern_(pattern)
{
    static_cast<QListWidget*>(widget_)->setSelectionMode(QAbstractItemView::ExtendedSelection);
    fill();
}

void FileListBox::setPath(const Text& path)
{
    path_ = existingFolder(path);
    fill();
}

void FileListBox::fill()
{
    auto* view = static_cast<QListWidget*>(widget_);
    view->clear();
    files_ = listing::filesIn(path_, pattern_);
    for (const auto& file : files_)
        view->addItem(shown(file));
}

Text FileListBox::List(std::int32_t index) const
{
    return holds(index) ? files_[static_cast<std::size_t>(index)] : Text();
}

bool FileListBox::Selected(std::int32_t index) const
{
    return holds(index) && static_cast<QListWidget*>(widget_)->item(index)->isSelected();
}

void FileListBox::setSelected(std::int32_t index, bool selected)
{
    if (!holds(index))
        throw failure(381);
    static_cast<QListWidget*>(widget_)->item(index)->setSelected(selected);
}

}
