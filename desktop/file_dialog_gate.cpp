// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/file_dialog_gate.h"

#include "files/errand.h"
#include "toolkit/folder_listing.h"
#include "toolkit/qt_bridge.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QUrl>
#include <algorithm>

namespace desktop
{

namespace
{

constexpr int urlOfPlace = Qt::UserRole + 1;
constexpr const char* side = "sidebar";
constexpr std::chrono::milliseconds untilAskedAgain{500};

// What the dialog does for each letter that is typed.
constexpr const char* asksForName = "_q_autoCompleteFileName(QString)";
constexpr const char* asksForButton = "_q_updateOkButton()";

bool has(const QFileDialog& dialog, const char* slot) { return dialog.metaObject()->indexOfSlot(slot) >= 0; }

// The folder first: what lies in one that does not answer is no question of its own.
bool answers(const QString& path, std::chrono::milliseconds limit)
{
    const QString clean = QDir::cleanPath(path);
    for (const QString& each : {clean.left(clean.lastIndexOf('/')), clean})
        if (!each.isEmpty() && !listing::answers(bytesOf(each), limit))
            return false;
    return true;
}

QModelIndexList rowsOf(const QAbstractItemModel& model)
{
    QModelIndexList rows;
    for (int row = 0; row < model.rowCount(); ++row)
        rows << model.index(row, 0);
    return rows;
}

// The rows that a button or a key may mean. At the side each key that moves the current row goes where it
// leads.
QModelIndexList rowsMeantBy(const QAbstractItemView& view, const QEvent& event)
{
    if (event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick)
        return {view.indexAt(static_cast<const QMouseEvent&>(event).position().toPoint())};
    if (event.type() != QEvent::KeyPress)
        return {};
    if (view.objectName() == side)
        return rowsOf(*view.model());
    const int key = static_cast<const QKeyEvent&>(event).key();
    return key == Qt::Key_Return || key == Qt::Key_Enter ? QModelIndexList{view.currentIndex()}
                                                         : QModelIndexList();
}

// The folder that a row stands for, among the files or at the dialog's side; "" for a file.
QString folderOf(const QModelIndex& row)
{
    if (const auto* files = qobject_cast<const QFileSystemModel*>(row.model()))
        return files->isDir(row) ? files->filePath(row) : QString(); // as it was listed
    return row.data(urlOfPlace).toUrl().toLocalFile();
}

}

FileDialogGate::FileDialogGate(QFileDialog& dialog) :
    QObject(&dialog), dialog_(dialog), name_(dialog.findChild<QLineEdit*>("fileNameEdit"))
{
    if (name_ && has(dialog, asksForName) && has(dialog, asksForButton))
        standBeforeName();
    for (const char* part : {side, "listView", "treeView"})
        if (auto* view = dialog.findChild<QAbstractItemView*>(part)) {
            view->installEventFilter(this);
            view->viewport()->installEventFilter(this);
        }
}

// The button follows the name: where nothing answers it stays as it is until something does.
void FileDialogGate::standBeforeName()
{
    disconnect(name_, &QLineEdit::textChanged, &dialog_, nullptr);
    connect(name_, &QLineEdit::textChanged, this, &FileDialogGate::pass);
    again_.setSingleShot(true);
    connect(&again_, &QTimer::timeout, this, [this] {
        if (dialog_.isVisible())
            pass(name_->text());
    });
}

void FileDialogGate::pass(const QString& text)
{
    again_.stop();
    const auto soon = [](const QString& path) { return answers(path, files::patienceForLists); };
    const QStringList paths = pathsIn(text);
    if (!std::all_of(paths.begin(), paths.end(), soon))
        return again_.start(untilAskedAgain);
    QMetaObject::invokeMethod(&dialog_, "_q_autoCompleteFileName", Q_ARG(QString, text));
    QMetaObject::invokeMethod(&dialog_, "_q_updateOkButton");
}

QString FileDialogGate::unanswered() const
{
    for (const QString& path : pathsIn(name_ ? name_->text() : QString()))
        if (!answers(path, files::patienceForFiles))
            return path;
    return {};
}

// Several names stand in quotes; none is the folder itself.
QStringList FileDialogGate::pathsIn(const QString& text) const
{
    QStringList paths;
    for (QString each : text.split('"', Qt::SkipEmptyParts)) {
        if (each.startsWith('~'))
            each.replace(0, 1, QDir::homePath());
        paths << (each.startsWith('/') ? each : dialog_.directory().absolutePath() + '/' + each);
    }
    return paths;
}

bool FileDialogGate::leadsNowhere(const QAbstractItemView& view, const QEvent& event)
{
    const auto rows = rowsMeantBy(view, event);
    return std::any_of(rows.begin(), rows.end(), [](const QModelIndex& row) {
        const QString folder = row.isValid() ? folderOf(row.siblingAtColumn(0)) : QString();
        return !folder.isEmpty() && !answers(folder, files::patienceForFiles);
    });
}

// A click or a key that would lead there does nothing.
bool FileDialogGate::eventFilter(QObject* part, QEvent* event)
{
    auto* view = qobject_cast<QAbstractItemView*>(part);
    if (!view)
        view = qobject_cast<QAbstractItemView*>(part->parent());
    return view && leadsNowhere(*view, *event);
}

}
