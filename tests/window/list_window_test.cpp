// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/failures.h"
#include "support/list_hand.h"
#include "support/list_program.h"
#include "support/pointer.h"

#include <doctest/doctest.h>

namespace
{

using Command = void (PlayListEditor::*)();
using Lines = std::vector<Text>;
using Change = std::function<void(ListProgram&)>;

constexpr const char* workingCopy = "/app/deflist.vlp";
constexpr const char* playListKey = "/app/vlmset.ini|Playlist Editor|PlayList";

void open(ListProgram& start, const Text& path, const Text& text)
{
    start.file(path) = text;
    start.willChoose({path});
    start.list.GoDoOpen();
}

// The number of the menu's item with that caption.
std::int32_t numberOf(const ListProgram& start, const Text& caption)
{
    const auto& items = start.platform.listMenu->items;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].caption == caption)
            return static_cast<std::int32_t>(i) + 1;
    return 0;
}

}

TEST_CASE("Every control stands in its place")
{
    ListProgram start;
    PlayListEditor& list = start.list;
    struct Case {
        const ctl::Control& control;
        Text name;
        const char* toolTip;
        Twips left, top, width, height;
    };
    const Case cases[] = {
        {list.PLETitleBarImg, "PLETitleBarImg", "", 0, 0, 6450, 225},
        {list.imgMenu, "imgMenu", "Playlist Editor Menu", 0, 0, 240, 225},
        {list.closeVLMimg, "closeVLMimg", "Close Playlist Editor", 6275, 25, 135, 150},
        {list.PlayListFileName, "PlayListFileName", "", 240, 320, 5775, 285},
        {list.PlayListLB, "PlayListLB", "", 240, 650, 5775, 1815},
        {list.moveitemupimg, "moveitemupimg", "Move Up [U]", 6120, 650, 330, 360},
        {list.moveitemdownimg, "moveitemdownimg", "Move Down [D]", 6120, 2105, 330, 360},
        {list.Previmg1, "Previmg1", "Previous", 1920, 2610, 630, 330},
        {list.Playimg1, "Playimg1", "Play", 2760, 2610, 360, 330},
        {list.Stopimg1, "Stopimg1", "Stop", 3240, 2610, 360, 330},
        {list.Nextimg1, "Nextimg1", "Next", 3840, 2610, 630, 330},
    };
    for (const auto& c : cases) {
        CAPTURE(c.name);
        CHECK(Text(c.control.Name()) == c.name);
        CHECK(c.control.ToolTipText() == c.toolTip);
        CHECK(c.control.Left() == c.left);
        CHECK(c.control.Top() == c.top);
        CHECK(c.control.Width() == c.width);
        CHECK(c.control.Height() == c.height);
    }
    for (const auto* image : {&list.Previmg1, &list.Playimg1, &list.Stopimg1, &list.Nextimg1,
                              &list.moveitemupimg, &list.moveitemdownimg})
        CHECK(image->use() == ctl::Image::Use::transport);
    CHECK(list.Caption() == "Playlist Editor");
    CHECK(list.Width() == 6435);
    CHECK(list.Height() == 2985);
}

TEST_CASE("The window begins like this")
{
    ListProgram start;
    CHECK(start.list.labtemp1.Caption() == "0");
    CHECK(start.list.PlayListFileName.Text() == "");
    CHECK(start.list.PlayListLB.ListCount() == 0);
    CHECK(start.list.PlayListLB.ListIndex() == -1);
    CHECK_FALSE(start.list.NamedListActive);
    CHECK(start.list.PlayIndex == 0);
    CHECK(start.list.RunIndex == 0);
    CHECK(start.list.AppFolder == "/app/");
    CHECK(start.list.DefaultListPath == workingCopy);
    CHECK(start.list.Timer1.Enabled());
    CHECK_FALSE(start.list.Visible());
    CHECK(start.platform.profile.values.empty()); // reading the last list plants nothing
}

TEST_CASE("The name of the list cannot be typed")
{
    ListProgram start;
    start.list.PlayListFileName.setText("/list.vlp");
    auto* box = start.list.page()->findChild<QWidget*>("PlayListFileName");
    REQUIRE(box);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, "x");
    QApplication::sendEvent(box, &key);
    CHECK(start.list.PlayListFileName.Text() == "/list.vlp");
}

