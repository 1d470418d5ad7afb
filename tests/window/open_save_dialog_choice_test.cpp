// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_open_save_dialog.h"
#include "support/failures.h"
#include "support/file_dialog_hand.h"
#include "support/files.h"
#include "support/temporary_folder.h"
#include "support/waiting.h"

#include <doctest/doctest.h>

namespace
{

using Lines = std::vector<Text>;

constexpr std::int32_t openingOne = OpenSaveDialog::fileMustExist;
constexpr std::int32_t openingSeveral = OpenSaveDialog::fileMustExist | OpenSaveDialog::severalFiles;
constexpr std::int32_t saving = OpenSaveDialog::askBeforeOverwriting;

// A folder with songs and lists, and the dialog shown in it.
struct Desk {
    explicit Desk(std::int32_t flags) : saves(flags == saving)
    {
        control.setFlags(flags);
        control.setFilter("Playlists|*.vlp|M3U Playlists|*.m3u|All Files|*.*");
        control.setFilterIndex(3);
        std::filesystem::create_directory(folder / "sub");
        for (const char* name : {"a.mp3", "b.mp3", "7\" mix.mp3", "\"live\".mp3", "sub/c.mp3"})
            putFile(folder / name, "");
    }

    // 0, or the failure that the dialog ended in.
    int show(const std::function<void(FileDialogHand&)>& act)
    {
        QTimer::singleShot(0, [&] {
            FileDialogHand hand;
            beganIn = hand.folder();
            hand.goTo(folder.path());
            CHECK(waitFor([&] { return hand.shownFiles().contains("b.mp3"); }));
            act(hand);
        });
        return failureOf([&] { saves ? control.ShowSave() : control.ShowOpen(); });
    }

    // The names, sorted: several come in the dialog's own order.
    Lines chosen() const
    {
        auto [where, names] = fileList();
        std::sort(names.begin(), names.end());
        return names;
    }

    std::pair<Text, Lines> fileList() const
    {
        Text where;
        Lines names;
        std::int32_t count = 0;
        control.GetFileList(where, names, count);
        REQUIRE(names.size() == static_cast<std::size_t>(count) + 1);
        CHECK(names.front().empty());
        names.erase(names.begin());
        return {where, names};
    }

    const bool saves;
    TemporaryFolder folder;
    desktop::QtOpenSaveDialog control;
    Text beganIn; // the folder that the user saw first
};

}

TEST_CASE("A typed name stays as it is typed, whatever filter is picked afterwards")
{
    for (const Text name : {"party.m3u", "party.vlp", "party", "party.", "Party.MIX.v2", ".m3u"}) {
        CAPTURE(name);
        Desk desk(saving);
        const int failure = desk.show([&](FileDialogHand& hand) {
            hand.type(name);
            for (const Qt::Key direction : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Down}) {
                hand.turnFilter(direction);
                CHECK(hand.name() == name);
            }
            hand.accept();
        });
        CHECK(failure == 0);
        CHECK(desk.control.FileName() == desk.folder / name);
        CHECK(desk.control.FilterIndex() == 2);
    }
}

TEST_CASE("A filter leaves out files of other kinds, whatever the case of their letters")
{
    Desk desk(openingOne);
    for (const char* name : {"party.m3u", "PARTY.M3U", "m3u", "party.m3u.mp3"})
        putFile(desk.folder / name, "");
    desk.show([&](FileDialogHand& hand) {
        CHECK(waitFor([&] { return hand.shownFiles().size() == 9; }));
        hand.turnFilter(Qt::Key_Up);
        CHECK(waitFor([&] { return hand.shownFiles() == std::set<Text>{"sub", "party.m3u", "PARTY.M3U"}; }));
        hand.accept();
    });
}

