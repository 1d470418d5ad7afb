// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/dialog_memory.h"

#include "desktop/file_dialog_look.h"
#include "desktop/qt_open_save_dialog.h"
#include "files/folders.h"
#include "support/failures.h"
#include "support/files.h"
#include "support/temporary_folder.h"
#include "support/waiting.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLineEdit>
#include <QScreen>
#include <QTimer>
#include <QTreeView>
#include <doctest/doctest.h>

namespace
{

using desktop::DialogMemory;

// Shows a dialog of a program that was just started; the user does `act`.
void show(const Text& memory, const std::function<void(QFileDialog&)>& act)
{
    desktop::QtOpenSaveDialog control{DialogMemory(memory)};
    control.setFilter("Mp3 Files|*.mp3");
    control.setCancelError(false);
    bool acted = false;
    QTimer::singleShot(0, [&] {
        auto& dialog = dynamic_cast<QFileDialog&>(*QApplication::activeModalWidget());
        act(dialog);
        acted = true;
        if (dialog.isVisible())
            dialog.reject();
    });
    control.ShowOpen();
    CHECK(acted);
}

Text folderOf(const QFileDialog& dialog) { return dialog.directory().path().toStdString(); }

void choose(QFileDialog& dialog, const Text& path)
{
    const auto* files = dialog.findChild<QFileSystemModel*>();
    const QString file = QString::fromStdString(path);
    CHECK(waitFor([&] { return files->fileInfo(files->index(file)).exists(); }));
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(file);
    static_cast<QDialog&>(dialog).accept();
}

}

TEST_CASE("What a dialog remembers is read back, whatever bytes the folder has")
{
    const TemporaryFolder folder;
    const DialogMemory memory(folder / "state/dialogs");
    for (const Text path : {"/music", "/with blanks /and \xFF", "", "/"}) {
        memory.write({700, 450, path});
        const auto read = memory.read();
        CHECK(read.width == 700);
        CHECK(read.height == 450);
        CHECK(read.folder == path);
    }
}

TEST_CASE("A damaged memory is none, and nothing fails")
{
    const TemporaryFolder folder;
    const Text path = folder / "dialogs";
    // clang-format off
    const Text damaged[] = {
        "", "\n", "700\n/music\n", "700 450", "700 450/music\n", "seven hundred\n/music\n", "-700 450\n/music\n",
        "0 0\n/music\n", "700 999999\n/music\n", "99999999999999999999 450\n/music\n", "700 450\nmusic\n",
        Text("700 450\n/mu\0sic\n", 16), "700 450\n/music\n/more\n", Text(100000, '7'), "\xFF\xFE\x00",
    };
    // clang-format on
    for (const Text& bytes : damaged) {
        CAPTURE(bytes.substr(0, 40));
        putFile(path, bytes);
        const auto read = DialogMemory(path).read();
        CHECK(read.width == 0);
        CHECK(read.folder.empty());
    }
    CHECK(DialogMemory(folder / "none").read().width == 0);
    CHECK(DialogMemory(folder.path()).read().width == 0);
}

TEST_CASE(
    "A folder whose name would break the memory is not kept, and a memory without a place keeps nothing")
{
    const TemporaryFolder folder;
    const DialogMemory memory(folder / "dialogs");
    memory.write({700, 450, "/music"});
    memory.write({800, 500, "/two\nlines"});
    CHECK(memory.read().folder == "/music");
    putFile(folder / "file", "");
    DialogMemory(folder / "file/dialogs").write({700, 450, "/music"});
    DialogMemory("").write({700, 450, "/music"});
    CHECK(DialogMemory("").read().width == 0);
}

TEST_CASE("The next program's dialog has the size of the last one, and begins where the last choice was")
{
    const TemporaryFolder folder;
    const Text memory = folder / "dialogs";
    const Text songs = folder / "songs";
    REQUIRE(files::makeFolders(songs));
    putFile(songs + "/a.mp3", "");
    show(memory, [&](QFileDialog& dialog) {
        dialog.resize(640, 480);
        choose(dialog, songs + "/a.mp3");
    });
    show(memory, [&](QFileDialog& dialog) {
        CHECK(dialog.size() == QSize(640, 480));
        CHECK(folderOf(dialog) == songs);
        CHECK(dialog.sidebarUrls().contains(QUrl::fromLocalFile(QString::fromStdString(songs))));
        dialog.setDirectory("/"); // only a choice is remembered
        dialog.resize(660, 470);
    });
    show(memory, [&](QFileDialog& dialog) {
        CHECK(dialog.size() == QSize(660, 470));
        CHECK(folderOf(dialog) == songs);
    });
}

TEST_CASE("A remembered folder that has gone is not where a dialog begins, nor at its side")
{
    const TemporaryFolder folder;
    const Text memory = folder / "dialogs";
    DialogMemory(memory).write({700, 450, folder / "gone"});
    show(memory, [&](QFileDialog& dialog) {
        CHECK(folderOf(dialog) == desktop::firstFolder());
        CHECK_FALSE(
            dialog.sidebarUrls().contains(QUrl::fromLocalFile(QString::fromStdString(folder / "gone"))));
    });
}

TEST_CASE("A remembered size that is larger than the screen is the screen's")
{
    const TemporaryFolder folder;
    const Text memory = folder / "dialogs";
    DialogMemory(memory).write({15000, 15000, ""});
    show(memory, [&](QFileDialog& dialog) {
        CHECK(dialog.width() <= dialog.screen()->availableSize().width());
        CHECK(dialog.height() <= dialog.screen()->availableSize().height());
    });
}

TEST_CASE("The columns show their texts whole")
{
    const TemporaryFolder folder;
    const Text memory = folder / "dialogs";
    putFile(folder / "a song with a name.mp3", Text(123456, 'x'));
    DialogMemory(memory).write({720, 460, folder.path()});
    show(memory, [&](QFileDialog& dialog) {
        auto& details = *dialog.findChild<QTreeView*>("treeView");
        const auto* model = details.model();
        CHECK(waitFor([&] { return model->rowCount(details.rootIndex()) > 0; }));
        CHECK(waitFor([&] {
            for (int column = 0; column < 4; ++column) {
                const auto text = model->index(0, column, details.rootIndex()).data().toString();
                if (details.fontMetrics().horizontalAdvance(text) >= details.header()->sectionSize(column))
                    return false;
            }
            return true;
        }));
    });
}

TEST_CASE("Other programs' dialogs keep their own places and columns")
{
    QFileDialog dialog;
    const auto places = dialog.sidebarUrls();
    const auto columns = dialog.findChild<QTreeView*>("treeView")->header()->saveState();
    {
        const desktop::FileDialogLook look(dialog, "/usr");
        CHECK(dialog.sidebarUrls() != places);
        CHECK(dialog.sidebarUrls().contains(QUrl("file:///usr")));
    }
    CHECK(dialog.sidebarUrls() == places);
    CHECK(dialog.findChild<QTreeView*>("treeView")->header()->saveState() == columns);
}
