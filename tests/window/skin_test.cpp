// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/skin.h"

#include "platform/part_notes.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/waiting.h"
#include "toolkit/toolkit.h"

#include <doctest/doctest.h>

#include <QPainter>
#include <QSemaphore>
#include <QThreadPool>
#include <filesystem>

namespace
{

const QSize size(24, 22);
const QString key = "Image1/0/24x22@1";

// What a skin with pictures kept in `folder` shows.
QImage drawn(Skin& skin)
{
    const Toolkit bringsArtwork(Toolkit::Timers::byHand);
    QImage canvas(size, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    skin.draw(painter, "Image1", Skin::ImageState::normal, QRect(QPoint(), size));
    return canvas;
}

QImage drawnWith(const Text& folder, const Text& build)
{
    Skin skin;
    skin.keepIn(folder, build, std::make_shared<NoPartNotes>());
    return drawn(skin);
}

QImage red()
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::red);
    return picture;
}

// A frame on a sheet at that scale, of which only `part` is painted.
QImage framed(qreal scale, const QRect& part)
{
    const QRect sheet(0, 0, 120, 80);
    QImage canvas(sheet.size() * scale, QImage::Format_ARGB32_Premultiplied);
    canvas.setDevicePixelRatio(scale);
    canvas.fill(Qt::darkCyan);
    QPainter painter(&canvas);
    painter.setClipRect(part);
    Skin().drawFrame(painter, sheet.adjusted(10, 10, -10, -10), part);
    return canvas;
}

// The toolkit's own threads are taken for as long as it lives, and who needs one waits for it.
class NoOtherThreads
{
public:
    NoOtherThreads() : most_(QThreadPool::globalInstance()->maxThreadCount())
    {
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        QThreadPool::globalInstance()->start([this] { wasFreed_ = end_.tryAcquire(1, 5000); });
    }
    ~NoOtherThreads()
    {
        end();
        QThreadPool::globalInstance()->setMaxThreadCount(most_);
    }

    // Whether nobody had waited until then.
    bool end()
    {
        end_.release();
        QThreadPool::globalInstance()->waitForDone();
        return wasFreed_;
    }

private:
    const int most_;
    QSemaphore end_;
    bool wasFreed_ = false;
};

// What of `whole` lies in `part`, on an empty sheet.
QImage cutOut(const QImage& whole, const QRect& part)
{
    QImage canvas(whole.size(), whole.format());
    canvas.setDevicePixelRatio(whole.devicePixelRatio());
    canvas.fill(Qt::darkCyan);
    QPainter painter(&canvas);
    painter.setClipRect(part);
    painter.drawImage(0, 0, whole);
    return canvas;
}

}

TEST_CASE("A picture that an earlier run painted is shown as it painted it")
{
    const TemporaryFolder folder;
    Skin skin;
    const QImage painted = drawn(skin);
    QImage nothing(size, painted.format());
    nothing.fill(Qt::transparent);
    REQUIRE(painted != nothing);
    KeptPictures(folder / "skin-1", "a build").write({{key, red()}}, NoPartNotes::instance());
    CHECK(drawnWith(folder.path(), "a build") == red());
    CHECK(drawnWith(folder.path(), "another build") == painted);
}

TEST_CASE("What was painted lies on the disk a while later, and what it shows is the same")
{
    const TemporaryFolder folder;
    Skin skin;
    skin.keepIn(folder.path(), "a build", std::make_shared<NoPartNotes>());
    const QImage painted = drawn(skin);
    const KeptPictures kept(folder / "skin-1", "a build");
    REQUIRE(waitFor([&] { return !kept.read().isEmpty(); }));
    CHECK(kept.read().value(key) == painted);
}

TEST_CASE("A damaged file of pictures counts for nothing, wherever the damage is")
{
    const TemporaryFolder folder;
    Skin skin;
    const QImage painted = drawn(skin);
    const Text path = folder / "skin-1";
    const KeptPictures kept(path, "a build");
    kept.write({{key, red()}}, NoPartNotes::instance());
    const Text whole = fileBytes(path);
    const auto check = [&](const Text& bytes) {
        putFile(path, bytes);
        CHECK(kept.read().isEmpty());
        CHECK(drawnWith(folder.path(), "a build") == painted);
    };
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{8}, whole.size() / 2, whole.size() - 1})
        check(whole.substr(0, length));
    for (const std::size_t place : {std::size_t{0}, std::size_t{9}, std::size_t{40}, whole.size() - 1}) {
        Text damaged = whole;
        damaged[place] = static_cast<char>(damaged[place] ^ 1);
        check(damaged);
    }
    check("what another program left");
    check(whole + "more");
}

TEST_CASE("Without a folder that can be made nothing is kept, and everything is shown")
{
    const TemporaryFolder folder;
    putFile(folder / "file", "");
    Skin skin;
    CHECK(drawnWith(folder / "file/skin", "a build") == drawn(skin));
}

TEST_CASE("A part of a frame that is painted alone looks as it does in the whole, at every scale")
{
    const QRect whole(0, 0, 120, 80);
    const QRect parts[] = {{20, 20, 30, 9}, {15, 15, 90, 50}, {12, 30, 20, 10}, {0, 0, 30, 30}, {0, 0, 5, 5}};
    for (const qreal scale : {1.0, 1.25, 1.5, 2.0, 3.0})
        for (const QRect& part : parts) {
            CAPTURE(scale);
            CAPTURE(part.x());
            CHECK(framed(scale, part) == cutOut(framed(scale, whole), part));
        }
}

TEST_CASE("What lies over the rim of a frame changes without the toolkit's painting threads")
{
    const QRect sheet(0, 0, 125, 69);
    for (const qreal scale : {1.0, 2.0}) {
        CAPTURE(scale);
        QImage canvas(sheet.size() * scale, QImage::Format_RGB32);
        canvas.setDevicePixelRatio(scale);
        QPainter painter(&canvas);
        Skin skin;
        const QRect frame = sheet.adjusted(10, 10, -10, -10);
        const QRect label = frame.adjusted(0, 8, 0, 0);
        painter.setClipRect(label);
        skin.drawFrame(painter, frame, label);
        NoOtherThreads none;
        skin.drawFrame(painter, frame, label);
        CHECK(none.end());
    }
}
