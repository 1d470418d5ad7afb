// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/file_pictures.h"

#include <QFileIconProvider>
#include <QMimeDatabase>

namespace desktop
{

namespace
{

class FilePictures final : public QFileIconProvider
{
public:
    using QFileIconProvider::icon;

    QIcon icon(const QFileInfo& file) const override
    {
        if (file.isDir())
            return icon(QFileIconProvider::Folder);
        const QMimeType kind = kindOf(file);
        const QIcon usual = icon(QFileIconProvider::File);
        return QIcon::fromTheme(kind.iconName(), QIcon::fromTheme(kind.genericIconName(), usual));
    }

    QString type(const QFileInfo& file) const override
    {
        return file.isDir() ? QMimeDatabase().mimeTypeForName("inode/directory").comment()
                            : kindOf(file).comment();
    }

private:
    static QMimeType kindOf(const QFileInfo& file)
    {
        return QMimeDatabase().mimeTypeForFile(file.fileName(), QMimeDatabase::MatchExtension);
    }
};

}

QAbstractFileIconProvider& filePictures()
{
    static auto* const pictures = new FilePictures;
    return *pictures;
}

}
