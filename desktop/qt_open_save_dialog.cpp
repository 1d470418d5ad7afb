// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_open_save_dialog.h"

#include "desktop/dialog_filter.h"
#include "desktop/file_dialog_gate.h"
#include "desktop/file_dialog_look.h"
#include "desktop/file_pictures.h"
#include "desktop/raw_names.h"
#include "files/errand.h"
#include "platform/failure.h"
#include "platform/paths.h"
#include "toolkit/folder_listing.h"
#include "toolkit/qt_bridge.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QScreen>
#include <QSettings>
#include <QUrl>
#include <algorithm>
#include <memory>
#include <optional>

namespace desktop
{

namespace
{

// Patterns match without regard to case, in desktops' own dialogs too: "*.mp3" becomes "*.[mM][pP]3".
QString anyCase(const Text& pattern)
{
    QString result;
    for (const QChar character : shown(pattern)) {
        if (character.isLetter())
            result += '[' + character.toLower() + character.toUpper() + ']';
        else
            result += character;
    }
    return result == "*.*" ? "*" : result;
}

// The first pattern matches no name and has no suffix: when the filter is turned in a dialog that saves, Qt
// gives the typed name the suffix of the first pattern.
QStringList nameFilters(const std::vector<DialogFilter>& filters)
{
    QStringList names;
    for (const auto& filter : filters)
        names << shown(filter.name) + " (/ " + anyCase(filter.pattern) + ")";
    return names;
}

// Counted from 1. The dialog tells the filter's name, with or without its pattern.
std::int16_t chosenFilter(const std::vector<DialogFilter>& filters, const QString& chosen)
{
    const auto found = std::find_if(filters.begin(), filters.end(), [&](const DialogFilter& filter) {
        return chosen == shown(filter.name) || chosen.startsWith(shown(filter.name) + " (");
    });
    return static_cast<std::int16_t>(found == filters.end() ? 1 : found - filters.begin() + 1);
}

constexpr QSize firstSize(720, 460); // logical pixels: the columns and a name beside them

// No larger than the screen: it may have been another one.
QSize sizeOf(const RememberedDialog& dialog, const QWidget& window)
{
    const QSize wanted = dialog.width > 0 ? QSize(dialog.width, dialog.height) : firstSize;
    return wanted.boundedTo(window.screen()->availableSize());
}

bool isUnanswered(const QString& url)
{
    const QString path = QUrl(url).toLocalFile();
    return !path.isEmpty() && !listing::answers(bytesOf(path), files::patienceForLists);
}

// A dialog of the library first looks at the folder where the last one of any program ended, wherever it is
// told to begin, and at the places that they keep. One that is made while one of them does not answer does
// without what the library kept.
class KeptByLibrary
{
public:
    KeptByLibrary()
    {
        const QSettings settings(file(), QSettings::NativeFormat);
        QStringList places{lastVisited, settings.value("FileDialog/lastVisited").toString()};
        for (const char* key : {"FileDialog/shortcuts", "FileDialog/history"})
            places << settings.value(key).toStringList();
        if (std::none_of(places.begin(), places.end(), isUnanswered))
            return;
        turnAway();
    }
    ~KeptByLibrary() { QSettings::setPath(QSettings::NativeFormat, scope, QFileInfo(file()).path()); }
    KeptByLibrary(const KeptByLibrary&) = delete;
    KeptByLibrary& operator=(const KeptByLibrary&) = delete;

    // From now on the library finds nothing, and keeps nothing: it would wait until the disk has it for good.
    static void turnAway() { QSettings::setPath(QSettings::NativeFormat, scope, "/dev/null"); }

    // As the library keeps it, for the next dialog of any program.
    static void keepView(QFileDialog::ViewMode view)
    {
        files::ErrandThread(
            [view] {
                QSettings settings(file(), QSettings::NativeFormat);
                settings.setValue("FileDialog/viewMode", view == QFileDialog::List ? "List" : "Detail");
            },
            [] {});
    }

    inline static QString lastVisited; // of this process, which the library knows before it keeps it

private:
    // Where it is while the library is not turned away.
    static const QString& file()
    {
        static const QString path = QSettings(scope, "QtProject").fileName();
        return path;
    }

