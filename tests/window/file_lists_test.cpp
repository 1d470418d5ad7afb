// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakes/fake_platform.h"
#include "support/failures.h"
#include "support/files.h"
#include "support/hung_share.h"
#include "support/temporary_folder.h"
#include "support/timing.h"
#include "support/waiting.h"
#include "toolkit/file_lists.h"
#include "toolkit/form.h"
#include "toolkit/toolkit.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QListWidget>
#include <QMouseEvent>
#include <QWheelEvent>
#include <doctest/doctest.h>
#include <optional>

namespace
{

constexpr double bound = 30'000; // milliseconds; what hangs here hangs for a minute

struct ListsForm final : Form {
    ListsForm(Toolkit& toolkit, Drives& drives) :
        Form(toolkit, "ListsForm", Border::fixed, {9000_tw, 4000_tw}),
        drive(*this, "drive", {0_tw, 0_tw, 2800_tw, 330_tw}, drives),
        folders(*this, "folders", {0_tw, 400_tw, 2800_tw, 3000_tw}),
        files(*this, "files", {3000_tw, 400_tw, 2800_tw, 3000_tw}, "*.mp3")
    {
        drive.Change.calls([this] {
            ++driveChanges;
            hangAtChange(drive.Drive());
            folders.setPath(drive.Drive());
        });
        folders.Change.calls([this] {
            ++folderChanges;
            hangAtChange(folders.Path());
            files.setPath(folders.Path());
        });
    }

    ctl::DriveListBox drive;
    ctl::DirListBox folders;
    ctl::FileListBox files;
    int driveChanges = 0, folderChanges = 0;
    Text hangsAtChange; // to this folder
    std::optional<HungShare> hung;

private:
    void hangAtChange(const Text& to)
    {
        if (to == hangsAtChange)
            hung.emplace(to.c_str());
    }
};

// Two drives: `one` with the folders a and b, and `two`, which is empty.
struct Shown {
    TemporaryFolder folder;
    const Text one = folder / "one";
    const Text two = folder / "two";
    ScriptedDrives drives;
    Toolkit toolkit{Toolkit::Timers::byHand};
    std::unique_ptr<ListsForm> form;
    int unhandled = 0;

    Shown()
    {
        std::filesystem::create_directories(one + "/a");
        std::filesystem::create_directories(one + "/b");
        std::filesystem::create_directory(two);
        putFile(one + "/song.mp3", "");
        putFile(one + "/b/other.mp3", "");
        drives.drives = {{"/", ""}, {one, "One"}, {two, ""}};
        toolkit.unhandled = [this](const Failure& failure) { unhandled = failure.number; };
        form = std::make_unique<ListsForm>(toolkit, drives);
        form->Show();
        QCoreApplication::processEvents();
    }

    QComboBox& box() { return *form->page()->findChild<QComboBox*>("drive"); }
    QListWidget& folders() { return *form->page()->findChild<QListWidget*>("folders"); }

    std::vector<Text> folderRows()
    {
        std::vector<Text> rows;
        for (int row = 0; row < folders().count(); ++row)
            rows.push_back(folders().item(row)->text().trimmed().toStdString());
        return rows;
    }
    bool shows(const Text& name)
    {
        const auto rows = folderRows();
        return std::find(rows.begin(), rows.end(), name) != rows.end();
    }

    // Drops the list down, and clicks on a row of it.
    void choose(int row)
    {
        box().showPopup();
        auto& view = *box().view();
        view.scrollTo(view.model()->index(row, 0));
        const QPoint at = view.visualRect(view.model()->index(row, 0)).center();
        QMouseEvent move(QEvent::MouseMove, at, view.viewport()->mapToGlobal(at), Qt::NoButton, {}, {});
        QApplication::sendEvent(view.viewport(), &move);
        pressed_ = QDeadlineTimer(QApplication::doubleClickInterval());
        CHECK(
            waitFor([&] { return pressed_.hasExpired(); })); // a list takes no click at once after it opened
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, at, view.viewport()->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
            QApplication::sendEvent(view.viewport(), &event);
        }
        CHECK_FALSE(view.isVisible());
    }

    void wheel(int steps)
    {
        const QPointF at = box().rect().center();
        QWheelEvent event(at, box().mapToGlobal(at), {}, {0, -120 * steps}, {}, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&box(), &event);
    }

    void press(Qt::MouseButton button, const Text& name, QEvent::Type second = QEvent::MouseButtonDblClick)
    {
        // The last one: the names on the way down are the system's choice, and may end alike.
        auto* row = folders().findItems(QString::fromStdString(name), Qt::MatchEndsWith).back();
        const QPoint at = folders().visualItemRect(row).center();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, second}) {
            QMouseEvent event(type, at, folders().viewport()->mapToGlobal(at), button, button, {});
            QApplication::sendEvent(folders().viewport(), &event);
        }
    }

private:
    QDeadlineTimer pressed_;
};

}

TEST_CASE("A drive that is chosen by hand leads to its root")
{
    Shown s;
    s.choose(1);
    CHECK(s.form->drive.Drive() == s.one);
    CHECK(s.form->folders.Path() == s.one);
    CHECK(s.form->files.ListCount() == 1);
    CHECK(s.form->driveChanges == 1);
}

