// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/file_pictures.h"

#include "tests/support/temporary_folder.h"

#include <QDir>
#include <QFileIconProvider>
#include <doctest/doctest.h>
#include <filesystem>

namespace
{

qint64 pictureOf(const Text& path)
{
    return desktop::filePictures().icon(QFileInfo(QString::fromStdString(path))).cacheKey();
}

qint64 pictureOf(QAbstractFileIconProvider::IconType type)
{
    return desktop::filePictures().icon(type).cacheKey();
}

}

TEST_CASE("A file's picture is that of its ending, a folder's that of its place")
{
    using Provider = QAbstractFileIconProvider;
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "music.mp3");
    const qint64 sound = pictureOf(folder / "a.mp3");
    const qint64 list = pictureOf(folder / "a.vlp");
    CHECK(pictureOf(folder / "b.WAV") == sound);
    CHECK(pictureOf(folder / "b.M3U") == list);
    CHECK(sound != list);
    CHECK(pictureOf(folder / "a.txt") == pictureOf(Provider::File));
    CHECK(pictureOf(Provider::File) != sound);
    CHECK(pictureOf(folder / "music.mp3") == pictureOf(Provider::Folder));
    CHECK(pictureOf("/") == pictureOf(Provider::Drive));
    CHECK(pictureOf(Provider::Drive) != pictureOf(Provider::Folder));
    CHECK(pictureOf(Provider::Network) == pictureOf(Provider::Drive));
    CHECK(pictureOf(Provider::Computer) != pictureOf(Provider::Drive));
    CHECK(pictureOf(QDir::homePath().toStdString()) != pictureOf(Provider::Folder));
}

TEST_CASE("A kind is told by the name alone, and a folder is one whatever its name")
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "music.mp3");
    const auto kindOf = [&](const char* name) {
        return desktop::filePictures().type(QFileInfo(QString::fromStdString(folder / name)));
    };
    CHECK(kindOf("a.mp3") == kindOf("b.MP3"));
    CHECK(kindOf("a.mp3") != kindOf("a.wav"));
    CHECK(kindOf("music.mp3") != kindOf("a.mp3"));
    CHECK_FALSE(kindOf("music.mp3").isEmpty());
}
