// SPDX-License-Identifier: GPL-3.0-or-later
// Files whose names are no UTF-8, in the toolkit's own file dialog, which leaves them out of its folders.
// They show as such names do everywhere: bytes that are no text as the replacement character. What asks for
// another name or an end of one in the dialog's own menu finds no such file.
#pragma once

#include "platform/text.h"

#include <QFileInfo>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <map>
#include <optional>

class QFileSystemModel;
class QItemSelectionModel;

namespace desktop
{

class RawNames final : public QObject
{
public:
    // From now on in each folder that the model reads. `selection` is of its rows.
    RawNames(QFileSystemModel& files, QItemSelectionModel& selection);

    // The bytes of the path that the dialog has under this name; nothing where the name says them itself.
    std::optional<Text> pathOf(const QString& path) const;

    bool eventFilter(QObject* model, QEvent* event) override;

private:
    // What a look into a folder has found.
    struct Found {
        std::map<Text, QFileInfo> files;
        QSet<QString> others; // names that hold the replacement character themselves
    };

    // A shown name stays its file's: who has chosen it must not get another one.
    struct Folder {
        int look = 0; // the newest that has answered
        std::map<Text, QString> shownAs;
        QSet<QString> given;
    };

    static Found lookInto(const Text& folder);
    void look(const QString& folder);
    void show(const QString& path, int look, const Found& found);
    const QString& nameFor(const Text& name, Folder& folder, const QSet<QString>& others);
    void giveToModel(const QString& path, const std::map<QString, QFileInfo>& files);

    QFileSystemModel& files_;
    QItemSelectionModel& selection_;
    int looks_ = 0;
    QHash<QString, Folder> folders_;
    QHash<QString, Text> paths_; // of those that stand
    QSet<QString> left_;         // chosen when the model let them go
};

}
