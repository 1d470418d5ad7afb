// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/about_frame.h"
#include "info/error.h"
#include "support/player.h"
#include "support/widgets.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTextBlock>
#include <doctest/doctest.h>

namespace
{

constexpr std::int32_t about = 20; // its number in the menu
constexpr const char* updates = "/app/updates.txt";
constexpr const char* toolKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr const char* placesKey = "SOFTWARE\\Microsoft\\Shared Tools Location";
constexpr std::uint32_t localMachine = 0x80000002;
constexpr std::uint32_t doubleWord = 4;

struct About : Player {
    using Player::Player;

    AboutFrame& open()
    {
        platform.mainMenu->choose(about);
        return program.aboutFrame();
    }

    ScriptedRegistry::Value& value(const Text& key, const Text& name)
    {
        return platform.scriptedRegistry.keys[key][name];
    }
    void registered(const Text& key, const Text& name, const Text& text)
    {
        value(key, name) = {1, text + '\0'};
    }
    void toolStands(const Text& folder)
    {
        platform.scan.folders[folder + "/*.*"] = {{FoundFile::directory, "."},
                                                  {FoundFile::archive, "MSINFO32.EXE"}};
    }
    Text registryCalls() { return lines(std::exchange(platform.scriptedRegistry.calls, {})); }
    std::vector<Text>& started() { return platform.recordingShell.started; }
};

QStringList linesIn(const QPlainTextEdit& box)
{
    QStringList lines;
    for (auto block = box.document()->begin(); block.isValid(); block = block.next())
        lines << block.text();
    return lines;
}

bool saysUnavailable(About& a)
{
    if (a.platform.boxes.shown.size() != 1)
        return false;
    const auto& box = a.platform.boxes.shown.front();
    return box.text == "System Information Is Unavailable At This Time" && box.title.empty() &&
           box.icon == MessageBoxes::Icon::none && box.buttons == MessageBoxes::Buttons::ok;
}

}

TEST_CASE("The About window names the program, its version and what it is for")
{
    About a;
    AboutFrame& frame = a.open();
    CHECK(frame.Visible());
    CHECK(frame.Caption() == "About Velmora");
    CHECK(frame.lblTitle.Caption() == "Velmora");
    CHECK(frame.lblVersion.Caption() == "Version 2.0.3");
    CHECK(
        frame.lblDescription.Caption() ==
        "Velmora is a simple program to play and create music files on your PC." + Text(57, ' ') +
            "Velmora can play .wav and .mp3 files, encode and decode mp3 files, copy music from an audio CD "
            "to your computer and even write your own audio CD's from .wav files (if you have a CD "
            "writer)");
    CHECK_FALSE(frame.lblDisclaimer.Caption().empty());
    CHECK(widgetOf<QPushButton>(frame, "cmdOK")->text() == "OK");
    CHECK(widgetOf<QPushButton>(frame, "cmdSysInfo")->text() == "&System Info...");
    CHECK(frame.picIcon.Width() == twipsOf(32));
    CHECK(frame.picIcon.Height() == twipsOf(32));
}

TEST_CASE("What the program is for and what its makers answer for stand in as many lines as they need")
{
    About a;
    AboutFrame& frame = a.open();
    for (const char* name : {"lblDescription", "lblDisclaimer"}) {
        CAPTURE(name);
        CHECK(widgetOf<QLabel>(frame, name)->wordWrap());
    }
}

TEST_CASE("The About window has two tabs and opens on the first")
{
    About a;
    AboutFrame& frame = a.open();
    auto& tabs = *widgetOf<QTabWidget>(frame, "SSTab1");
    REQUIRE(tabs.count() == 2);
    CHECK(tabs.tabText(0) == "About");
    CHECK(tabs.tabText(1) == "Updates && Bug Fixes");
    CHECK(frame.SSTab1.Tab() == 0);
    CHECK(tabs.widget(1)->findChild<QWidget*>("updatesandbugfixes"));
    CHECK(tabs.widget(0)->findChild<QWidget*>("cmdOK"));
}

TEST_CASE("The news are shown as the file holds them")
{
    const Text contents[] = {
        "one line",
        "with\r\nthe home system's\r\nends\r\n",
        "with\nplain ends\n",
        "mixed\r\nends\nand\rall\n\r",
        "bytes \xE9\xFF and caf\xC3\xA9",
        Text("a NUL\0inside", 12),
        "<b>no markup</b> & so on",
        Text(100000, 'x'),
        "",
    };
    for (const auto& text : contents) {
        CAPTURE(text);
        About a;
        a.platform.files.files[updates] = text;
        CHECK(a.open().updatesandbugfixes.Text() == text);
        CHECK(a.platform.boxes.shown.empty());
    }
}

