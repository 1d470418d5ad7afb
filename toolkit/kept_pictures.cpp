// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/kept_pictures.h"

#include "files/folders.h"
#include "files/output_file.h"
#include "platform/complaint.h"

#include <QDataStream>
#include <QFile>
#include <QHashFunctions>
#include <algorithm>

namespace
{

constexpr auto pixels = QImage::Format_ARGB32_Premultiplied;
constexpr int largestSide = 16384;
constexpr qsizetype mostBytes = 64 * 1024 * 1024;

quint64 sumOf(QByteArrayView bytes) { return qHashBits(bytes.data(), static_cast<size_t>(bytes.size())); }

QByteArray bytesOf(const QImage& picture)
{
    return QByteArray(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes());
}

bool isPossible(const QSize& size, const QByteArray& bytes)
{
    return size.width() > 0 && size.height() > 0 && std::max(size.width(), size.height()) <= largestSide &&
           bytes.size() == qsizetype{4} * size.width() * size.height();
}

// Null when the bytes are no picture of that size.
QImage pictureOf(const QSize& size, const QByteArray& bytes)
{
    if (!isPossible(size, bytes))
        return {};
    QImage picture(size, pixels);
    std::copy_n(bytes.constData(), bytes.size(), reinterpret_cast<char*>(picture.bits()));
    return picture;
}

Pictures unpacked(QDataStream& stream)
{
    Pictures pictures;
    while (!stream.atEnd()) {
        QString name;
        QSize size;
        QByteArray bytes;
        stream >> name >> size >> bytes;
        const QImage picture = pictureOf(size, bytes);
        if (stream.status() != QDataStream::Ok || picture.isNull())
            return {};
        pictures.insert(name, picture);
    }
    return pictures;
}

}

Pictures KeptPictures::read() const
{
    QFile file(QFile::decodeName(path_.c_str()));
    if (!file.open(QIODevice::ReadOnly) || file.size() > mostBytes)
        return {};
    const QByteArray all = file.readAll();
    QDataStream stream(all);
    quint64 sum = 0;
    QByteArray build;
    stream >> sum;
    if (sum != sumOf(QByteArrayView(all).sliced(std::min<qsizetype>(sizeof sum, all.size()))))
        return {};
    stream >> build;
    return build == build_.c_str() ? unpacked(stream) : Pictures();
}

QByteArray KeptPictures::packed(const Pictures& pictures) const
{
    QByteArray all;
    QDataStream stream(&all, QIODevice::WriteOnly);
    stream << QByteArray(build_.c_str());
    for (auto each = pictures.begin(); each != pictures.end(); ++each)
        stream << each.key() << each->size() << bytesOf(*each);
    QByteArray sum;
    QDataStream(&sum, QIODevice::WriteOnly) << sumOf(all);
    return sum + all;
}

void KeptPictures::write(const Pictures& pictures, PartNotes& notes) const
{
    const QByteArray all = packed(pictures);
    files::makeFolders(files::folderOf(path_));
    Complaint("Drawn pictures cannot be kept").unless([&] {
        files::OutputFile file(path_, notes);
        file.append(std::as_bytes(std::span(all.constData(), static_cast<std::size_t>(all.size()))));
        file.finish();
    });
}