    static constexpr auto scope = QSettings::UserScope;
};

// With its separator.
std::string_view folderOf(std::string_view path)
{
    return path.substr(0, path.size() - fileTitle(path).size());
}

// A list is lines: a name that holds a line's end would break it.
bool holdsLineEnd(const QStringList& paths)
{
    return std::any_of(paths.begin(), paths.end(),
                       [](const QString& path) { return path.contains('\n') || path.contains('\r'); });
}

// The desktop's own dialog gives addresses, which hold a name's own bytes; as text, those that are no UTF-8
// would be lost.
Text bytesOfPath(const QString& path, const QUrl& address)
{
    return path.contains(QChar::ReplacementCharacter) ? pathOf(address) : bytesOf(path);
}

bool isFolder(const QModelIndex& row)
{
    const auto* files = qobject_cast<const QFileSystemModel*>(row.model());
    return files != nullptr && files->isDir(row); // as it was listed: the disk may not answer any more
}

// What the dialog writes into the name's field when these rows are selected.
QString nameOf(const QModelIndexList& rows)
{
    QStringList names;
    for (const auto& row : rows)
        names << row.data().toString();
    return names.size() == 1 ? names.front() : '"' + names.join("\" \"") + '"';
}

}

// The answer is the selection while the name's field tells it, and otherwise what is typed there. Qt 6.4
// alone would take every selection, and while a path is typed, it selects the folders on the way.
class FileDialog final : KeptByLibrary, public QFileDialog
{
public:
    explicit FileDialog(const QString& folder) : QFileDialog(windowBehind(), {}, folder)
    {
        setIconProvider(&filePictures());
        setOption(DontUseCustomDirectoryIcons);
    }
    ~FileDialog() override
    {
        if (viewMode() != viewBefore_)
            keepView(viewMode());
        turnAway();
    }

    // The library's own end would wait for the thread that looks at folders, and one of those may not answer:
    // it comes when that thread has done the last that it is asked for. No key finds the dialog meanwhile.
    static void end(FileDialog* dialog)
    {
        dialog->hide();
        closePopups(*dialog);
        dialog->destroy();
        if (dialog->folders_)
            dialog->endBehindLastLook(*dialog->folders_);
        else
            delete dialog;
    }

    // Not where one is saved: the library would write over it unasked.
    void offerRawNames()
    {
        const auto* files = filesView();
        if (folders_ && files)
            rawNames_.emplace(*folders_, *files->selectionModel());
    }

    std::vector<Text> chosenPaths() const
    {
        const auto addresses = selectedUrls();
        std::vector<Text> paths;
        for (const QString& path : selectedFiles()) {
            const auto raw = rawNames_ ? rawNames_->pathOf(path) : std::nullopt;
            paths.push_back(raw ? *raw : bytesOfPath(path, addresses[static_cast<qsizetype>(paths.size())]));
        }
        return paths;
    }

    void accept() override
    {
        if (!gate_.unanswered().isEmpty())
            return;
        const auto* name = findChild<QLineEdit*>("fileNameEdit");
        const auto* files = filesView();
        if (name && files && !name->text().isEmpty())
            settle(*name, *files->selectionModel());
        if (standUnderRawNames(selectedFiles()))
            QDialog::accept();
        else
            QFileDialog::accept();
    }

private:
    // Not a dialog whose end is still to come.
    static QWidget* windowBehind()
    {
        auto* window = QApplication::activeWindow();
        return window && window->isVisible() ? window : nullptr;
    }

    // The other view shares its selection.
    QAbstractItemView* filesView() const { return findChild<QAbstractItemView*>("listView"); }

    // The list of completions would come again with each folder that is looked at. Closed alone, it may still
    // be where the keys go, and crashes with the next one.
    static void closePopups(QFileDialog& dialog)
    {
        delete dialog.findChild<QCompleter*>();
        if (auto* popup = QApplication::activePopupWidget())
            popup->close();
    }

    // The model looks once into each folder, but again into one that was its root before.
    void endBehindLastLook(QFileSystemModel& folders)
    {
        lastVisited = QUrl::fromLocalFile(folders.rootPath()).toString();
        folders.disconnect(this);
        rawNames_.reset();
        folders.setOption(QFileSystemModel::DontWatchForChanges);
        const QString last = QDir::rootPath();
        connect(&folders, &QFileSystemModel::directoryLoaded, this, [this, last](const QString& folder) {
            if (folder == last)
                deleteLater();
        });
        for (const QString& folder : {last, QString(), last})
            folders.setRootPath(folder);
    }

