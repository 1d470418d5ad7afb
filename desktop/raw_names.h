// SPDX-License-Identifier: GPL-3.0-or-later
// Files whose names are no UTF-8, in the toolkit's own file dialog, which leaves them out of its folders.
// They show as such names do everywhere: bytes that are no text as the replacement character.
#pragma once

#include "platform/text.h"

#include <QFileInfo>
#include <QHash>
#include <QList>
#include <QObject>
#include <optional>

class QFileSystemModel;

namespace desktop
{

class RawNames final : public QObject
{
public:
    explicit RawNames(QFileSystemModel& files); // from now on in each folder that it reads

    // The bytes of the path that the dialog has under this name; nothing where the name says them itself.
    std::optional<Text> pathOf(const QString& path) const;

private:
    struct Found {
        Text name;
        QString shownAs; // like no other in the folder
        QFileInfo info;
    };

    static QList<Found> filesIn(const Text& folder);
    void look(const QString& folder);
    void show(const QString& folder, const QList<Found>& found);

    QFileSystemModel& files_;
    QHash<QString, Text> paths_;
};

}
