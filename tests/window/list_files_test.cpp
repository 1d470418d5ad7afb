// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/failures.h"
#include "support/list_program.h"

#include <doctest/doctest.h>

namespace
{

using Command = void (PlayListEditor::*)();
using Lines = std::vector<Text>;

constexpr std::int16_t own = 1, m3u = 2, all = 3;

// Two rows whose lengths and tags the second engine knows.
struct TwoSongs : ListProgram {
    TwoSongs()
    {
        fill({"/a.mp3", "/b.mp3"});
        platform.Mp3Player2->length = 185999;
        platform.Mp3Player2->artist = "Artist";
        platform.Mp3Player2->title = "Title";
    }
};

constexpr const char* ownText = "/a.mp3\r\n/b.mp3\r\n";
constexpr const char* m3uText = "#EXTM3U\r\n"
                                "#EXTINF:184,Artist - Title\r\n/a.mp3\r\n"
                                "#EXTINF:184,Artist - Title\r\n/b.mp3\r\n";

// What the user of a dialog does not see prepared is not there.
Lines preparation(const Lines& flags, const Text& title, const Text& filter, const Text& show)
{
    Lines calls = flags;
    for (const Text& call : {Text("InitialName = "), "DialogTitle = " + title, "Filter = " + filter, show})
        calls.push_back(call);
    for (auto& call : calls)
        call = "OpenSaveDialogP." + call;
    return calls;
}

}

TEST_CASE("Each command prepares its dialog in its own way")
{
    const Text lists = "Velmora Playlist|*.vlp|M3U Playlists|*.m3u|All Files|*.*";
    const Text songs = "Mp3 Files|*.mp3|Wav Files|*.wav";
    struct Case {
        Text what;
        Command command;
        Lines calls;
    };
    const Case cases[] = {
        {"Open", &PlayListEditor::GoDoOpen,
         preparation({"Flags = 4112", "CancelError = True"}, "Select a playlist", lists, "ShowOpen")},
        {"Save without a name", &PlayListEditor::GoDoSave,
         preparation({"Flags = 23"}, "Enter a filename", lists, "ShowSave")},
        {"Save As", &PlayListEditor::GoDoSaveAs,
         preparation({"Flags = 23"}, "Enter a filename", lists, "ShowSave")},
        {"Add Songs", &PlayListEditor::GoDoAddSongs,
         preparation({"Flags = 528912", "CancelError = True"},
                     "Select .wav/.mp3 files to add to the playlist", songs, "ShowOpen")},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        ListProgram start;
        (start.list.*c.command)();
        CHECK(start.platform.log.of("OpenSaveDialogP") == c.calls);
    }
}

TEST_CASE("Open, Save and Save As start on the filter that the dialog was left on")
{
    for (const Command command :
         {&PlayListEditor::GoDoOpen, &PlayListEditor::GoDoSave, &PlayListEditor::GoDoSaveAs}) {
        ListProgram start;
        start.willChoose({"/music/a.wav"}, 2); // WAV files, for Add Songs
        start.list.GoDoAddSongs();
        std::int16_t shown = 0;
        start.platform.OpenSaveDialogP->onShow = [&] { shown = start.platform.OpenSaveDialogP->filterIndex; };
        (start.list.*command)();
        CHECK(shown == m3u);
    }
}

TEST_CASE("The question before overwriting is the dialog's, about the name as it was typed")
{
    TwoSongs start;
    start.willChoose({"/list"}, own);
    start.file("/list.vlp") = "older";
    start.list.GoDoSaveAs();
    CHECK((start.platform.OpenSaveDialogP->flags & OpenSaveDialog::askBeforeOverwriting) != 0);
    CHECK(start.platform.boxes.shown.empty());
    CHECK(start.file("/list.vlp") == ownText);
}

