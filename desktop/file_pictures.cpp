// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/file_pictures.h"

#include <QDir>
#include <QFileIconProvider>
#include <QHash>
#include <QMimeDatabase>
#include <QStandardPaths>

namespace desktop
{

namespace
{

QIcon pictureOf(const char* name) { return QIcon(QString(":/skin/%1.svg").arg(name)); }

struct FileKind {
    const char* ending;
    const char* picture;
};

// clang-format off
constexpr FileKind kinds[] = {
    {"mp3", "file_music"}, {"wav", "file_music"}, {"vlp", "file_list"}, {"m3u", "file_list"}, {"m3u8", "file_list"},
};
// clang-format on

thread_local QString nameForAll;

QString nameOf(const QFileInfo& file) { return nameForAll.isEmpty() ? file.fileName() : nameForAll; }

const char* pictureNameOf(const QFileInfo& file)
{
    const QString ending = QFileInfo(nameOf(file)).suffix().toLower();
    for (const auto& kind : kinds)
        if (ending == QLatin1String(kind.ending))
            return kind.picture;
    return "file";
}

// In the skin's line, as the buttons around them are.
class FilePictures final : public QFileIconProvider
{
public:
    FilePictures()
    {
        for (const char* name :
             {"file", "file_music", "file_list", "folder", "folder_music", "home", "computer", "drive"})
            pictures_[name] = pictureOf(name);
    }

    QIcon icon(IconType type) const override
    {
        if (type == Folder)
            return pictures_["folder"];
        return pictures_[type == File ? "file" : type == Drive || type == Network ? "drive" : "computer"];
    }

    QIcon icon(const QFileInfo& file) const override
    {
        if (!file.isDir())
            return pictures_[pictureNameOf(file)];
        if (file.isRoot())
            return pictures_["drive"];
        const QString path = file.absoluteFilePath();
        return pictures_[path == home_ ? "home" : path == music_ ? "folder_music" : "folder"];
    }

    QString type(const QFileInfo& file) const override
    {
        return file.isDir() ? QMimeDatabase().mimeTypeForName("inode/directory").comment()
                            : kindOf(file).comment();
    }

private:
    static QMimeType kindOf(const QFileInfo& file)
    {
        return QMimeDatabase().mimeTypeForFile(nameOf(file), QMimeDatabase::MatchExtension);
    }

    QHash<QString, QIcon> pictures_; // made once: threads that look at folders ask for them
    const QString home_ = QDir::homePath();
    const QString music_ = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
};

}

QAbstractFileIconProvider& filePictures()
{
    static auto* const pictures = new FilePictures;
    return *pictures;
}

PicturedAs::PicturedAs(const QString& name) { nameForAll = name; }

PicturedAs::~PicturedAs() { nameForAll.clear(); }

}