TEST_CASE("The menu's items are numbered by this table")
{
    struct Case {
        Text caption;
        std::int32_t parent;
    };
    const Case items[] = {
        {"&File", 0},
        {"&New", 1},
        {"&Open", 1},
        {"&Close", 1},
        {"-", 1},
        {"&Save", 1},
        {"Save &As...", 1},
        {"-", 1},
        {"C&lose Playlist Editor", 1},
        {"&Play", 0},
        {"&Start", 10},
        {"S&top", 10},
        {"-", 10},
        {"&Previous", 10},
        {"&Next", 10},
        {"-", 10},
        {"Play Se&lected", 10},
        {"Play &From Selected", 10},
        {"&Options", 0},
        {"&Add Songs", 19},
        {"&Remove Selected\tDEL", 19},
    };
    ListProgram start;
    REQUIRE(start.platform.listMenu->items.size() == std::size(items));
    for (std::size_t i = 0; i < std::size(items); ++i) {
        CAPTURE(i + 1);
        CHECK(start.platform.listMenu->items[i].caption == items[i].caption);
        CHECK(start.platform.listMenu->items[i].parent == items[i].parent);
        CHECK(start.platform.listMenu->items[i].key == "");
    }
}

TEST_CASE("The menu is made, owned and kept before the list is read")
{
    FakePlatform platform;
    platform.profile.values[playListKey] = "/list.vlp";
    Program program(platform);
    program.startUp();
    Lines calls;
    for (const auto& call : platform.log.all())
        if (call.starts_with("listMenu.") || call.starts_with("Store.Position PlayList Editor/POS") ||
            call == "Profile.read PlayList")
            calls.push_back(call);
    REQUIRE(calls.size() > 4);
    calls.resize(5);
    CHECK(calls == Lines{"listMenu.hWndOwner", "listMenu.Clear", "listMenu.Store(PlayListEditorMenu)",
                         "Store.Position PlayList Editor/POS = ", "Profile.read PlayList"});
}

TEST_CASE("The menu image shows the kept menu right below itself")
{
    ListProgram start;
    start.list.imgMenu.Click.raise();
    CHECK(start.platform.log.of("listMenu") == Lines{"listMenu.Restore(PlayListEditorMenu)",
                                                     "listMenu.ShowPopupMenu(0, 225, 0, 0, 240, 225, True)",
                                                     "listMenu.Store(PlayListEditorMenu)"});
}

TEST_CASE("Captions, separators and numbers outside the menu do nothing")
{
    ListProgram start;
    start.fill({"/a.mp3"});
    start.list.PlayListLB.setListIndex(0);
    for (const std::int32_t item : {-1, 0, 1, 5, 8, 10, 13, 16, 19, 22, 32767})
        start.platform.listMenu->choose(item);
    CHECK(start.platform.log.all().empty());
    CHECK(start.rows() == Lines{"/a.mp3"});
}

TEST_CASE("Each file and options item does its work")
{
    struct Case {
        std::int32_t item;
        Text caption;
        std::function<bool(ListProgram&)> done;
    };
    const Case cases[] = {
        {2, "&New", [](ListProgram& start) { return start.rows().empty(); }},
        {3, "&Open",
         [](ListProgram& start) { return start.platform.log.count("OpenSaveDialogP.ShowOpen") == 1; }},
        {4, "&Close", [](ListProgram& start) { return start.rows().empty(); }},
        {6, "&Save", [](ListProgram& start) { return start.file("/list.vlp") == "/a.mp3\r\n"; }},
        {7, "Save &As...",
         [](ListProgram& start) { return start.platform.log.count("OpenSaveDialogP.ShowSave") == 1; }},
        {9, "C&lose Playlist Editor", [](ListProgram& start) { return !start.list.Visible(); }},
        {20, "&Add Songs",
         [](ListProgram& start) {
             return start.platform.OpenSaveDialogP->title == "Select .wav/.mp3 files to add to the playlist";
         }},
        {21, "&Remove Selected\tDEL", [](ListProgram& start) { return start.rows().empty(); }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.caption);
        ListProgram start;
        start.list.Show();
        start.fill({"/a.mp3"});
        start.list.PlayListLB.setListIndex(0);
        start.list.PlayListFileName.setText("/list.vlp");
        CHECK(numberOf(start, c.caption) == c.item);
        start.platform.listMenu->choose(c.item);
        CHECK(c.done(start));
        CHECK(start.list.Visible() == (c.item != 9));
    }
}