TEST_CASE("A dialog that cannot be prepared is reported and not shown")
{
    struct Case {
        Text what;
        Command command;
        bool named;
    };
    const Case cases[] = {
        {"Open", &PlayListEditor::GoDoOpen, false},
        {"Save", &PlayListEditor::GoDoSave, true},
        {"Save As", &PlayListEditor::GoDoSaveAs, true},
        {"Add Songs", &PlayListEditor::GoDoAddSongs, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        ListProgram start;
        start.fill({"/kept.mp3"});
        start.platform.OpenSaveDialogP->prepareFails = 57;
        (start.list.*c.command)();
        REQUIRE(start.platform.boxes.shown.size() == 1);
        const auto& box = start.platform.boxes.shown[0];
        CHECK(box.text == "Device I/O error");
        CHECK(box.title == "Error 57");
        CHECK(box.icon == MessageBoxes::Icon::critical);
        CHECK(box.buttons == MessageBoxes::Buttons::ok);
        CHECK(start.platform.log.count("OpenSaveDialogP.ShowOpen") == 0);
        CHECK(start.platform.log.count("OpenSaveDialogP.ShowSave") == 0);
        CHECK(start.rows() == Lines{"/kept.mp3"});
        CHECK(start.list.NamedListActive == c.named);
    }
}

TEST_CASE("The lines of a text replace the ones before; an empty text leaves none at all")
{
    ListProgram start;
    start.list.SplitListText("a\r\nb\r\n", "\r\n");
    CHECK(start.list.SplitResult == Lines{"a", "b"});
    start.list.SplitListText("c|d|", "|");
    CHECK(start.list.SplitResult == Lines{"c", "d"});
    start.list.SplitListText("", "\r\n");
    CHECK_FALSE(start.list.SplitResult.has_value());
}

TEST_CASE("A list file gives these rows, whatever its name ends in")
{
    struct Case {
        Text what;
        Text text;
        Lines rows;
    };
    const Case cases[] = {
        {"its own format", "/a.mp3\r\n/b.wav\r\n", {"/a.mp3", "/b.wav"}},
        {"M3U", "#EXTM3U\r\n#EXTINF:184,A - T\r\n/a.mp3\r\n", {"/a.mp3"}},
        {"a comment", "/a.mp3\r\n# mine\r\n/b.mp3\r\n", {"/a.mp3", "/b.mp3"}},
        {"comments alone", "#EXTM3U\r\n", {}},
        {"a blank before the number sign", " #a\r\n", {" #a"}},
        {"a blank line in the middle", "/a.mp3\r\n\r\n/b.mp3\r\n", {"/a.mp3", "\r\n/b.mp3"}},
        {"a blank line before a comment, which shows then", "/a\r\n\r\n#c\r\n", {"/a", "\r\n#c"}},
        {"a last line of one character: an empty row", "/a.mp3\r\nb", {"/a.mp3", ""}},
        {"no final line end: the last character is lost", "/a.mp3\r\n/b.mp3", {"/a.mp3", "/b.mp"}},
        {"a byte order mark: a row of its own kind",
         "\xEF\xBB\xBF#EXTM3U\r\n/a\r\n",
         {"\xEF\xBB\xBF#EXTM3U", "/a"}},
        {"blanks and relative paths as they stand", "  ../a.mp3 \r\nb\r\n", {"  ../a.mp3 ", "b"}},
    };
    for (const auto& c : cases)
        for (const Text name : {"/list.vlp", "/list.m3u", "/list.txt"}) {
            CAPTURE(c.what);
            CAPTURE(name);
            ListProgram start;
            start.fill({"/old.mp3", "/older.mp3"});
            start.file(name) = c.text;
            start.willChoose({name});
            start.list.GoDoOpen();
            CHECK(start.rows() == c.rows);
            CHECK(start.list.PlayListFileName.Text() == name);
            CHECK(start.list.ListFileText == c.text);
            CHECK(start.list.ListLines.has_value());
            CHECK(start.list.NamedListActive);
        }
}

TEST_CASE("Opening a list touches no engine and resolves no path")
{
    ListProgram start;
    start.file("/list.vlp") = "/missing.mp3\r\n../relative.mp3\r\n";
    start.willChoose({"/list.vlp"});
    start.list.GoDoOpen();
    CHECK(start.platform.log.of("Mp3Player").empty());
    CHECK(start.platform.log.of("Mp3Player2").empty());
    CHECK(start.platform.log.of("Scan").empty());
}

TEST_CASE("A cancelled Open changes nothing")
{
    ListProgram start;
    start.fill({"/a.mp3"});
    start.list.PlayListFileName.setText("/list.vlp");
    start.list.PlayListLB.setListIndex(0);
    start.list.GoDoOpen();
    CHECK(start.rows() == Lines{"/a.mp3"});
    CHECK(start.list.PlayListFileName.Text() == "/list.vlp");
    CHECK(start.list.PlayListLB.ListIndex() == 0);
    CHECK_FALSE(start.list.NamedListActive);
    CHECK(start.platform.boxes.shown.empty());
}

TEST_CASE("Opening a file of 0 bytes does not come back")
{
    ListProgram start;
    start.file("/list.vlp") = "/a.mp3\r\n";
    start.willChoose({"/list.vlp"});
    start.list.GoDoOpen();
    start.list.NamedListActive = false;

    start.file("/empty.vlp") = "";
    start.willChoose({"/empty.vlp"});
    CHECK(standsStill([&] { start.list.GoDoOpen(); }));
    CHECK(start.list.PlayListFileName.Text() == "/empty.vlp");
    CHECK(start.rows().empty());
    CHECK_FALSE(start.list.ListLines.has_value());
    CHECK_FALSE(start.list.NamedListActive);
    CHECK(start.platform.log.count("Pump.turn") == 0);
}

TEST_CASE("An unreadable file opened before any list was read does not come back either")
{
    ListProgram start;
    start.platform.files.failures["/locked.vlp"] = 70;
    start.willChoose({"/locked.vlp"});
    CHECK(standsStill([&] { start.list.GoDoOpen(); }));
    CHECK(start.list.PlayListFileName.Text() == "/locked.vlp");
    CHECK_FALSE(start.list.NamedListActive);
}

TEST_CASE("An unreadable file opened later builds the rows of the text read before once more")
{
    ListProgram start;
    start.file("/list.vlp") = "/a.mp3\r\n/b.mp3\r\n";
    start.willChoose({"/list.vlp"});
    start.list.GoDoOpen();
    start.fill({"/added.mp3"});
    start.list.NamedListActive = false;
    start.willChoose({"/missing.vlp"});
    start.list.GoDoOpen();
    CHECK(start.rows() == Lines{"/a.mp3", "/b.mp3"});
    CHECK(start.list.PlayListFileName.Text() == "/missing.vlp");
    CHECK(start.list.NamedListActive);
    CHECK(start.platform.boxes.shown.empty());
}

TEST_CASE("A list that is opened selects nothing and leaves the cursor of Next")
{
    ListProgram start;
    start.fill({"/a.mp3", "/b.mp3"});
    start.list.PlayListLB.setListIndex(1);
    start.list.PlayIndex = 1;
    start.file("/list.vlp") = "/c.mp3\r\n";
    start.willChoose({"/list.vlp"});
    start.list.GoDoOpen();
    CHECK(start.list.PlayListLB.ListIndex() == -1);
    CHECK(start.list.PlayIndex == 1);
}

TEST_CASE("A direct Save writes what the name's last three letters say")
{
    struct Case {
        Text name;
        bool isM3u;
    };
    const Case cases[] = {
        {"/list.vlp", false}, {"/list.m3u", true},   {"/list.M3U", true}, {"/list.m3U", true},
        {"/listm3u", true},   {"/list.m3u8", false}, {"/list", false},    {"/list.txt", false},
        {"m3u", true},        {"3u", false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.name);
        TwoSongs start;
        start.list.PlayListFileName.setText(c.name);
        start.platform.OpenSaveDialogP->filterIndex = c.isM3u ? own : m3u; // says nothing here
        start.list.GoDoSave();
        CHECK(start.file(c.name) == (c.isM3u ? m3uText : ownText));
        CHECK(start.list.NamedListActive);
        CHECK(start.platform.log.of("OpenSaveDialogP").empty());
    }
}

TEST_CASE("Save As adds the filter's letters to a name without them, and writes what the filter says")
{
    struct Case {
        std::int16_t filter;
        Text typed, saved;
        bool isM3u;
    };
    const Case cases[] = {
        {own, "/list", "/list.vlp", false},         {own, "/list.vlp", "/list.vlp", false},
        {own, "/list.VLP", "/list.VLP", false},     {own, "/listvlp", "/listvlp", false},
        {own, "/list.m3u", "/list.m3u.vlp", false}, {m3u, "/list", "/list.m3u", true},
        {m3u, "/list.M3U", "/list.M3U", true},      {m3u, "/listm3u", "/listm3u", true},
        {m3u, "/list.vlp", "/list.vlp.m3u", true},  {all, "/list", "/list", false},
        {all, "/list.m3u", "/list.m3u", false},     {all, "/list.vlp", "/list.vlp", false},
    };
    for (const auto& c : cases)
        for (const Command command : {&PlayListEditor::GoDoSaveAs, &PlayListEditor::GoDoSave}) {
            CAPTURE(c.filter);
            CAPTURE(c.typed);
            TwoSongs start;
            start.willChoose({c.typed}, c.filter);
            (start.list.*command)();
            CHECK(start.file(c.saved) == (c.isM3u ? m3uText : ownText));
            CHECK(start.list.PlayListFileName.Text() == c.saved);
            CHECK(start.list.NamedListActive);
            CHECK((c.saved == c.typed || !start.platform.files.files.contains(c.typed)));
        }
}

TEST_CASE("A dialog that was never on a filter saves the own format under the name as typed")
{
    TwoSongs start;
    start.willChoose({"/list.m3u"});
    start.list.GoDoSaveAs();
    CHECK(start.file("/list.m3u") == ownText);
}

TEST_CASE("An empty list is a file of 0 bytes, and in M3U a header alone")
{
    struct Case {
        Text name;
        Text text;
    };
    for (const auto& c : {Case{"/list.vlp", ""}, Case{"/list.m3u", "#EXTM3U\r\n"}}) {
        ListProgram direct;
        direct.list.PlayListFileName.setText(c.name);
        direct.file(c.name) = "older";
        direct.list.GoDoSave();
        CHECK(direct.file(c.name) == c.text);

        ListProgram through;
        through.file(c.name) = "older";
        through.willChoose({c.name}, !c.text.empty() ? m3u : own);
        through.list.GoDoSaveAs();
        CHECK(through.file(c.name) == c.text);
    }
}

TEST_CASE("What was saved and is read again gives the same rows")
{
    const Lines rows{"/a.mp3", "/caf\xE9.mp3", "/caf\xC3\xA9.wav", " /blank .mp3", "relative.mp3", "/c.MP3"};
    for (const Text name : {"/list.vlp", "/list.m3u", "/list.txt"}) {
        CAPTURE(name);
        ListProgram start;
        start.fill(rows);
        start.list.PlayListFileName.setText(name);
        start.list.GoDoSave();
        start.list.GoDoNew();
        start.willChoose({name});
        start.list.GoDoOpen();
        CHECK(start.rows() == rows);
    }
}

TEST_CASE("A file's line for other players is written while the engine still has the file open")
{
    const Lines expected{"write #EXTM3U",
                         "Open(/a.mp3)",
                         "Length",
                         "Artist",
                         "Title",
                         "write #EXTINF:184,Artist - Title",
                         "Close",
                         "write /a.mp3",
                         "Open(/b.mp3)",
                         "Length",
                         "Artist",
                         "Title",
                         "write #EXTINF:184,Artist - Title",
                         "Close",
                         "write /b.mp3"};
    for (const bool direct : {true, false}) {
        TwoSongs start;
        Lines steps;
        start.platform.Mp3Player2->onCall = [&](const Text& call) { steps.push_back(call); };
        start.platform.Mp3Player2->onQuestion = [&](const Text& question) { steps.push_back(question); };
        start.platform.files.onWrite = [&](std::string_view line) {
            steps.push_back("write " + Text(line.substr(0, line.size() - 2)));
        };
        if (direct)
            start.list.PlayListFileName.setText("/list.m3u");
        else
            start.willChoose({"/list.m3u"}, m3u);
        start.list.GoDoSave();
        CHECK(steps == expected);
        CHECK(start.platform.log.of("Mp3Player").empty());
    }
}

TEST_CASE("The own format asks no engine")
{
    TwoSongs start;
    start.willChoose({"/list"}, own);
    start.list.GoDoSaveAs();
    CHECK(start.platform.log.of("Mp3Player2").empty());
}

TEST_CASE("A file that does not open keeps the M3U save waiting, with the window alive")
{
    for (const bool direct : {true, false}) {
        TwoSongs start;
        start.list.PlayListFileName.setText(direct ? "/list.m3u" : "");
        start.willChoose({"/list.m3u"}, m3u);
        start.platform.Mp3Player2->openResults = {7, 7, 0};
        int ticks = 0;
        start.platform.scriptedPump.steps = {[&] { start.list.Timer1_Timer(), ++ticks; }, nullptr};
        start.list.GoDoSave();
        CHECK(ticks == 1);
        CHECK(start.platform.log.count("Mp3Player2.Open(/a.mp3)") == 3);
        CHECK(start.file("/list.m3u") == m3uText);
        CHECK(start.file("/app/deflist.vlp") == ownText);
    }
}

TEST_CASE("A file that never opens keeps the M3U save for ever, and the old file stands")
{
    TwoSongs start;
    start.list.PlayListFileName.setText("/list.m3u");
    start.file("/list.m3u") = "older";
    start.platform.Mp3Player2->openResults.assign(100, 1);
    start.platform.scriptedPump.steps.assign(20, nullptr);
    CHECK(waitsForEver([&] { start.list.GoDoSave(); }));
    CHECK(start.file("/list.m3u") == "older");
}

TEST_CASE("The rows that change under a waiting save: texts are read anew, their number is not")
{
    struct Case {
        Text what;
        std::function<void(ListProgram&)> change;
        const char* lines;
    };
    const Case cases[] = {
        {"the row that is tried is replaced",
         [](ListProgram& start) {
             start.fill({"/new.mp3", "/b.mp3"});
         },
         "#EXTM3U\r\n#EXTINF:-1, - \r\n/new.mp3\r\n#EXTINF:-1, - \r\n/b.mp3\r\n"},
        {"a row is added", [](ListProgram& start) { start.list.PlayListLB.AddItem("/c.mp3"); },
         "#EXTM3U\r\n#EXTINF:-1, - \r\n/a.mp3\r\n#EXTINF:-1, - \r\n/b.mp3\r\n"},
    };
    for (const auto& c : cases)
        for (const bool direct : {true, false}) {
            CAPTURE(c.what);
            ListProgram start;
            start.fill({"/a.mp3", "/b.mp3"});
            start.list.PlayListFileName.setText(direct ? "/list.m3u" : "");
            start.willChoose({"/list.m3u"}, m3u);
            start.platform.Mp3Player2->openResults = {1, 0};
            start.platform.scriptedPump.steps = {[&] { c.change(start); }};
            start.list.GoDoSave();
            CHECK(start.file("/list.m3u") == c.lines);
            const Text nowFirst = start.rows().front();
            CHECK(start.platform.log.of("Mp3Player2")[1] == "Mp3Player2.Open(" + nowFirst + ")");
        }
}

TEST_CASE(
    "A row that is removed under a waiting save leaves it waiting for ever: no file without a name opens")
{
    for (const bool direct : {true, false}) {
        ListProgram start;
        start.fill({"/a.mp3", "/b.mp3"});
        start.file("/list.m3u") = "older";
        start.list.PlayListFileName.setText(direct ? "/list.m3u" : "");
        start.willChoose({"/list.m3u"}, m3u);
        start.platform.Mp3Player2->openResults = {1, 0, 1, 1, 1, 1, 1}; // as the real engine answers
        start.platform.scriptedPump.steps.assign(5, nullptr);
        start.platform.scriptedPump.steps.front() = [&] { start.list.PlayListLB.RemoveItem(0); };
        CHECK(waitsForEver([&] { start.list.GoDoSave(); }));
        CHECK(start.platform.log.count("Mp3Player2.Open(/b.mp3)") == 1);
        CHECK(start.platform.log.count("Mp3Player2.Open()") > 1);
        CHECK(start.file("/list.m3u") == "older");
    }
}

TEST_CASE("The filter counts at each line, also when another dialog moved it during the save")
{
    TwoSongs start;
    start.willChoose({"/list.m3u"}, m3u);
    start.platform.Mp3Player2->openResults = {1, 0};
    start.platform.scriptedPump.steps = {[&] {
        start.willChoose({"/music/c.mp3"}, 1);
        start.list.GoDoAddSongs();
    }};
    start.list.GoDoSaveAs();
    CHECK(start.file("/list.m3u") == "#EXTM3U\r\n#EXTINF:184,Artist - Title\r\n/a.mp3\r\n/b.mp3\r\n");
    CHECK(start.list.PlayListFileName.Text() == "/list.m3u");
}

TEST_CASE("What fails in a direct Save is handled nowhere, and the old file stands")
{
    for (const int number : {61, 70, 75, 76}) {
        TwoSongs start;
        start.list.PlayListFileName.setText("/list.vlp");
        start.file("/list.vlp") = "older";
        start.platform.files.failures["/list.vlp"] = number;
        CHECK(failureOf([&] { start.list.GoDoSave(); }) == number);
        CHECK(start.list.NamedListActive);
        CHECK(start.file("/list.vlp") == "older");
        CHECK(start.platform.boxes.shown.empty());
    }
    TwoSongs start;
    start.list.PlayListFileName.setText("/list.m3u");
    start.platform.files.writeFails = 61;
    CHECK(failureOf([&] { start.list.GoDoSave(); }) == 61);
    CHECK(start.platform.log.of("Mp3Player2").empty());
}

TEST_CASE("What fails after Save As's dialog is left out: every file is still tried, and the name shows")
{
    TwoSongs start;
    start.willChoose({"/list"}, m3u);
    start.platform.files.failures["/list.m3u"] = 75;
    start.platform.Mp3Player2->openResults = {1, 0, 1, 1, 0};
    start.platform.scriptedPump.steps.assign(3, nullptr);
    start.list.GoDoSaveAs();
    CHECK(start.platform.log.count("Mp3Player2.Open(/a.mp3)") == 2);
    CHECK(start.platform.log.count("Mp3Player2.Open(/b.mp3)") == 3);
    CHECK(start.platform.log.count("Mp3Player2.Close") == 2);
    CHECK(start.list.PlayListFileName.Text() == "/list.m3u");
    CHECK(start.list.NamedListActive);
    CHECK_FALSE(start.platform.files.files.contains("/list.m3u"));
    CHECK(start.platform.boxes.shown.empty());
}

TEST_CASE("A disk that fills during Save As is not told of, and the old file stands")
{
    TwoSongs start;
    start.willChoose({"/list.vlp"}, own);
    start.file("/list.vlp") = "older";
    start.platform.files.writeFails = 61;
    CHECK(failureOf([&] { start.list.GoDoSaveAs(); }) == 0);
    CHECK(start.file("/list.vlp") == "older");
    CHECK(start.list.PlayListFileName.Text() == "/list.vlp");
    CHECK(start.platform.boxes.shown.empty());
}

TEST_CASE("A cancelled Save of an unnamed list counts it as named: the next start is empty")
{
    for (const Command command : {&PlayListEditor::GoDoSave, &PlayListEditor::GoDoSaveAs}) {
        TwoSongs start;
        (start.list.*command)();
        CHECK(start.list.NamedListActive);
        CHECK(start.list.PlayListFileName.Text() == "");
        CHECK(start.rows() == Lines{"/a.mp3", "/b.mp3"});
        start.list.Timer1_Timer();
        CHECK(start.setting("PlayList") == "");
        auto next = ListProgram::after(start);
        CHECK(next.rows().empty());
        CHECK(next.list.PlayListFileName.Text() == "");
    }
}

TEST_CASE("A cancel that is no failure saves under the bare letters of the filter")
{
    struct Case {
        std::int16_t filter;
        Text name;
    };
    for (const auto& c : {Case{own, ".vlp"}, Case{m3u, ".m3u"}}) {
        TwoSongs start;
        start.platform.OpenSaveDialogP->cancelError = false;
        start.platform.OpenSaveDialogP->filterIndex = c.filter;
        start.list.GoDoSaveAs();
        CHECK(start.file(c.name) == (c.filter == m3u ? m3uText : ownText));
        CHECK(start.list.PlayListFileName.Text() == c.name);
    }
}

TEST_CASE("Save As never touches what a cancel means; Open and Add Songs do, for good")
{
    TwoSongs start;
    start.platform.OpenSaveDialogP->cancelError = false;
    start.willChoose({"/list"}, own);
    start.list.GoDoSaveAs();
    CHECK_FALSE(start.platform.OpenSaveDialogP->cancelError);
    start.list.GoDoOpen();
    CHECK(start.platform.OpenSaveDialogP->cancelError);
    start.list.GoDoSaveAs();
    CHECK_FALSE(start.platform.files.files.contains(".vlp"));
}
