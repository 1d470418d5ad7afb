#include "platform/system/qt_open_save_dialog.h"

#include "platform/failure.h"
#include "platform/paths.h"
#include "platform/system/dialog_filter.h"
#include "platform/toolkit/qt_bridge.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QStandardPaths>
#include <algorithm>

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

QStringList nameFilters(const std::vector<DialogFilter>& filters)
{
    QStringList names;
    for (const auto& filter : filters)
        names << shown(filter.name) + " (" + anyCase(filter.pattern) + ")";
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

// Where the first dialog begins.
QString firstFolder()
{
    const QString music = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
    return QDir(music).exists() ? music : QDir::homePath();
}

// A list is lines: a name that holds a line's end would break it.
bool holdsLineEnd(const QStringList& paths)
{
    return std::any_of(paths.begin(), paths.end(),
                       [](const QString& path) { return path.contains('\n') || path.contains('\r'); });
}

// What is typed counts. While a path is typed, the dialog selects the folders on the way, and then takes
// those for the answer (Qt 6.4).
class FileDialog final : public QFileDialog
{
public:
    FileDialog() : QFileDialog(QApplication::activeWindow()) {}

    void accept() override
    {
        const auto* name = findChild<QLineEdit*>("fileNameEdit");
        if (name && !name->text().isEmpty())
            for (const char* view : {"listView", "treeView"})
                forgetSelection(findChild<QAbstractItemView*>(view));
        QFileDialog::accept();
    }

private:
    static void forgetSelection(QAbstractItemView* view)
    {
        const QSignalBlocker quiet(view->selectionModel());
        view->selectionModel()->clearSelection();
    }
};

}

void QtOpenSaveDialog::ShowOpen()
{
    FileDialog dialog;
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (flags_ & severalFiles)
        dialog.setFileMode(QFileDialog::ExistingFiles);
    else
        dialog.setFileMode(flags_ & fileMustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    show(dialog);
}

void QtOpenSaveDialog::ShowSave()
{
    FileDialog dialog;
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, (flags_ & askBeforeOverwriting) == 0);
    show(dialog);
}

void QtOpenSaveDialog::show(QFileDialog& dialog)
{
    const QStringList names = nameFilters(dialogFilters(filter_));
    dialog.setWindowTitle(shown(title_));
    dialog.setNameFilters(names);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    if (filterIndex_ >= 1 && filterIndex_ <= names.size())
        dialog.selectNameFilter(names[filterIndex_ - 1]);
    dialog.setDirectory(folder_.empty() ? firstFolder() : shown(folder_));
    if (!initialName_.empty())
        dialog.selectFile(shown(initialName_));
    dialog.setWindowModality(Qt::ApplicationModal);

    paths_.clear();
    bool accepted = dialog.exec() == QDialog::Accepted;
    while (accepted && holdsLineEnd(dialog.selectedFiles()))
        accepted = dialog.exec() == QDialog::Accepted;
    if (accepted)
        take(dialog);
    else if (cancelError_)
        throw failure(32755);
}

void QtOpenSaveDialog::take(QFileDialog& dialog)
{
    for (const auto& path : dialog.selectedFiles())
        paths_.push_back(bytesOf(path));
    filterIndex_ = chosenFilter(dialogFilters(filter_), dialog.selectedNameFilter());
    const Text& first = paths_.front();
    folder_ = first.substr(0, first.size() - fileTitle(first).size());
}

Text QtOpenSaveDialog::FileName() const { return paths_.empty() ? Text() : paths_.front(); }

Text QtOpenSaveDialog::FileTitle() const { return Text(fileTitle(FileName())); }

void QtOpenSaveDialog::GetFileList(Text& folder, std::vector<Text>& names, std::int32_t& count) const
{
    folder = folder_;
    names.assign(1, Text());
    for (const auto& path : paths_)
        names.emplace_back(fileTitle(path));
    count = static_cast<std::int32_t>(paths_.size());
}