    // The library would look for them under the names that it shows.
    bool standUnderRawNames(const QStringList& paths) const
    {
        const auto isRaw = [this](const QString& path) { return rawNames_ && rawNames_->pathOf(path); };
        const auto stands = [&](const QString& path) { return isRaw(path) || QFileInfo(path).isFile(); };
        return std::any_of(paths.begin(), paths.end(), isRaw) &&
               std::all_of(paths.begin(), paths.end(), stands);
    }

    static void settle(const QLineEdit& name, QItemSelectionModel& selection)
    {
        const QSignalBlocker quiet(selection);
        for (const auto& row : selection.selectedRows())
            if (isFolder(row))
                selection.select(row, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
        // A long selection does not fit into the field.
        if (name.text() != nameOf(selection.selectedRows()).left(name.maxLength()))
            selection.clearSelection();
    }

    QFileSystemModel* folders_ = findChild<QFileSystemModel*>();
    FileDialogGate gate_{*this};
    std::optional<RawNames> rawNames_;
    const ViewMode viewBefore_ = viewMode();
};

namespace
{

using Showing = std::unique_ptr<FileDialog, void (*)(FileDialog*)>;

Showing dialogIn(const Text& folder) { return {new FileDialog(shown(folder)), FileDialog::end}; }

}

void QtOpenSaveDialog::ShowOpen()
{
    const Showing dialog = dialogIn(beginningFolder());
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->offerRawNames();
    if (flags_ & severalFiles)
        dialog->setFileMode(QFileDialog::ExistingFiles);
    else
        dialog->setFileMode(flags_ & fileMustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    show(*dialog);
}

void QtOpenSaveDialog::ShowSave()
{
    const Showing dialog = dialogIn(beginningFolder());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setOption(QFileDialog::DontConfirmOverwrite, (flags_ & askBeforeOverwriting) == 0);
    show(*dialog);
}

void QtOpenSaveDialog::show(FileDialog& dialog)
{
    const QStringList names = nameFilters(dialogFilters(filter_));
    dialog.setWindowTitle(shown(title_));
    dialog.setNameFilters(names);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    if (filterIndex_ >= 1 && filterIndex_ <= names.size())
        dialog.selectNameFilter(names[filterIndex_ - 1]);
    const RememberedDialog remembered = memory_.read();
    const FileDialogLook look(dialog, remembered.folder);
    dialog.resize(sizeOf(remembered, dialog));
    if (!initialName_.empty())
        dialog.selectFile(shown(initialName_));
    dialog.setWindowModality(Qt::ApplicationModal);

    paths_.clear();
    bool accepted = dialog.exec() == QDialog::Accepted;
    while (accepted && holdsLineEnd(dialog.selectedFiles()))
        accepted = dialog.exec() == QDialog::Accepted;
    if (accepted)
        take(dialog);
    memory_.write({dialog.width(), dialog.height(), accepted ? folder_ : remembered.folder});
    if (!accepted && cancelError_)
        throw Failure(Trouble::cancelled);
}

// The last one of this control, of any before it, or the first; each only while it answers.
Text QtOpenSaveDialog::beginningFolder() const
{
    for (const Text& folder : {folder_, memory_.read().folder})
        if (!folder.empty() && listing::isFolder(folder))
            return folder;
    return firstFolder();
}

void QtOpenSaveDialog::take(FileDialog& dialog)
{
    paths_ = dialog.chosenPaths();
    filterIndex_ = chosenFilter(dialogFilters(filter_), dialog.selectedNameFilter());
    folder_ = folderOf(paths_.front());
}

Text QtOpenSaveDialog::FileName() const { return paths_.empty() ? Text() : paths_.front(); }

Text QtOpenSaveDialog::FileTitle() const { return Text(fileTitle(FileName())); }

void QtOpenSaveDialog::GetFileList(Text& folder, std::vector<Text>& names, std::int32_t& count) const
{
    const bool together = std::all_of(paths_.begin(), paths_.end(),
                                      [this](const Text& path) { return folderOf(path) == folder_; });
    folder = together ? folder_ : Text();
    names.assign(1, Text());
    for (const auto& path : paths_)
        names.push_back(together ? Text(fileTitle(path)) : path);
    count = static_cast<std::int32_t>(paths_.size());
}

}