TEST_CASE("The scroll bar beside the news always stands, however few they are, and they cannot be changed")
{
    for (const Text& text : {Text(), Text("one line"), Text(500, '\n')}) {
        CAPTURE(text.size());
        About a;
        a.platform.files.files[updates] = text;
        AboutFrame& frame = a.open();
        frame.SSTab1.setTab(1);
        auto& box = *widgetOf<QPlainTextEdit>(frame, "updatesandbugfixes");
        REQUIRE(box.isVisible());
        CHECK(box.verticalScrollBar()->isVisible());
        CHECK(box.verticalScrollBar()->height() > box.viewport()->height() - 10);
        CHECK(box.isReadOnly());
        CHECK(isGrey(box));
    }
}

TEST_CASE("Whoever opens the second tab sees the news line for line, from their beginning")
{
    struct Row {
        const char* what;
        Text text;
        QStringList seen;
    };
    const Row rows[] = {
        {"one line", "one line", {"one line"}},
        {"plain ends", "one\ntwo\n", {"one", "two", ""}},
        {"the home system's ends", "one\r\ntwo\r\n", {"one", "two", ""}},
        {"mixed ends", "one\r\ntwo\nthree\rfour", {"one", "two", "three", "four"}},
        {"empty lines of either kind", "one\r\n\r\ntwo\n\nthree", {"one", "", "two", "", "three"}},
        {"blanks and tabs", "  one  two \n\tthree", {"  one  two ", "\tthree"}},
        {"no markup", "<b>one</b> & two", {"<b>one</b> & two"}},
        {"letters outside ASCII", "caf\xC3\xA9", {QString::fromUtf8("caf\xC3\xA9")}},
        {"bytes that are no text", "caf\xE9.", {QString("caf") + QChar::ReplacementCharacter + '.'}},
        {"more lines than the box shows", Text(500, '\n'), QStringList(501, "")},
        {"no news", "", {""}},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        About a;
        a.platform.files.files[updates] = row.text;
        AboutFrame& frame = a.open();
        frame.SSTab1.setTab(1);
        auto& box = *widgetOf<QPlainTextEdit>(frame, "updatesandbugfixes");
        CHECK(box.isVisible());
        CHECK(linesIn(box) == row.seen);
        CHECK(box.cursorForPosition({0, 0}).blockNumber() == 0);
    }
}

TEST_CASE("The news cannot be changed")
{
    About a;
    a.platform.files.files[updates] = "news";
    AboutFrame& frame = a.open();
    typeInto(*widgetOf<QPlainTextEdit>(frame, "updatesandbugfixes"), "x");
    CHECK(frame.updatesandbugfixes.Text() == "news");
    CHECK(isGrey(*widgetOf<QPlainTextEdit>(frame, "updatesandbugfixes")));
}

TEST_CASE("Without readable news the window opens with an empty second tab and says nothing")
{
    for (const int failing : {0, 53, 57, 70, 75, 76}) {
        CAPTURE(failing);
        About a;
        if (failing != 0)
            a.platform.files.failures[updates] = failing;
        AboutFrame& frame = a.open();
        CHECK(frame.Visible());
        CHECK(frame.updatesandbugfixes.Text().empty());
        CHECK(frame.lblVersion.Caption() == "Version 2.0.3");
        CHECK(a.platform.boxes.shown.empty());
        CHECK_FALSE(a.program.error().Visible());
    }
}

TEST_CASE("OK unloads the window: the next one is new and reads the news anew")
{
    About a;
    a.platform.files.files[updates] = "old news";
    a.open().SSTab1.setTab(1);
    a.platform.files.files[updates] = "new news";
    a.open();
    CHECK(a.program.aboutFrame().updatesandbugfixes.Text() == "old news");
    a.program.aboutFrame().cmdOK.Click.raise();
    QCoreApplication::processEvents();
    CHECK(a.open().updatesandbugfixes.Text() == "new news");
    CHECK(a.program.aboutFrame().SSTab1.Tab() == 0);
}

TEST_CASE("The window goes when its own handler has returned, not earlier")
{
    About a;
    AboutFrame& frame = a.open();
    frame.cmdOK_Click();
    CHECK_FALSE(frame.Visible()); // still there to be asked
    AboutFrame& next = a.open();
    CHECK(&next != &frame);
    QCoreApplication::processEvents();
    CHECK(next.Visible());
}