TEST_CASE("The close image hides the window, and its tick goes on")
{
    ListProgram start;
    start.list.Show();
    start.fill({"/a.mp3"});
    start.list.closeVLMimg.Click.raise();
    CHECK_FALSE(start.list.Visible());
    CHECK(start.platform.ends == 0);
    CHECK(start.list.Timer1.Enabled());
    start.list.Timer1.Timer.raise();
    CHECK(start.file(workingCopy) == "/a.mp3\r\n");
}

TEST_CASE("An activation judges the docking, and a deactivation leaves the main window in the lead")
{
    ListProgram start;
    const Text place = "Store.Position PlayList Editor/POS = ";
    const auto judged = [&] {
        std::ptrdiff_t count = 0;
        for (const auto& call : start.platform.log.all())
            count += call.starts_with(place);
        return count;
    };
    start.player.window_active = false;
    start.list.Activate.raise();
    CHECK(judged() == 1);
    CHECK_FALSE(start.player.window_active);
    start.list.Deactivate.raise();
    CHECK(judged() == 2);
    CHECK(start.player.window_active);
}

TEST_CASE("What a tick stores decides what the next start finds")
{
    struct Case {
        Text what;
        Change work;
        Text key;
        Lines rows;
        Text name;
        bool named;
    };
    const Change edited = [](ListProgram& start) {
        open(start, "/list.vlp", "/a.mp3\r\n/b.mp3\r\n");
        start.list.PlayListLB.setListIndex(0);
        start.list.removeSelected();
    };
    const Change saved = [](ListProgram& start) {
        start.fill({"/c.mp3"});
        start.willChoose({"/saved"}, 1);
        start.list.GoDoSaveAs();
    };
    const Case cases[] = {
        {"a list as it was opened",
         [](ListProgram& start) { open(start, "/list.vlp", "/a.mp3\r\n"); },
         "/list.vlp",
         {"/a.mp3"},
         "/list.vlp",
         true},
        {"a list as it was saved", saved, "/saved.vlp", {"/c.mp3"}, "/saved.vlp", true},
        {"a list edited after it was opened", edited, workingCopy, {"/b.mp3"}, "", false},
        {"a list edited after it was saved",
         [&](ListProgram& start) {
             saved(start);
             start.willChoose({"/music/d.mp3"}, 1);
             start.list.GoDoAddSongs();
         },
         workingCopy,
         {"/c.mp3", "/music/d.mp3"},
         "",
         false},
        {"a list never named",
         [](ListProgram& start) { start.fill({"/a.mp3"}); },
         workingCopy,
         {"/a.mp3"},
         "",
         false},
        {"New after a named list",
         [](ListProgram& start) {
             open(start, "/list.vlp", "/a.mp3\r\n");
             start.list.GoDoNew();
         },
         "",
         {},
         "",
         false},
        {"Close after a named list",
         [](ListProgram& start) {
             open(start, "/list.vlp", "/a.mp3\r\n");
             start.list.GoDoClose();
         },
         "",
         {},
         "",
         false},
        {"New on a list without a name",
         [](ListProgram& start) {
             start.fill({"/a.mp3"});
             start.list.GoDoNew();
         },
         workingCopy,
         {},
         "",
         false},
        {"Close after an edit",
         [&](ListProgram& start) {
             edited(start);
             start.list.GoDoClose();
         },
         workingCopy,
         {},
         "",
         false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        ListProgram start;
        c.work(start);
        start.list.Timer1_Timer();
        CHECK(start.setting("PlayList") == c.key);
        const auto next = ListProgram::after(start);
        CHECK(next.rows() == c.rows);
        CHECK(next.list.PlayListFileName.Text() == c.name);
        CHECK(next.list.NamedListActive == c.named);
        CHECK(next.list.PlayListLB.ListIndex() == -1);
    }
}

TEST_CASE("After an edit Save asks for a name again at the next start, and the saved file keeps its rows")
{
    ListProgram start;
    open(start, "/list.vlp", "/a.mp3\r\n/b.mp3\r\n");
    start.list.PlayListLB.setListIndex(0);
    start.list.removeSelected();
    start.list.Timer1_Timer();
    auto next = ListProgram::after(start);
    CHECK(next.file("/list.vlp") == "/a.mp3\r\n/b.mp3\r\n");
    next.list.GoDoSave();
    CHECK(next.platform.log.count("OpenSaveDialogP.ShowSave") == 1);
}

TEST_CASE("A row removed after a save is gone at the next start, and the saved file keeps it")
{
    ListProgram start;
    start.fill({"/a.mp3", "/b.mp3"});
    start.willChoose({"/saved"}, 1);
    start.list.GoDoSaveAs();
    start.list.Timer1_Timer();
    start.list.PlayListLB.setListIndex(0);
    start.platform.listMenu->choose(21);
    start.list.Timer1_Timer();
    auto next = ListProgram::after(start);
    CHECK(next.rows() == Lines{"/b.mp3"});
    CHECK(next.list.PlayListFileName.Text() == "");
    CHECK_FALSE(next.list.NamedListActive);
    CHECK(next.file("/saved.vlp") == "/a.mp3\r\n/b.mp3\r\n");
}

TEST_CASE("Save after an edit in the same run writes to the shown name")
{
    ListProgram start;
    open(start, "/list.vlp", "/a.mp3\r\n/b.mp3\r\n");
    start.list.PlayListLB.setListIndex(0);
    start.list.removeSelected();
    CHECK(start.list.PlayListFileName.Text() == "/list.vlp");
    CHECK_FALSE(start.list.NamedListActive);
    start.list.GoDoSave();
    CHECK(start.file("/list.vlp") == "/b.mp3\r\n");
    CHECK(start.list.NamedListActive);
    CHECK(start.platform.log.count("OpenSaveDialogP.ShowSave") == 0);
}

TEST_CASE("The mark of a named list changes by these events alone")
{
    struct Case {
        Text what;
        Change event;
        std::optional<bool> becomes; // nothing: unchanged
    };
    const auto choosing = [](Text path, Command command) {
        return [path, command](ListProgram& start) {
            if (!path.empty())
                start.willChoose({path}, 1);
            (start.list.*command)();
        };
    };
    const auto selecting = [](std::int32_t row, Command command) {
        return [row, command](ListProgram& start) {
            start.list.PlayListLB.setListIndex(row);
            (start.list.*command)();
        };
    };
    const auto key = [](std::int32_t row, std::int16_t code) {
        return [row, code](ListProgram& start) {
            start.list.PlayListLB.setListIndex(row);
            start.list.PlayListLB.KeyDown.raise(code, 0);
        };
    };
    const Case cases[] = {
        {"Open", choosing("/list.vlp", &PlayListEditor::GoDoOpen), true},
        {"Open cancelled", choosing("", &PlayListEditor::GoDoOpen), {}},
        {"Save As", choosing("/other.vlp", &PlayListEditor::GoDoSaveAs), true},
        {"Save As cancelled", choosing("", &PlayListEditor::GoDoSaveAs), true},
        {"Save", choosing("/other.vlp", &PlayListEditor::GoDoSave), true},
        {"Save cancelled", choosing("", &PlayListEditor::GoDoSave), true},
        {"Add Songs", choosing("/c.mp3", &PlayListEditor::GoDoAddSongs), false},
        {"Add Songs cancelled", choosing("", &PlayListEditor::GoDoAddSongs), {}},
        {"a row removed", selecting(1, &PlayListEditor::removeSelected), false},
        {"nothing to remove", selecting(-1, &PlayListEditor::removeSelected), {}},
        {"DEL", key(0, 46), false},
        {"DEL with nothing selected", key(-1, 46), {}},
        {"moved up by the image", selecting(1, &PlayListEditor::moveitemupimg_Click), false},
        {"the image on the first row", selecting(0, &PlayListEditor::moveitemupimg_Click), {}},
        {"the image with nothing selected", selecting(-1, &PlayListEditor::moveitemupimg_Click), {}},
        {"moved down by the image", selecting(1, &PlayListEditor::moveitemdownimg_Click), false},
        {"the image on the last row", selecting(2, &PlayListEditor::moveitemdownimg_Click), {}},
        {"moving nothing down", selecting(-1, &PlayListEditor::moveitemdownimg_Click), {}},
        {"U", key(2, 85), false},
        {"U on the first row", key(0, 85), {}},
        {"D", key(0, 68), false},
        {"D on the last row", key(2, 68), {}},
        {"another key", key(1, 65), {}},
        {"New", selecting(-1, &PlayListEditor::GoDoNew), {}},
        {"Close", selecting(-1, &PlayListEditor::GoDoClose), {}},
        {"a tick", selecting(-1, &PlayListEditor::Timer1_Timer), {}},
    };
    for (const auto& c : cases)
        for (const bool before : {true, false}) {
            CAPTURE(c.what);
            CAPTURE(before);
            ListProgram start;
            start.file("/list.vlp") = "/x.mp3\r\n";
            start.fill({"/a.mp3", "/b.mp3", "/c.mp3"});
            start.list.NamedListActive = before;
            c.event(start);
            CHECK(start.list.NamedListActive == c.becomes.value_or(before));
        }
}

TEST_CASE("The stored path is read anew at each use")
{
    struct Case {
        Text what;
        Text stored;
        Text text;
        std::ptrdiff_t reads;
    };
    const Case cases[] = {
        {"nothing stored", "", "", 1},
        {"a named list", "/list.vlp", "/a.mp3\r\n", 5},
        {"a named list of 0 bytes", "/list.vlp", "", 4},
        {"the working copy", workingCopy, "/a.mp3\r\n", 4},
        {"the working copy of 0 bytes", workingCopy, "", 3},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        FakePlatform platform;
        platform.profile.values[playListKey] = c.stored;
        platform.files.files[c.stored] = c.text;
        Program program(platform);
        program.startUp();
        CHECK(platform.log.count("Profile.read PlayList") == c.reads);
        CHECK(program.playListEditor().PlayListLB.ListCount() == (c.text.empty() ? 0 : 1));
    }
}

TEST_CASE("A stored list that is gone leaves an empty window with its name, and the tick stores that name on")
{
    ListProgram start([](FakePlatform& platform) { platform.profile.values[playListKey] = "/gone.vlp"; });
    CHECK(start.rows().empty());
    CHECK(start.list.PlayListFileName.Text() == "/gone.vlp");
    CHECK(start.list.NamedListActive);
    start.platform.profile.values.clear();
    start.list.Timer1_Timer();
    CHECK(start.setting("PlayList") == "/gone.vlp");
    CHECK(start.platform.boxes.shown.empty());
}

TEST_CASE("A stored list of 0 bytes is passed over at the start, unlike by Open")
{
    ListProgram start([](FakePlatform& platform) {
        platform.profile.values[playListKey] = "/empty.vlp";
        platform.files.files["/empty.vlp"] = "";
    });
    CHECK(start.rows().empty());
    CHECK(start.list.PlayListFileName.Text() == "/empty.vlp");
    CHECK(start.list.NamedListActive);
}

TEST_CASE("A stored list that cannot even be measured is passed over")
{
    ListProgram start([](FakePlatform& platform) {
        platform.profile.values[playListKey] = "/locked.vlp";
        platform.files.files["/locked.vlp"] = "/a.mp3\r\n";
        platform.files.failures["/locked.vlp"] = 70;
        platform.files.measures = false;
    });
    CHECK(start.rows().empty());
    CHECK(start.list.PlayListFileName.Text() == "/locked.vlp");
}

TEST_CASE("A stored list that can be measured and not read stands still, as it does for Open")
{
    FakePlatform platform;
    platform.profile.values[playListKey] = "/locked.vlp";
    platform.files.files["/locked.vlp"] = "/a.mp3\r\n";
    platform.files.failures["/locked.vlp"] = 70;
    Program program(platform);
    CHECK(standsStill([&] { program.startUp(); }));
}

TEST_CASE("New and Close empty the list without a question, and playing goes on")
{
    for (const Command command : {&PlayListEditor::GoDoNew, &PlayListEditor::GoDoClose}) {
        ListProgram start;
        start.fill({"/a.mp3", "/b.mp3"});
        start.list.PlayListFileName.setText("/list.vlp");
        start.list.PlayIndex = 1;
        start.player.mp3filename.setCaption("/a.mp3");
        (start.list.*command)();
        CHECK(start.rows().empty());
        CHECK(start.list.PlayListFileName.Text() == "");
        CHECK(start.list.PlayIndex == 1);
        CHECK(start.player.mp3filename.Caption() == "/a.mp3");
        CHECK(start.platform.log.all().empty());
    }
}

TEST_CASE("Songs are added behind the rows, each with its folder once")
{
    struct Case {
        Text what;
        Text folder;
        Lines chosen;
        bool withFolder;
        Lines added;
    };
    const Case cases[] = {
        {"one song", "/music", {"/music/a.mp3"}, false, {"/music/a.mp3"}},
        {"several", "/music", {"/music/b.mp3", "/music/a.mp3"}, false, {"/music/b.mp3", "/music/a.mp3"}},
        {"a folder that ends in a separator", "/", {"/a.mp3"}, false, {"/a.mp3"}},
        {"names with the folder in front", "/music", {"/music/a.mp3"}, true, {"/music/a.mp3"}},
        {"files of more than one folder",
         "",
         {"/music/a.mp3", "/other/b.mp3"},
         true,
         {"/music/a.mp3", "/other/b.mp3"}},
        {"the folder in other letters is another folder",
         "/MUSIC",
         {"/music/a.mp3"},
         true,
         {"/MUSIC//music/a.mp3"}},
        {"a name that only begins like the folder", "mus", {"music.mp3"}, false, {"music.mp3"}},
        {"bytes that are no text", "/caf\xE9", {"/caf\xE9/\xFF.mp3"}, false, {"/caf\xE9/\xFF.mp3"}},
        {"one that the list has already", "/", {"/old.mp3"}, false, {"/old.mp3"}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        ListProgram start;
        start.fill({"/old.mp3"});
        start.list.PlayListLB.setListIndex(0);
        start.platform.OpenSaveDialogP->listFolder = c.folder;
        start.platform.OpenSaveDialogP->namesWithFolder = c.withFolder;
        start.willChoose(c.chosen, 1);
        start.list.GoDoAddSongs();
        Lines expected{"/old.mp3"};
        expected.insert(expected.end(), c.added.begin(), c.added.end());
        CHECK(start.rows() == expected);
        CHECK(start.list.PlayListLB.ListIndex() == 0);
    }
}

TEST_CASE("Add Songs begins on the filter that it was left on, at first on the first")
{
    ListProgram start;
    std::vector<int> shown;
    start.platform.OpenSaveDialogP->onShow = [&] {
        shown.push_back(start.platform.OpenSaveDialogP->filterIndex);
    };
    start.list.GoDoAddSongs();
    CHECK(start.setting("FileType") == "1"); // planted by the mere reading
    start.willChoose({"/a.wav"}, 2);
    start.list.GoDoAddSongs();
    CHECK(start.setting("FileType") == "2");
    start.list.GoDoAddSongs();
    CHECK(start.setting("FileType") == "2");
    CHECK(shown == std::vector{1, 1, 2});
}

TEST_CASE("Add Songs sets the application's folder anew")
{
    ListProgram start;
    start.platform.folder = "/other";
    start.list.GoDoAddSongs();
    CHECK(start.list.AppFolder == "/other/");
    CHECK(start.list.DefaultListPath == "/other/deflist.vlp");
    CHECK(start.platform.profile.values.contains("/other/vlmset.ini|Playlist Editor|FileType"));
}

TEST_CASE("A stored filter that is no number is reported, and no dialog is shown")
{
    struct Case {
        Text stored;
        const char* title;
        const char* text;
    };
    const Case cases[] = {
        {"abc", "Error 13", "Type mismatch"},
        {"40000", "Error 6", "Overflow"},
        {"-", "Error 13", "Type mismatch"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.stored);
        ListProgram start;
        start.setting("FileType") = c.stored;
        start.list.NamedListActive = true;
        start.list.GoDoAddSongs();
        REQUIRE(start.platform.boxes.shown.size() == 1);
        CHECK(start.platform.boxes.shown[0].title == c.title);
        CHECK(start.platform.boxes.shown[0].text == c.text);
        CHECK(start.platform.boxes.shown[0].icon == MessageBoxes::Icon::critical);
        CHECK(start.platform.log.of("OpenSaveDialogP").empty());
        CHECK(start.list.NamedListActive);
    }
}

TEST_CASE("A choice that cannot be read adds nothing; the filter is stored and the mark falls all the same")
{
    ListProgram start;
    start.list.NamedListActive = true;
    start.platform.OpenSaveDialogP->fileListFails = 9;
    start.willChoose({"/a.wav"}, 2);
    start.list.GoDoAddSongs();
    CHECK(start.rows().empty());
    CHECK(start.setting("FileType") == "2");
    CHECK_FALSE(start.list.NamedListActive);
    CHECK(start.platform.boxes.shown.empty());
}

TEST_CASE("Moving, by image, by key event or by a raised key, gives these rows")
{
    struct Case {
        Text what;
        bool up;
        int selected;
        Lines rows;
        int then;
    };
    const Case cases[] = {
        {"the first row up", true, 0, {"a", "b", "c"}, 0},
        {"the second row up", true, 1, {"b", "a", "c"}, 0},
        {"the last row up", true, 2, {"a", "c", "b"}, 1},
        {"nothing up", true, -1, {"a", "b", "c"}, -1},
        {"the first row down", false, 0, {"b", "a", "c"}, 1},
        {"the second row down", false, 1, {"a", "c", "b"}, 2},
        {"the last row down", false, 2, {"a", "b", "c"}, 2},
        {"nothing down", false, -1, {"a", "b", "c"}, -1},
    };
    struct Way {
        Text name;
        std::function<void(ListProgram&, bool up)> move;
    };
    const auto typed = [](Qt::KeyboardModifiers held) {
        return [held](ListProgram& start, bool up) {
            ListHand hand(start.list, start.list.PlayListLB);
            hand.key(up ? Qt::Key_U : Qt::Key_D, up ? "u" : "d", held);
        };
    };
    const Way ways[] = {
        {"image",
         [](ListProgram& start, bool up) {
             (up ? start.list.moveitemupimg : start.list.moveitemdownimg).Click.raise();
         }},
        {"key", typed(Qt::NoModifier)},
        {"Shift and key", typed(Qt::ShiftModifier)},
        {"Control and key", typed(Qt::ControlModifier)},
    };
    for (const auto& way : ways)
        for (const auto& c : cases) {
            CAPTURE(way.name);
            CAPTURE(c.what);
            ListProgram start;
            start.fill({"a", "b", "c"});
            start.list.PlayIndex = start.list.RunIndex = 1;
            start.list.PlayListLB.setListIndex(c.selected);
            way.move(start, c.up);
            CHECK(start.rows() == c.rows);
            CHECK(start.list.PlayListLB.ListIndex() == c.then);
            CHECK(start.list.PlayIndex == 1);
            CHECK(start.list.RunIndex == 1);
        }
}

TEST_CASE("In a list of one row nothing moves")
{
    ListProgram start;
    start.fill({"a"});
    start.list.PlayListLB.setListIndex(0);
    start.list.moveitemupimg.Click.raise();
    start.list.moveitemdownimg.Click.raise();
    CHECK(start.rows() == Lines{"a"});
    CHECK(start.list.PlayListLB.ListIndex() == 0);
}

TEST_CASE("DEL twice removes one row: nothing is selected after the first")
{
    for (const auto held : {Qt::NoModifier, Qt::ShiftModifier}) {
        ListProgram start;
        start.fill({"a", "b", "c"});
        start.list.PlayIndex = 2;
        ListHand hand(start.list, start.list.PlayListLB);
        start.list.PlayListLB.setListIndex(1);
        hand.key(Qt::Key_Delete, "\x7f", held);
        CHECK(start.list.PlayListLB.ListIndex() == -1);
        hand.key(Qt::Key_Delete, "\x7f", held);
        CHECK(start.rows() == Lines{"a", "c"});
        CHECK(start.list.PlayIndex == 2);
    }
}

TEST_CASE("The remove command twice removes one row")
{
    ListProgram start;
    start.fill({"a", "b"});
    start.list.PlayListLB.setListIndex(1);
    start.platform.listMenu->choose(21);
    start.platform.listMenu->choose(21);
    CHECK(start.rows() == Lines{"a"});
    CHECK(start.list.PlayListLB.ListIndex() == -1);
}

TEST_CASE("Each tick keeps the rows in the own format and the way back to them")
{
    ListProgram start;
    start.fill({"/a.mp3", "#b.mp3"});
    start.list.Timer1.Timer.raise();
    CHECK(start.file(workingCopy) == "/a.mp3\r\n#b.mp3\r\n");
    CHECK(start.setting("PlayList") == workingCopy);
    open(start, "/list.m3u", "#EXTM3U\r\n/c.mp3\r\n");
    start.list.Timer1.Timer.raise();
    CHECK(start.file(workingCopy) == "/c.mp3\r\n");
    CHECK(start.setting("PlayList") == "/list.m3u");
}

TEST_CASE("The key is written on every tick, the working copy when it is not what it should be")
{
    ListProgram start;
    start.fill({"/a.mp3"});
    for (int tick = 0; tick < 3; ++tick)
        start.list.Timer1_Timer();
    CHECK(start.platform.log.count(Text("Profile.write PlayList = ") + workingCopy) == 3);
    CHECK(start.platform.log.count(Text("Files.open ") + workingCopy) == 1);
    start.file(workingCopy) = "from outside";
    start.list.Timer1_Timer();
    CHECK(start.file(workingCopy) == "/a.mp3\r\n");
    start.list.PlayListLB.setListIndex(0);
    start.list.Timer1_Timer();
    CHECK(start.platform.log.count(Text("Files.open ") + workingCopy) == 2);
}

TEST_CASE("A tick follows the application's folder")
{
    ListProgram start;
    start.fill({"/a.mp3"});
    start.platform.folder = "/other";
    start.list.Timer1_Timer();
    CHECK(start.file("/other/deflist.vlp") == "/a.mp3\r\n");
    CHECK(start.platform.profile.values["/other/vlmset.ini|Playlist Editor|PlayList"] ==
          "/other/deflist.vlp");
}

TEST_CASE("A tick that fails is silent, and neither half of it stops the other")
{
    ListProgram start;
    start.fill({"/a.mp3"});
    start.platform.files.failures[workingCopy] = 70;
    CHECK(failureOf([&] { start.list.Timer1_Timer(); }) == 0);
    CHECK(start.setting("PlayList") == workingCopy);

    start.platform.files.failures.clear();
    start.platform.profile.readOnly = true;
    start.list.PlayListLB.AddItem("/b.mp3");
    CHECK(failureOf([&] { start.list.Timer1_Timer(); }) == 0);
    CHECK(start.file(workingCopy) == "/a.mp3\r\n/b.mp3\r\n");

    start.platform.files.writeFails = 61;
    start.list.PlayListLB.AddItem("/c.mp3");
    CHECK(failureOf([&] { start.list.Timer1_Timer(); }) == 0);
    CHECK(start.file(workingCopy) == "/a.mp3\r\n/b.mp3\r\n");
    CHECK(start.platform.boxes.shown.empty());
}

TEST_CASE("The last rows stay beside a working copy that becomes empty")
{
    ListProgram start;
    start.fill({"/a.mp3", "/b.mp3"});
    start.list.Timer1_Timer();
    start.list.GoDoNew();
    for (int tick = 0; tick < 3; ++tick)
        start.list.Timer1_Timer();
    CHECK(start.file(workingCopy) == "");
    CHECK(start.file("/app/deflist.vlp.bak") == "/a.mp3\r\n/b.mp3\r\n");
}

TEST_CASE("Rows that cannot leave the working copy are not kept beside it on each tick")
{
    ListProgram start;
    start.fill({"/a.mp3"});
    start.list.Timer1_Timer();
    start.list.GoDoNew();
    start.platform.files.outputFailures[workingCopy] = 70;
    start.list.Timer1_Timer();
    CHECK(start.file(workingCopy) == "/a.mp3\r\n");
    CHECK_FALSE(start.platform.files.files.contains("/app/deflist.vlp.bak"));
}

TEST_CASE("The list and the player are moved by their title bars")
{
    ListProgram start;
    const auto follows = [](Form& window, const ctl::Control& titleBar) {
        window.Show();
        window.setLeft(1500);
        window.setTop(1500);
        QApplication::processEvents();
        Pointer pointer(window);
        const QPointF grip = Pointer::centreOf(titleBar);
        pointer.to(grip).press().to(grip + QPointF(40, 20)).release();
        return window.Left() == 2100 && window.Top() == 1800;
    };
    CHECK(follows(start.list, start.list.PLETitleBarImg));
    CHECK(follows(start.player, start.player.TitleBarImg));
}