TEST_CASE("What is clicked is the answer, quotes included")
{
    struct Case {
        Text what;
        std::int32_t flags;
        Lines clicked;
    };
    const Case cases[] = {
        {"one file", openingOne, {"a.mp3"}},
        {"one that holds a quote", openingOne, {"7\" mix.mp3"}},
        {"one between quotes", openingOne, {"\"live\".mp3"}},
        {"one of several", openingSeveral, {"7\" mix.mp3"}},
        {"several", openingSeveral, {"\"live\".mp3", "7\" mix.mp3", "b.mp3"}},
        {"a file and a folder", openingSeveral, {"7\" mix.mp3", "b.mp3", "sub"}},
        {"a file of any kind", 0, {"7\" mix.mp3"}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Desk desk(c.flags);
        const int failure = desk.show([&](FileDialogHand& hand) {
            for (const auto& name : c.clicked)
                hand.click(name, c.clicked.size() > 1 ? Qt::ControlModifier : Qt::NoModifier);
            hand.accept();
        });
        CHECK(failure == 0);
        Lines files = c.clicked;
        std::erase(files, "sub");
        CHECK(desk.chosen() == files);
        CHECK(desk.control.FileName().starts_with(desk.folder / ""));
    }
}

TEST_CASE("A file whose name would be two lines of a list is not taken, and the dialog goes on")
{
    Desk desk(openingOne);
    putFile(desk.folder / "two\nlines.mp3", "");
    int dialogs = 1;
    const int failure = desk.show([&](FileDialogHand& hand) {
        hand.click("two\nlines.mp3");
        QTimer::singleShot(0, [&] {
            ++dialogs;
            FileDialogHand again;
            again.click("b.mp3");
            again.accept();
        });
        hand.accept();
    });
    CHECK(failure == 0);
    CHECK(dialogs == 2);
    CHECK(desk.control.FileName() == desk.folder / "b.mp3");
}

TEST_CASE("A double click takes the file, quotes included")
{
    Desk desk(openingOne);
    CHECK(desk.show([&](FileDialogHand& hand) { hand.doubleClick("7\" mix.mp3"); }) == 0);
    CHECK(desk.control.FileName() == desk.folder / "7\" mix.mp3");
}

TEST_CASE("A file whose name is no UTF-8 is shown as such names are, and taken under its own bytes")
{
    Desk desk(openingSeveral);
    for (const char* name : {"na\xefve.mp3", "na\xeeve.mp3", ".na\xefve.mp3"})
        putFile(desk.folder / name, "");
    std::filesystem::create_directory(desk.folder / "fo\xeflder");
    std::set<Text> seen;
    const int failure = desk.show([&](FileDialogHand& hand) {
        hand.click("na\uFFFDve.mp3");
        hand.click("na\uFFFD\uFFFDve.mp3", Qt::ControlModifier);
        hand.click("a.mp3", Qt::ControlModifier);
        seen = hand.shownFiles();
        hand.accept();
    });
    CHECK(failure == 0);
    CHECK(desk.chosen() == Lines{"a.mp3", "na\xeeve.mp3", "na\xefve.mp3"});
    CHECK(seen.size() == 7); // those two, and what lies there always
}

TEST_CASE("A name that looks like one that is no UTF-8 is told from it")
{
    const Text looksAlike = "na\uFFFDve.mp3";
    for (const Text& chosen : {looksAlike, Text("na\xefve.mp3")}) {
        Desk desk(openingOne);
        putFile(desk.folder / looksAlike, "");
        putFile(desk.folder / "na\xefve.mp3", "");
        const int failure = desk.show([&](FileDialogHand& hand) {
            CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFD\uFFFDve.mp3"); }));
            hand.doubleClick(chosen == looksAlike ? looksAlike : "na\uFFFD\uFFFDve.mp3");
        });
        CHECK(failure == 0);
        CHECK(desk.control.FileName() == desk.folder / chosen);
    }
}

TEST_CASE("A name that is no UTF-8 can be typed as it shows, and comes back when its folder changes")
{
    Desk desk(openingOne);
    putFile(desk.folder / "na\xefve.mp3", "");
    const int failure = desk.show([&](FileDialogHand& hand) {
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
        putFile(desk.folder / "new.mp3", "");
        CHECK(waitFor([&] { return hand.shownFiles().contains("new.mp3"); }));
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
        hand.type("na\uFFFDve.mp3");
        hand.accept();
    });
    CHECK(failure == 0);
    CHECK(desk.control.FileName() == desk.folder / "na\xefve.mp3");
}

TEST_CASE("What is chosen stays chosen when its folder changes, names that are no UTF-8 included")
{
    for (const std::int32_t flags : {openingOne, openingSeveral}) {
        CAPTURE(flags);
        Desk desk(flags);
        putFile(desk.folder / "na\xefve.mp3", "");
        putFile(desk.folder / "next.mp3", ""); // which a view would choose instead
        Lines wanted = {"na\xefve.mp3"};
        const int failure = desk.show([&](FileDialogHand& hand) {
            CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
            if (flags == openingSeveral) {
                hand.click("a.mp3");
                hand.click("b.mp3", Qt::ControlModifier);
                wanted = {"a.mp3", "b.mp3", "na\xefve.mp3"};
            }
            hand.click("na\uFFFDve.mp3", Qt::ControlModifier);
            const auto chosen = hand.chosenFiles();
            const Text name = hand.name();
            CHECK(chosen.size() == wanted.size());
            putFile(desk.folder / "new.mp3", "");
            CHECK(waitFor([&] { return hand.shownFiles().contains("new.mp3"); }));
            CHECK(hand.name() == name);
            CHECK(waitFor([&] { return hand.chosenFiles() == chosen; }));
            CHECK(hand.name() == name);
            hand.accept();
        });
        CHECK(failure == 0);
        CHECK(desk.chosen() == wanted);
    }
}

TEST_CASE("What is clicked while a folder changes is the answer, and not what was chosen before")
{
    Desk desk(openingOne);
    putFile(desk.folder / "na\xefve.mp3", "");
    const int failure = desk.show([&](FileDialogHand& hand) {
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
        hand.click("na\uFFFDve.mp3");
        putFile(desk.folder / "new.mp3", "");
        CHECK(waitFor([&] { return hand.shownFiles().contains("new.mp3"); }));
        hand.click("a.mp3");
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
        CHECK(hand.chosenFiles() == std::set<Text>{"a.mp3"});
        hand.accept();
    });
    CHECK(failure == 0);
    CHECK(desk.control.FileName() == desk.folder / "a.mp3");
}

TEST_CASE("A shown name that is no UTF-8 never comes to mean another file")
{
    Desk desk(openingOne);
    putFile(desk.folder / "na\xeeve.mp3", "");
    putFile(desk.folder / "na\xefve.mp3", "");
    const int failure = desk.show([&](FileDialogHand& hand) {
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
        hand.click("na\uFFFDve.mp3");
        std::filesystem::remove(desk.folder / "na\xeeve.mp3");
        putFile(desk.folder / "na\xe0ve.mp3", "");
        const std::set<Text> seen{"na\uFFFD\uFFFDve.mp3", "na\uFFFD\uFFFD\uFFFDve.mp3"};
        CHECK(waitFor([&] {
            const auto shown = hand.shownFiles();
            return std::ranges::includes(shown, seen) && !shown.contains("na\uFFFDve.mp3");
        }));
        CHECK(hand.name() == "na\uFFFDve.mp3");
        hand.accept();
    });
    CHECK(failure != 0); // it is not there
    CHECK(desk.control.FileName().empty());
}

TEST_CASE("A name that is no UTF-8 gives way to a file of just the name that it shows")
{
    Desk desk(openingOne);
    putFile(desk.folder / "na\xefve.mp3", "");
    const int failure = desk.show([&](FileDialogHand& hand) {
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
        putFile(desk.folder / "na\uFFFDve.mp3", "");
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFD\uFFFDve.mp3"); }));
        hand.type("na\uFFFDve.mp3");
        hand.accept();
    });
    CHECK(failure == 0);
    CHECK(desk.control.FileName() == desk.folder / "na\uFFFDve.mp3");
}

TEST_CASE("A song whose name is no UTF-8 has the picture and the kind of a song")
{
    Desk desk(openingOne);
    putFile(desk.folder / "na\xefve.mp3", "");
    putFile(desk.folder / "li\xefst.m3u", "");
    desk.show([&](FileDialogHand& hand) {
        CHECK(waitFor([&] { return hand.shownFiles().contains("na\uFFFDve.mp3"); }));
        const QFileSystemModel& files = hand.model();
        const auto row = [&](const Text& name) {
            return files.index(QString::fromStdString(desk.folder / name));
        };
        CHECK(files.type(row("na\uFFFDve.mp3")) == files.type(row("a.mp3")));
        CHECK(files.type(row("li\uFFFDst.m3u")) != files.type(row("a.mp3")));
        const auto picture = [&](const Text& name) { return files.fileIcon(row(name)).pixmap(16).toImage(); };
        CHECK(picture("na\uFFFDve.mp3") == picture("a.mp3"));
        CHECK(picture("li\uFFFDst.m3u") != picture("a.mp3"));
        hand.reject();
    });
}

TEST_CASE("A filter leaves out names that are no UTF-8, too")
{
    Desk desk(openingOne);
    desk.control.setFilterIndex(1);
    putFile(desk.folder / "na\xefve.mp3", "");
    putFile(desk.folder / "li\xefst.VLP", "");
    putFile(desk.folder / "b.vlp", "");
    std::set<Text> seen;
    const int failure = failureOf([&] {
        QTimer::singleShot(0, [&] {
            FileDialogHand hand;
            hand.goTo(desk.folder.path());
            CHECK(waitFor([&] { return hand.shownFiles().contains("li\uFFFDst.VLP"); }));
            seen = hand.shownFiles();
            hand.doubleClick("li\uFFFDst.VLP");
        });
        desk.control.ShowOpen();
    });
    CHECK(failure == 0);
    CHECK(desk.control.FileName() == desk.folder / "li\xefst.VLP");
    CHECK(seen == std::set<Text>{"sub", "b.vlp", "li\uFFFDst.VLP"});
}

TEST_CASE("Who saves is offered no name that is no UTF-8")
{
    Desk desk(saving);
    putFile(desk.folder / "na\xefve.mp3", "old");
    const int failure = desk.show([&](FileDialogHand& hand) {
        for (const Text name : {"1.mp3", "2.mp3", "3.mp3"}) { // so often, a look into the folder could answer
            putFile(desk.folder / name, "");
            CHECK(waitFor([&] { return hand.shownFiles().contains(name); }));
            CHECK(!hand.shownFiles().contains("na\uFFFDve.mp3"));
        }
        hand.type("na\uFFFDve.mp3");
        hand.accept();
    });
    CHECK(failure == 0);
    CHECK(desk.control.FileName() == desk.folder / "na\uFFFDve.mp3");
}

TEST_CASE("Saving on a clicked file replaces that file")
{
    for (const Text name : {"a.mp3", "7\" mix.mp3", "\"live\".mp3"}) {
        CAPTURE(name);
        Desk desk(saving);
        const int failure = desk.show([&](FileDialogHand& hand) {
            hand.click(name);
            hand.accept();
        });
        CHECK(failure == 0);
        CHECK(desk.control.FileName() == desk.folder / name);
    }
}

TEST_CASE("A selection of more names than the name's field takes is taken whole")
{
    Desk desk(openingSeveral);
    Lines names;
    for (int i = 100; i < 300; ++i)
        names.push_back(Text(200, 'x') + std::to_string(i) + ".mp3");
    const Text many = desk.folder / "many";
    std::filesystem::create_directory(many);
    for (const auto& name : names)
        putFile(many + "/" + name, "");
    const int failure = desk.show([&](FileDialogHand& hand) {
        hand.goTo(many);
        CHECK(waitFor([&] { return hand.shownFiles().size() == names.size(); }));
        hand.selectEverything();
        hand.accept();
    });
    CHECK(failure == 0);
    CHECK(desk.chosen() == names);
}

TEST_CASE("What is typed is the answer, whatever was clicked before")
{
    struct Case {
        Text what;
        Text typed;
        const char* chosen;
    };
    for (const std::int32_t flags : {openingOne, openingSeveral}) {
        Desk desk(flags);
        const Case cases[] = {
            {"another file of the folder", "b.mp3", "b.mp3"},
            {"the clicked file", "a.mp3", "a.mp3"},
            {"a file between quotes", "\"b.mp3\"", "b.mp3"},
            {"a file below", "sub/c.mp3", "sub/c.mp3"},
            {"a whole path", desk.folder / "sub/c.mp3", "sub/c.mp3"},
        };
        for (const auto& c : cases) {
            CAPTURE(c.what);
            const int failure = desk.show([&](FileDialogHand& hand) {
                hand.click("a.mp3");
                hand.type(c.typed);
                hand.accept();
            });
            CHECK(failure == 0);
            CHECK(desk.control.FileName() == desk.folder / c.chosen);
        }
    }
}

TEST_CASE("A path that is written while the keyboard is elsewhere is the answer, not the folders on the way")
{
    for (const std::int32_t flags : {openingOne, openingSeveral, 0}) {
        CAPTURE(flags);
        Desk desk(flags);
        for (const Text& path : {Text("sub/c.mp3"), desk.folder / "sub/c.mp3"}) {
            CAPTURE(path);
            const int failure = desk.show([&](FileDialogHand& hand) {
                hand.write(path);
                hand.accept();
            });
            CHECK(failure == 0);
            CHECK(desk.control.FileName() == desk.folder / "sub/c.mp3");
        }
    }
}

TEST_CASE("Files of one folder come as the folder and their names, others as whole paths")
{
    Desk desk(openingSeveral);
    const Text a = desk.folder / "a.mp3", b = desk.folder / "b.mp3", c = desk.folder / "sub/c.mp3";
    struct Case {
        Text what;
        Lines chosen;
        Text folder;
        Lines names;
    };
    const Case cases[] = {
        {"one folder", {a, b}, desk.folder / "", {"a.mp3", "b.mp3"}},
        {"a folder and one below", {a, c}, "", {a, c}},
        {"a folder and the one above", {c, a}, "", {c, a}},
    };
    for (const auto& row : cases) {
        CAPTURE(row.what);
        Text typed;
        for (const auto& path : row.chosen)
            typed += "\"" + path + "\" ";
        const int failure = desk.show([&](FileDialogHand& hand) {
            hand.type(typed);
            hand.accept();
        });
        CHECK(failure == 0);
        const auto [folder, names] = desk.fileList();
        CHECK(folder == row.folder);
        CHECK(names == row.names);
        CHECK(desk.control.FileName() == row.chosen.front());
    }
}

TEST_CASE("The next dialog begins in the folder of the first file")
{
    Desk desk(openingSeveral);
    const Text typed = "\"" + (desk.folder / "sub/c.mp3") + "\" \"a.mp3\"";
    for (int i = 0; i < 2; ++i) {
        const int failure = desk.show([&](FileDialogHand& hand) {
            hand.type(typed);
            hand.accept();
        });
        CHECK(failure == 0);
        CHECK((desk.beganIn == desk.folder / "sub") == (i == 1));
    }
}