TEST_CASE("A second click that was on its way finds nothing left to unload, and leaves the next window alone")
{
    About a;
    AboutFrame& frame = a.open();
    frame.cmdOK_Click();
    frame.cmdOK_Click();
    AboutFrame& next = a.open();
    frame.cmdOK_Click();
    QCoreApplication::processEvents();
    CHECK(next.Visible());
}

TEST_CASE("The window manager's close unloads the window, too")
{
    About a;
    a.open().page()->window()->close();
    QCoreApplication::processEvents();
    a.platform.files.files[updates] = "new";
    CHECK(a.open().updatesandbugfixes.Text() == "new");
}

TEST_CASE("Enter and Escape press OK, on whichever tab they come")
{
    for (const int tab : {0, 1})
        for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            CAPTURE(tab);
            CAPTURE(key);
            About a;
            AboutFrame& frame = a.open();
            frame.SSTab1.setTab(tab);
            int presses = 0;
            frame.cmdOK.Click.calls([&] { ++presses; });
            pressKey(frame, key);
            CHECK(presses == 1);
        }
}

TEST_CASE("Enter presses the button that has the focus, Escape always OK")
{
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        CAPTURE(key);
        About a;
        AboutFrame& frame = a.open();
        int asked = 0, closed = 0;
        frame.cmdSysInfo.Click.calls([&] { ++asked; });
        frame.cmdOK.Click.calls([&] { ++closed; });
        frame.page()->window()->activateWindow();
        QCoreApplication::processEvents();
        widgetOf<QPushButton>(frame, "cmdSysInfo")->setFocus();
        pressKey(frame, key);
        CHECK(asked == (key == Qt::Key_Escape ? 0 : 1));
        CHECK(closed == (key == Qt::Key_Escape ? 1 : 0));
    }
}

