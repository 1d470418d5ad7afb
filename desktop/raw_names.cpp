// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/raw_names.h"

#include "files/descriptor.h"
#include "files/errand.h"
#include "files/folders.h"
#include "platform/paths.h"
#include "toolkit/later.h"
#include "toolkit/qt_bridge.h"

#include <QCoreApplication>
#include <QFileSystemModel>
#include <QPointer>
#include <QSet>
#include <fcntl.h>
#include <set>
#include <utility>

namespace desktop
{

namespace
{

// What the model's own thread tells it of a folder's files. Where the library has no such slot, they stay
// out.
constexpr const char* takesFiles = "_q_fileSystemChanged(QString,QList<std::pair<QString,QFileInfo>>)";
constexpr const char* typeOfFiles = "QList<std::pair<QString,QFileInfo>>";
using Files = QList<std::pair<QString, QFileInfo>>;

// Two such names can look the same, and like the name of a third file.
QString likeNoOther(QString name, const QSet<QString>& others)
{
    while (others.contains(name))
        name.insert(name.indexOf(QChar::ReplacementCharacter), QChar::ReplacementCharacter);
    return name;
}

// The library cannot name the file, but a descriptor of it.
QFileInfo infoOf(const Text& path)
{
    const files::Descriptor file(open(path.c_str(), O_PATH | O_CLOEXEC));
    QFileInfo info("/proc/self/fd/" + QString::number(file.number()));
    info.stat();
    return info;
}

}

RawNames::RawNames(QFileSystemModel& files) : files_(files)
{
    if (files.metaObject()->indexOfSlot(takesFiles) >= 0)
        connect(&files, &QFileSystemModel::directoryLoaded, this, &RawNames::look);
}

std::optional<Text> RawNames::pathOf(const QString& path) const
{
    const auto found = paths_.find(path);
    return found == paths_.end() ? std::nullopt : std::optional(*found);
}

// On a thread of its own: the folder may not answer any more.
void RawNames::look(const QString& folder)
{
    const QPointer<RawNames> asker(this);
    const auto ask = [asker, folder] {
        const auto found = filesIn(bytesOf(folder));
        const auto deliver = [asker, folder, found] {
            if (asker)
                asker->show(folder, found);
        };
        if (auto* application = QCoreApplication::instance(); application && !found.isEmpty())
            later(application, deliver);
    };
    files::ErrandThread(ask, [] {});
}

QList<RawNames::Found> RawNames::filesIn(const Text& folder)
{
    QSet<QString> others;
    std::set<Text> raw;
    for (const Text& name : files::namesIn(folder)) {
        if (isValidUtf8(name))
            others.insert(shown(name));
        else if (!name.starts_with('.'))
            raw.insert(name);
    }
    QList<Found> found;
    for (const Text& name : raw) {
        const QFileInfo info = infoOf(joined(folder, name));
        if (!info.isFile())
            continue;
        const QString shownAs = likeNoOther(shown(name), others);
        others.insert(shownAs);
        found << Found{name, shownAs, info};
    }
    return found;
}

void RawNames::show(const QString& folder, const QList<Found>& found)
{
    if (!files_.index(folder).isValid())
        return; // it has gone, and the library would take the root for it
    Files files;
    for (const auto& [name, shownAs, info] : found) {
        paths_.insert(shown(joined(bytesOf(folder), bytesOf(shownAs))), joined(bytesOf(folder), name));
        files << std::pair(shownAs, info);
    }
    QMetaObject::invokeMethod(&files_, "_q_fileSystemChanged", Q_ARG(QString, folder),
                              QArgument<Files>(typeOfFiles, files));
}

}
