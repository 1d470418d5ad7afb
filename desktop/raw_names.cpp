// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/raw_names.h"

#include "desktop/file_pictures.h"
#include "files/descriptor.h"
#include "files/errand.h"
#include "files/folders.h"
#include "platform/paths.h"
#include "toolkit/later.h"
#include "toolkit/qt_bridge.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFileSystemModel>
#include <QItemSelectionModel>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QSignalBlocker>
#include <fcntl.h>
#include <utility>
#include <vector>

namespace desktop
{

namespace
{

// What the model's own thread tells it of a folder's files. Where the library has no such slot, they stay
// out.
constexpr const char* takesFiles = "_q_fileSystemChanged(QString,QList<std::pair<QString,QFileInfo>>)";
constexpr const char* typeOfFiles = "QList<std::pair<QString,QFileInfo>>";
using Files = QList<std::pair<QString, QFileInfo>>;

// The library cannot name the file, but a descriptor of it.
QFileInfo infoOf(const Text& path)
{
    const files::Descriptor file(open(path.c_str(), O_PATH | O_CLOEXEC));
    QFileInfo info("/proc/self/fd/" + QString::number(file.number()));
    info.stat();
    return info;
}

QString shownIn(const QString& folder, const QString& name)
{
    return shown(joined(bytesOf(folder), bytesOf(name)));
}

constexpr auto whole = QItemSelectionModel::Select | QItemSelectionModel::Rows;

}

RawNames::RawNames(QFileSystemModel& files, QItemSelectionModel& selection) :
    files_(files), selection_(selection)
{
    if (files.metaObject()->indexOfSlot(takesFiles) < 0)
        return;
    connect(&files, &QFileSystemModel::directoryLoaded, this, &RawNames::look);
    connect(&selection, &QItemSelectionModel::selectionChanged, this, [this] { left_.clear(); });
    files.installEventFilter(this);
}

std::optional<Text> RawNames::pathOf(const QString& path) const
{
    const auto found = paths_.find(path);
    return found == paths_.end() ? std::nullopt : std::optional(*found);
}

// With each change of a folder the model lets these files go, and a view that selects one file takes the next
// one instead. The name's field goes on to tell what was chosen, and the selection comes back with the files.
bool RawNames::eventFilter(QObject* model, QEvent* event)
{
    if (event->type() != QEvent::MetaCall) // which the thread that reads folders sends
        return false;
    std::vector<std::pair<QPersistentModelIndex, QString>> chosen;
    bool isRaw = false;
    for (const QModelIndex& row : selection_.selectedRows()) {
        chosen.emplace_back(row, files_.filePath(row));
        isRaw = isRaw || paths_.contains(chosen.back().second);
    }
    if (!isRaw)
        return false;
    const QSignalBlocker quiet(selection_);
    model->event(event);
    selection_.clearSelection();
    for (const auto& [row, path] : chosen) {
        if (row.isValid())
            selection_.select(row, whole);
        else if (paths_.contains(path))
            left_.insert(path);
    }
    return true;
}

// On a thread of its own: the folder may not answer any more.
void RawNames::look(const QString& folder)
{
    const QPointer<RawNames> asker(this);
    const int look = ++looks_;
    const auto ask = [asker, folder, look] {
        const auto found = lookInto(bytesOf(folder));
        const auto deliver = [asker, folder, look, found] {
            if (asker)
                asker->show(folder, look, found);
        };
        if (auto* application = QCoreApplication::instance())
            later(application, deliver);
    };
    files::ErrandThread(ask, [] {});
}

RawNames::Found RawNames::lookInto(const Text& folder)
{
    Found found;
    for (const Text& name : files::namesIn(folder)) {
        if (isValidUtf8(name)) {
            if (const QString itself = shown(name); itself.contains(QChar::ReplacementCharacter))
                found.others.insert(itself);
        } else if (!name.starts_with('.')) {
            if (const QFileInfo info = infoOf(joined(folder, name)); info.isFile())
                found.files.emplace(name, info);
        }
    }
    return found;
}

void RawNames::show(const QString& path, int look, const Found& found)
{
    Folder& folder = folders_[path];
    if (look < folder.look || !files_.index(path).isValid())
        return; // of one that has gone, the library would take the root for it
    folder.look = look;
    for (const auto& [name, shownAs] : folder.shownAs)
        paths_.remove(shownIn(path, shownAs));
    std::map<QString, QFileInfo> files;
    for (const auto& [name, info] : found.files) {
        const QString& shownAs = nameFor(name, folder, found.others);
        paths_.insert(shownIn(path, shownAs), joined(bytesOf(path), name));
        files.emplace(shownAs, info);
    }
    giveToModel(path, files);

    const QSignalBlocker quiet(selection_); // the name's field is the user's
    for (const auto& [name, info] : files)
        if (const QString file = shownIn(path, name); left_.remove(file))
            selection_.select(files_.index(file), whole);
}

// Two such names can look the same, and like the name of a third file.
const QString& RawNames::nameFor(const Text& name, Folder& folder, const QSet<QString>& others)
{
    QString& shownAs = folder.shownAs[name];
    if (!shownAs.isEmpty() && !others.contains(shownAs))
        return shownAs;
    shownAs = shown(name);
    while (others.contains(shownAs) || folder.given.contains(shownAs))
        shownAs.insert(shownAs.indexOf(QChar::ReplacementCharacter), QChar::ReplacementCharacter);
    folder.given.insert(shownAs);
    return shownAs;
}

// Those of one kind together.
void RawNames::giveToModel(const QString& path, const std::map<QString, QFileInfo>& files)
{
    std::map<QString, Files> kinds;
    for (const auto& [name, info] : files)
        kinds[QFileInfo(name).completeSuffix()] << std::pair(name, info);
    for (const auto& [ending, ofKind] : kinds) {
        const PicturedAs name(ofKind.front().first);
        QMetaObject::invokeMethod(&files_, "_q_fileSystemChanged", Q_ARG(QString, path),
                                  QArgument<Files>(typeOfFiles, ofKind));
    }
}

}