TEST_CASE("The system's information tool is sought in two places")
{
    struct Row {
        Text what;
        std::optional<Text> path;   // of the tool itself
        std::optional<Text> folder; // in which it must stand
        bool stands;
        Text started; // "": the message
    };
    const Row rows[] = {
        {"a path", "/usr/bin/info", {}, false, "/usr/bin/info"},
        {"a path wins over a folder", "/usr/bin/info", "/opt/tool", true, "/usr/bin/info"},
        {"a folder with the tool", {}, "/opt/tool", true, "/opt/tool/MSINFO32.EXE"},
        {"a folder without it", {}, "/opt/tool", false, ""},
        {"neither", {}, {}, false, ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        About a;
        if (row.path)
            a.registered(toolKey, "PATH", *row.path);
        if (row.folder)
            a.registered(placesKey, "MSINFO", *row.folder);
        if (row.stands)
            a.toolStands(*row.folder);
        a.open().cmdSysInfo.Click.raise();
        CHECK(lines(a.started()) == (row.started.empty() ? "" : row.started + "\n"));
        CHECK(saysUnavailable(a) == row.started.empty());
    }
}

TEST_CASE("A path that names no file fails at the start itself, without a look for the second place")
{
    About a;
    a.registered(toolKey, "PATH", "/nowhere");
    a.registered(placesKey, "MSINFO", "/opt/tool");
    a.toolStands("/opt/tool");
    a.platform.recordingShell.fails = true;
    a.open().cmdSysInfo_Click();
    CHECK(saysUnavailable(a));
    CHECK(a.started().empty());
    CHECK(a.registryCalls().find(placesKey) == Text::npos);
    CHECK(a.calls().find("Scan") == Text::npos);
}

TEST_CASE("A tool in the second place that does not start gives the message")
{
    About a;
    a.registered(placesKey, "MSINFO", "/opt/tool");
    a.toolStands("/opt/tool");
    a.platform.recordingShell.fails = true;
    a.open().StartSysInfo();
    CHECK(saysUnavailable(a));
}

TEST_CASE("A place that is a double word and makes no number gives the message, without a look any further")
{
    struct Row {
        const char* what;
        Text bytes;
    };
    for (const auto& row : {Row{"no bytes", ""}, Row{"more digits than a number has", Text(9, '\x11')}})
        for (const bool first : {true, false}) {
            CAPTURE(row.what);
            CAPTURE(first);
            About a;
            a.registered(placesKey, "MSINFO", "/opt/tool");
            a.toolStands("/opt/tool");
            (first ? a.value(toolKey, "PATH") : a.value(placesKey, "MSINFO")) = {doubleWord, row.bytes};
            a.open().cmdSysInfo.Click.raise();
            CHECK(saysUnavailable(a));
            CHECK(a.started().empty());
            CHECK((a.registryCalls().find(placesKey) == Text::npos) == first);
            CHECK(a.calls().find("Scan") == Text::npos);
        }
}

TEST_CASE("Each key is opened with this access and closed again, the one that did not open as well")
{
    About a;
    a.registered(placesKey, "other", "x");
    a.open().StartSysInfo();
    CHECK(a.registryCalls() == Text("open 2147483650 ") + toolKey + " 131135\nclose 0\nopen 2147483650 " +
                                   placesKey + " 131135\nclose 1\n");
    CHECK(saysUnavailable(a));
}

TEST_CASE("A value is read as its type says, and a failure empties the result")
{
    struct Row {
        Text what;
        std::optional<std::uint32_t> type; // none: the value is missing
        Text bytes;
        Text before;
        bool read;
        Text result;
    };
    const Row rows[] = {
        {"a string with its terminator", 1, Text("text\0", 5), "", true, "text"},
        {"a string without one", 1, "text", "", true, "text"},
        {"only the last terminator goes", 1, Text("a\0\0", 3), "", true, Text("a\0", 2)},
        {"an empty string", 1, Text("\0", 1), "old", true, ""},
        {"no bytes at all", 1, "", "old", true, ""},
        {"a string replaces what was there", 1, "new", "old", true, "new"},
        {"a double word", 4, Text("\x10\x27\x11\x01", 4), "", true, "17901328"},
        {"a double word behind digits", 4, "\x01\x01", "F", true, "3857"},
        {"a byte below 16 gives one digit", 4, Text("\x05\x04\x03\x02", 4), "", true, "9029"},
        {"its highest byte 0 counts as a terminator", 4, Text("\x10\x27\x00\x00", 4), "", true, "10000"},
        {"another type leaves the result", 3, "bytes", "old", true, "old"},
        {"a missing value", {}, "", "old", false, ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        About a;
        a.platform.scriptedRegistry.keys["key"];
        if (row.type)
            a.platform.scriptedRegistry.keys["key"]["value"] = {*row.type, row.bytes};
        Text result = row.before;
        CHECK(a.open().GetKeyValue(localMachine, "key", "value", result) == row.read);
        CHECK(result == row.result);
        CHECK(a.registryCalls() == "open 2147483650 key 131135\nclose 1\n");
    }
}

TEST_CASE("A key that does not open empties the result and is closed as key 0")
{
    About a;
    Text result = "old";
    CHECK_FALSE(a.open().GetKeyValue(1, "missing", "value", result));
    CHECK(result.empty());
    CHECK(a.registryCalls() == "open 1 missing 131135\nclose 0\n");
}

TEST_CASE("The message window's controls stand where its face wants them")
{
    struct Row {
        const ctl::Control& control;
        Twips left, top, width, height;
    };
    Player p;
    Error& error = p.program.error();
    for (const auto& row :
         {Row{error.lblerror, 120, 120, 3975, 255}, Row{error.theerror, 120, 360, 3855, 735},
          Row{error.okbutton, 1320, 1230, 1455, 375}}) {
        CAPTURE(row.control.Name());
        CHECK(row.control.Left() == row.left);
        CHECK(row.control.Top() == row.top);
        CHECK(row.control.Width() == row.width);
        CHECK(row.control.Height() == row.height);
    }
    CHECK(error.Caption() == "Error");
    CHECK(error.lblerror.Caption() == "ERROR:");
    CHECK(error.theerror.Caption().empty());
    CHECK(widgetOf<QPushButton>(error, "okbutton")->text() == "OK");
}

TEST_CASE("Two messages make one window with the later text")
{
    Player p;
    p.program.tell("first");
    Error& error = p.program.error();
    p.program.tell("second");
    CHECK(&p.program.error() == &error);
    CHECK(error.theerror.Caption() == "second");
    CHECK(error.Visible());
}

TEST_CASE("OK hides the message window, which keeps its text until the next message")
{
    Player p;
    p.program.tell("first");
    Error& error = p.program.error();
    error.okbutton.Click.raise();
    CHECK_FALSE(error.Visible());
    CHECK(error.theerror.Caption() == "first");
    p.program.tell("second");
    CHECK(error.Visible());
    CHECK(&p.program.error() == &error);
    CHECK(error.theerror.Caption() == "second");
}

TEST_CASE("The message window stops nobody: who has a message goes on while it shows")
{
    Player p;
    p.program.tell("message");
    CHECK_FALSE(p.program.error().page()->window()->isModal());
    CHECK(p.calls().empty());
}