TEST_CASE("Choosing the drive that is already named leads back to its root")
{
    Shown s;
    s.choose(1);
    s.form->folders.setPath(s.one + "/b");
    s.choose(1);
    CHECK(s.form->driveChanges == 2);
    CHECK(s.form->folders.Path() == s.one);
    CHECK(s.form->drive.Drive() == s.one);
}

TEST_CASE("The wheel over a closed list of drives turns nothing")
{
    Shown s;
    s.form->drive.setDrive(s.one);
    for (const int steps : {1, -1, 3})
        s.wheel(steps);
    CHECK(s.form->drive.Drive() == s.one);
    CHECK(s.form->driveChanges == 1);
}

TEST_CASE("A drive that has gone since the list was filled changes nothing, by the wheel or by keys")
{
    Shown s;
    s.drives.drives.pop_back();
    s.form->drive.setDrive(s.one);
    s.drives.drives.push_back({"/home", ""});
    s.box().showPopup();
    s.box().hidePopup();
    s.drives.drives.pop_back();
    s.wheel(1);
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(&s.box(), &down);
    CHECK(s.unhandled == 0);
    CHECK(s.form->drive.Drive() == s.one);
    CHECK(s.form->driveChanges == 1);
    CHECK(s.box().count() == 2);
    CHECK(s.box().currentIndex() == 1);
}

TEST_CASE("A drive that is listed and cannot be read is not chosen by hand")
{
    Shown s;
    std::filesystem::remove_all(s.two);
    s.choose(2);
    CHECK(s.unhandled == 0);
    CHECK(s.form->drive.Drive() == "/");
    CHECK(s.box().currentIndex() == 0);
    CHECK(s.form->driveChanges == 0);
}

TEST_CASE("A directory list obeys the left button alone")
{
    Shown s;
    s.form->folders.setPath(s.one);
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {
        s.press(button, "b");
        CHECK(s.form->folders.Path() == s.one);
        CHECK(s.folders().selectedItems().front()->text().trimmed() == "one");
    }
    s.press(Qt::LeftButton, "b");
    CHECK(s.form->folders.Path() == s.one + "/b");
    CHECK(s.form->files.List(0) == "other.mp3");
}

TEST_CASE("A folder that does not answer is not ready for the code that asks, soon, and the lists stay")
{
    Shown s;
    s.form->folders.setPath(s.two);
    const HungShare hung(s.one.c_str());
    const auto then = std::chrono::steady_clock::now();
    CHECK(failureOf([&] { s.form->folders.setPath(s.one); }) == 76);
    CHECK(failureOf([&] { s.form->files.setPath(s.one); }) == 76);
    CHECK(failureOf([&] { s.form->drive.setDrive(s.one); }) == 76);
    CHECK(millisecondsSince(then) < bound);
    CHECK(waitUntil([&] { return hung.waiting() > 0; }));
    CHECK(s.form->folders.Path() == s.two);
    CHECK(s.form->files.Path() == s.two);
}

TEST_CASE("A hand that reaches for a folder or a drive that does not answer changes nothing")
{
    Shown s;
    s.form->folders.setPath(s.one);
    const Text b = s.one + "/b";
    const HungShare hung(b.c_str());
    const auto then = std::chrono::steady_clock::now();
    s.press(Qt::LeftButton, "b");
    CHECK(s.form->folders.Path() == s.one);
    s.drives.drives[2].path = b;
    s.choose(2);
    CHECK(millisecondsSince(then) < bound);
    CHECK(s.form->drive.Drive() == "/");
    CHECK(s.unhandled == 0);
}

TEST_CASE("A folder that stops to answer while a hand's choice has its effects fails nothing")
{
    Shown s;
    s.form->folders.setPath(s.one);
    s.form->hangsAtChange = s.one + "/b";
    s.press(Qt::LeftButton, "b");
    REQUIRE(s.form->hung);
    CHECK(s.unhandled == 0);
    CHECK(s.form->folders.Path() == s.one + "/b");
    s.form->hung.reset();
    CHECK(waitFor([&] { return s.form->files.List(0) == "other.mp3"; }));
}

TEST_CASE("A drive that stops to answer while a hand's choice has its effects fails nothing")
{
    Shown s;
    s.form->hangsAtChange = s.one;
    s.choose(1);
    REQUIRE(s.form->hung);
    CHECK(s.unhandled == 0);
    CHECK(s.form->drive.Drive() == s.one);
    s.form->hung.reset();
    CHECK(waitFor([&] { return s.shows("b"); }));
}

TEST_CASE("What a folder holds and tells late appears later, without a Change")
{
    Shown s;
    std::filesystem::create_directory_symlink(s.one, s.two + "/album"); // to be asked what it leads to
    putFile(s.two + "/near.mp3", "");
    {
        const HungShare hung((s.two + "/album").c_str());
        s.form->folders.setPath(s.two);
        CHECK(s.form->folderChanges == 1);
        CHECK(s.form->folders.Path() == s.two);
        CHECK(holdsUp(hung, 2));
        CHECK(s.form->files.ListCount() == 0);
    }
    CHECK(waitFor([&] { return s.shows("album"); }));
    CHECK(waitFor([&] { return s.form->files.ListCount() == 1; }));
    CHECK(s.form->folderChanges == 1);
}
