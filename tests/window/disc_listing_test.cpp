// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/curl_cd_base.h"
#include "support/disc_program.h"
#include "support/failures.h"
#include "support/loopback_server.h"
#include "support/temporary_folder.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::int32_t length(std::int32_t minutes, std::int32_t seconds)
{
    return (minutes * 60 + seconds) * 1000;
}

// A disc that was never listed, and one of whose tracks has no title.
void putTitledDisc(DiscProgram& p)
{
    p.reader().tracks = {length(3, 25), length(4, 10), length(1, 0)};
    p.titles().artist = "Band";
    p.titles().titles = {{1, "One"}, {3, "Three"}};
    p.platform.log.clear();
}

void wantTitles(DiscProgram& p)
{
    p.settings.chkCDDB.setValue(1);
    p.platform.log.clear();
}

Text untilCommand(DiscProgram& p, int drive)
{
    return "CDtoWAV.Init\nCDtoWAV.SelectDrive(" + textOf(drive) +
           ")\nCdBase1.ContactIdentity = " + p.titles().identity +
           "\nCdBase1.Device = default\nCdBase1.TimeLimit = 30000\nCdBase1.Command = Open\n";
}

// The program's own titles, from a server of the test's. They give up in a hundredth of the time.
class HastyTitles final : public CdBase
{
public:
    explicit HastyTitles(const Text& address) :
        titles_(disc::makeCurlCdBase(
            {.addresses = {address},
             .cacheFolder = folder_ / "titles",
             .firstDrive = [] { return "Drive one"; },
             .disc =
                 [] {
                     return disc::DiscContents{{{true, 0, 15375}, {true, 15375, 18750}}, 34125};
                 }}))
    {
    }

    void setContactIdentity(const Text& address) override { titles_->setContactIdentity(address); }
    Text DefaultDevice() const override { return titles_->DefaultDevice(); }
    void setDevice(const Text& device) override { titles_->setDevice(device); }
    void setTimeLimit(std::int32_t limit) override { titles_->setTimeLimit(limit / 100); }
    void setCommand(const Text& word) override { titles_->setCommand(word); }
    void Lookup() override { titles_->Lookup(); }
    Text DiscArtist() const override { return titles_->DiscArtist(); }
    Text TrackTitle(std::int16_t track) const override { return titles_->TrackTitle(track); }

private:
    TemporaryFolder folder_;
    std::unique_ptr<CdBase> titles_;
};

// The disc's rows, listed with titles that come from the server.
std::vector<Text> rowsWith(const LoopbackServer& server)
{
    DiscProgram p([&](FakePlatform& platform) {
        platform.otherTitles = [&] { return std::make_unique<HastyTitles>(server.address()); };
    });
    wantTitles(p);
    p.list({length(3, 25), length(4, 10)});
    return p.tracks();
}

constexpr const char* cannotStart = "Can\u00B4t initialize ASPI! Please use a newer version of ASPI.";

// Every way to the workbench or the settings that loads all settings.
struct Opening {
    Text what;
    std::function<void(DiscProgram&)> open;
};
const Opening openings[] = {
    {"menu: WAV to MP3", [](DiscProgram& p) { p.platform.mainMenu->choose(10); }},
    {"menu: settings of it", [](DiscProgram& p) { p.platform.mainMenu->choose(11); }},
    {"menu: MP3 to WAV", [](DiscProgram& p) { p.platform.mainMenu->choose(13); }},
    {"menu: settings of that", [](DiscProgram& p) { p.platform.mainMenu->choose(14); }},
    {"menu: CD to WAV", [](DiscProgram& p) { p.platform.mainMenu->choose(16); }},
    {"menu: WAV to CD", [](DiscProgram& p) { p.platform.mainMenu->choose(17); }},
    {"button on the first tab", [](DiscProgram& p) { p.workbench.EncSettings.Click.raise(); }},
    {"button on the second", [](DiscProgram& p) { p.workbench.Command2.Click.raise(); }},
    {"button on the third", [](DiscProgram& p) { p.workbench.EncCDtoWAVSet.Click.raise(); }},
    {"button on the fourth", [](DiscProgram& p) { p.workbench.EncWAVtoCDsettings.Click.raise(); }},
};

}

TEST_CASE("Starting the reader lists its drives and goes to the first")
{
    DiscProgram p;
    p.reader().drives = {"One", "Two", "Three"};
    p.workbench.pc_len.setCaption("");
    p.workbench.ProgressBarCDtoWAVat.setValue(40);
    p.workbench.ProgressBarCDtoWAVtt.setValue(60);
    p.settings.init();
    CHECK(p.calls() == "CDtoWAV.Init\nCDtoWAV.DriveCount\nCDtoWAV.DriveName(1)\nCDtoWAV.DriveName(2)\n"
                       "CDtoWAV.DriveName(3)\nCDtoWAV.SelectDrive(1)\n");
    CHECK(rowsOf(p.settings.CDDrives) == std::vector<Text>{"One", "Two", "Three"});
    CHECK(p.settings.CDDrives.ListIndex() == -1);
    CHECK(p.workbench.pc_len.Caption() == "100");
    CHECK(p.workbench.ProgressBarCDtoWAVat.Value() == 0);
    CHECK(p.workbench.ProgressBarCDtoWAVtt.Value() == 0);
}

TEST_CASE("Starting passes over a drive without a name and a drive that cannot be selected, without a word")
{
    DiscProgram p;
    p.reader().drives = {"One", "Two", "Three"};
    p.fails("CDtoWAV.DriveName(2)");
    p.settings.init();
    CHECK(rowsOf(p.settings.CDDrives) == std::vector<Text>{"One", "Three"});
    p.fails("CDtoWAV.SelectDrive");
    p.settings.init();
    CHECK(rowsOf(p.settings.CDDrives) == std::vector<Text>{"One", "Two", "Three"});
    CHECK_FALSE(p.message());
    CHECK(p.platform.boxes.shown.empty());
}

TEST_CASE("Drives that cannot be counted leave an empty list, and the first one is gone to all the same")
{
    DiscProgram p;
    p.fails("CDtoWAV.DriveCount");
    CHECK(failureOf([&] { p.settings.init(); }) == 0);
    CHECK(rowsOf(p.settings.CDDrives).empty());
    CHECK(p.calls() == "CDtoWAV.Init\nCDtoWAV.DriveCount\nCDtoWAV.SelectDrive(1)\n");
    CHECK_FALSE(p.message());
}

TEST_CASE("A reader whose start fails is told like one that cannot start, and lists nothing")
{
    DiscProgram p;
    p.list({length(3, 25)});
    p.fails("CDtoWAV.Init");
    CHECK(failureOf([&] { p.settings.get_tracks_fsd(); }) == 0);
    CHECK_FALSE(p.message());
    CHECK(failureOf([&] { p.settings.init(); }) == 0);
    CHECK(p.message() == cannotStart);
    CHECK(p.calls() == "CDtoWAV.Init\nCDtoWAV.Init\n");
    CHECK(rowsOf(p.settings.CDDrives) == std::vector<Text>{"Drive one", "Drive two"});
    CHECK(p.tracks().size() == 1);
}

TEST_CASE("A reader that cannot start is told at each opening, and all lists stay as they were")
{
    DiscProgram p;
    p.list({length(3, 25)});
    p.store(cdToWav, "Settings Saved", "yes");
    p.store(cdToWav, "CD Drive", "2");
    p.workbench.TLCDDB.AddItem("old");
    p.workbench.pc_len.setCaption("50");
    p.reader().drives = {"Another"};
    p.reader().init = 1;
    for (const auto& opening : openings) {
        CAPTURE(opening.what);
        p.program.error().theerror.setCaption("");
        p.program.error().Hide();
        opening.open(p);
        CHECK(p.message() == cannotStart);
        CHECK(rowsOf(p.settings.CDDrives) == std::vector<Text>{"Drive one", "Drive two"});
        CHECK(p.workbench.pc_len.Caption() == "50");
        CHECK(p.tracks().size() == 1);
        CHECK(rowsOf(p.workbench.TLCDDB) == std::vector<Text>{"old"});
        CHECK(p.platform.log.of("CDtoWAV") == std::vector<Text>{"CDtoWAV.Init", "CDtoWAV.Init"});
        CHECK(p.platform.log.of("CdBase1").empty());
        p.platform.log.clear();
    }
    CHECK(p.workbench.Visible());
    CHECK(p.settings.Visible());
}

TEST_CASE("Listing alone says nothing about a reader that cannot start")
{
    DiscProgram p;
    p.list({length(3, 25)});
    p.reader().init = -1;
    p.reader().tracks = {};
    p.settings.get_tracks_fsd();
    CHECK(p.calls() == "CDtoWAV.Init\n");
    CHECK(p.tracks().size() == 1);
    CHECK_FALSE(p.message());
}

TEST_CASE("A disc is listed by these calls, in this order")
{
    DiscProgram p;
    putTitledDisc(p);
    p.reader().tracks.resize(2);
    p.settings.get_tracks_fsd();
    const Text rows = "CDtoWAV.TrackCount\n"
                      "CdBase1.TrackTitle(1)\nCDtoWAV.TrackLength(1)\nCDtoWAV.TrackLength(1)\n"
                      "CdBase1.TrackTitle(2)\nCDtoWAV.TrackLength(2)\nCDtoWAV.TrackLength(2)\n";
    CHECK(p.calls() == untilCommand(p, 1) + rows);
    wantTitles(p);
    p.settings.get_tracks_fsd();
    CHECK(p.calls() == untilCommand(p, 1) + "CdBase1.Lookup\n" + rows);
}

TEST_CASE("The contact identity has the form of an e-mail address")
{
    DiscProgram p;
    p.settings.get_tracks_fsd();
    const auto at = p.titles().identity.find('@');
    CHECK(at != Text::npos);
    CHECK(at > 0);
    CHECK(at + 1 < p.titles().identity.size());
}

TEST_CASE("Without titles the rows are numbered, whatever the lookup still knows, and the old titles stay")
{
    DiscProgram p;
    p.platform.sign = ",";
    putTitledDisc(p);
    p.workbench.TLCDDB.AddItem("old");
    p.settings.get_tracks_fsd();
    CHECK(p.tracks() == std::vector<Text>{"Track 01    03,25    32,8  MB", "Track 02    04,10    41,4  MB",
                                          "Track 03    01,00    10,1  MB"});
    CHECK(rowsOf(p.workbench.TLCDDB) == std::vector<Text>{"old"});
}

TEST_CASE("With titles a track without one is numbered and adds none")
{
    DiscProgram p;
    putTitledDisc(p);
    wantTitles(p);
    p.workbench.TLCDDB.AddItem("old");
    p.settings.get_tracks_fsd();
    CHECK(p.tracks() == std::vector<Text>{"Band - One    325.00    3279.3  MB",
                                          "Track 02    410.00    4136.9  MB",
                                          "Band - Three    10.00    100.9  MB"});
    CHECK(rowsOf(p.workbench.TLCDDB) == std::vector<Text>{"Band - One", "Band - Three"});
}

TEST_CASE("A disc that nobody knows is numbered throughout, and no old title survives")
{
    DiscProgram p;
    wantTitles(p);
    p.workbench.TLCDDB.AddItem("old");
    p.list({length(3, 25), length(4, 10)});
    CHECK(p.tracks() ==
          std::vector<Text>{"Track 01    325.00    3279.3  MB", "Track 02    410.00    4136.9  MB"});
    CHECK(rowsOf(p.workbench.TLCDDB).empty());
}

TEST_CASE("Titles come into the rows from the web, and a server that says nothing leaves numbers")
{
    LoopbackServer good([](const Text& target, const LoopbackServer::Client& client) {
        const bool isQuery = fieldOf(target, "cmd").starts_with("cddb query");
        client.sendPage(isQuery ? "200 rock 0201c702 Band / Disc\r\n"
                                : "210 rock 0201c702\r\nDTITLE=Band / Disc\r\nTTITLE0=One\r\n"
                                  "TTITLE1=Two\r\n.\r\n");
    });
    CHECK(rowsWith(good) ==
          std::vector<Text>{"Band - One    325.00    3279.3  MB", "Band - Two    410.00    4136.9  MB"});
    CHECK(good.requests().size() == 2);

    LoopbackServer silent([](const Text&, const LoopbackServer::Client& client) { client.isGone(-1); });
    CHECK(rowsWith(silent) ==
          std::vector<Text>{"Track 01    325.00    3279.3  MB", "Track 02    410.00    4136.9  MB"});
    CHECK(silent.requests().size() == 1);
}

TEST_CASE("A title without an artist keeps the dash")
{
    DiscProgram p;
    putTitledDisc(p);
    p.titles().artist = "";
    wantTitles(p);
    p.settings.get_tracks_fsd();
    CHECK(p.workbench.TLCDDB.List(0) == " - One");
}

TEST_CASE("A disc without tracks leaves an empty list")
{
    DiscProgram p;
    p.list({length(3, 25), length(4, 10)});
    p.list({});
    CHECK(p.tracks().empty());
    CHECK(p.workbench.TracksList.ListIndex() == -1);
}

TEST_CASE("The tenth track has two digits, and no row of a new list is checked")
{
    DiscProgram p;
    p.list(std::vector<std::int32_t>(99, length(1, 0)));
    p.check({0, 98});
    p.settings.get_tracks_fsd();
    CHECK(p.tracks().size() == 99);
    CHECK(p.tracks()[8].starts_with("Track 09 "));
    CHECK(p.tracks()[9].starts_with("Track 10 "));
    CHECK(p.tracks()[98].starts_with("Track 99 "));
    for (std::int32_t row = 0; row < 99; ++row)
        CHECK_FALSE(p.workbench.TracksList.Selected(row));
}

TEST_CASE("The drive is the stored one once the tab was saved, else the first")
{
    struct Case {
        Text what, saved, drive, selects;
    };
    const Case cases[] = {
        {"never saved", "", "2", "CDtoWAV.SelectDrive(1)"},
        {"saved", "yes", "2", "CDtoWAV.SelectDrive(2)"},
        {"no drive was selected when it was saved", "yes", "0", "CDtoWAV.SelectDrive(0)"},
        {"a drive that is gone", "yes", "9", "CDtoWAV.SelectDrive(9)"},
        {"another word than yes", "YES", "2", "CDtoWAV.SelectDrive(1)"},
        {"no number", "yes", "two", ""},
        {"no drive", "yes", "", ""},
        {"a number that is too large", "yes", "70000", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        DiscProgram p;
        p.reader().tracks = {length(1, 0)};
        p.store(cdToWav, "Settings Saved", c.saved);
        p.store(cdToWav, "CD Drive", c.drive);
        p.settings.get_tracks_fsd();
        auto selects = p.platform.log.of("CDtoWAV");
        std::erase_if(selects, [](const Text& call) { return !call.starts_with("CDtoWAV.SelectDrive"); });
        CHECK(selects == (c.selects.empty() ? std::vector<Text>() : std::vector<Text>{c.selects}));
        CHECK(p.tracks().size() == 1);
        CHECK_FALSE(p.message());
    }
}

TEST_CASE("A failure before the disc is opened is passed over, one from there on ends the listing, silently")
{
    struct Case {
        Text call;
        bool titles;
        std::size_t rows;
        std::vector<Text> titled;
    };
    const std::vector<Text> old{"old"};
    const Case cases[] = {
        {"CDtoWAV.SelectDrive", false, 3, old},
        {"CdBase1.ContactIdentity", false, 3, old},
        {"CdBase1.Device", false, 3, old},
        {"CdBase1.TimeLimit", false, 3, old},
        {"CdBase1.Command", false, 0, old},
        {"CdBase1.Command", true, 0, old},
        {"CdBase1.Lookup", true, 0, {}},
        {"CDtoWAV.TrackCount", false, 0, old},
        {"CDtoWAV.TrackCount", true, 0, {}},
        {"CdBase1.TrackTitle(1)", false, 0, old},
        {"CdBase1.TrackTitle(3)", true, 2, {"Band - One"}},
        {"CDtoWAV.TrackLength(2)", false, 1, old},
        {"CDtoWAV.TrackLength(3)", true, 2, {"Band - One", "Band - Three"}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.call);
        CAPTURE(c.titles);
        DiscProgram p;
        p.list({length(9, 9), length(9, 9), length(9, 9), length(9, 9)});
        putTitledDisc(p);
        if (c.titles)
            wantTitles(p);
        p.workbench.TLCDDB.AddItem("old");
        p.fails(c.call);
        p.settings.get_tracks_fsd();
        CHECK(p.tracks().size() == c.rows);
        CHECK(rowsOf(p.workbench.TLCDDB) == c.titled);
        CHECK_FALSE(p.message());
        CHECK(p.platform.boxes.shown.empty());
    }
}

TEST_CASE("Each opening lists the disc, and asks for its titles when they are wanted")
{
    for (const Text titles : {"0", "1"})
        for (const auto& opening : openings) {
            CAPTURE(titles);
            CAPTURE(opening.what);
            DiscProgram p;
            p.store(cdToWav, "Settings Saved", "yes");
            p.store(cdToWav, "CD Drive", "1");
            p.store(cdToWav, "Access CDDB", titles);
            putTitledDisc(p);
            opening.open(p);
            CHECK(p.tracks().size() == 3);
            CHECK(p.platform.log.count("CdBase1.Command = Open") == 1);
            CHECK(p.platform.log.count("CdBase1.Lookup") == (titles == "1" ? 1 : 0));
        }
}

TEST_CASE("Drives come and go between two openings")
{
    DiscProgram p;
    p.store(cdToWav, "Settings Saved", "yes");
    p.store(cdToWav, "CD Drive", "3");
    const auto open = [&](const std::vector<Text>& drives) {
        p.reader().drives = drives;
        p.workbench.EncCDtoWAVSet_Click();
        CHECK(rowsOf(p.settings.CDDrives) == drives);
        return p.settings.CDDrives.ListIndex();
    };
    CHECK(open({"One", "Two", "Three"}) == 2);
    CHECK(open({"One", "Two"}) == -1);
    CHECK(open({"One", "Two", "Three", "Four"}) == 2);
    CHECK(open({}) == -1);
    CHECK(open({"One"}) == -1);
    CHECK_FALSE(p.message());
    p.settings.SetCDtoWAVApp_Click();
    CHECK(p.stored(cdToWav, "CD Drive") == "0");
}

TEST_CASE("With an empty drive alone everything opens, and no click ends the program")
{
    for (const auto& opening : openings) {
        CAPTURE(opening.what);
        DiscProgram p([](FakePlatform& platform) {
            platform.onACD = [](RecordingACD& reader) { reader.drives = {"Disc image: none"}; };
        });
        CHECK(failureOf([&] {
                  opening.open(p);
                  p.workbench.butRefresh.Click.raise();
                  p.workbench.EncCDtoWAVStart.Click.raise();
                  p.workbench.EncCDtoWAVStop.Click.raise();
                  p.settings.chkCDDB.setValue(1);
                  p.settings.SetCDtoWAVApp.Click.raise();
                  opening.open(p);
              }) == 0);
        CHECK(rowsOf(p.settings.CDDrives) == std::vector<Text>{"Disc image: none"});
        CHECK(p.tracks().empty());
        CHECK_FALSE(p.message());
    }
}

TEST_CASE("Refresh compares the first track's line with the first row, and lists the disc when they differ")
{
    struct Case {
        Text what, sign;
        std::vector<std::int32_t> listed, inserted;
        bool lists;
    };
    const Case cases[] = {
        {"the same disc", ".", {length(3, 25), length(4, 0)}, {length(3, 25), length(4, 0)}, false},
        {"another disc", ".", {length(3, 25)}, {length(3, 26)}, true},
        {"another disc with the same first track",
         ".",
         {length(3, 25), length(4, 0)},
         {length(3, 25)},
         false},
        {"less than a second's difference", ".", {205000}, {205999}, false},
        {"3:05 after 3:50, decimal comma", ",", {length(3, 50)}, {length(3, 5)}, false},
        {"3:05 after 3:50, decimal point", ".", {length(3, 50)}, {length(3, 5)}, true},
        {"3:05 after 0:35, decimal point", ".", {length(0, 35)}, {length(3, 5)}, false},
        {"3:05 after 0:35, decimal comma", ",", {length(0, 35)}, {length(3, 5)}, true},
        {"the disc was taken out", ".", {length(3, 25)}, {}, true},
        {"a disc was put in", ".", {}, {length(3, 25)}, true},
        {"still no disc", ".", {}, {}, true},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        DiscProgram p;
        p.platform.sign = c.sign;
        p.list(c.listed);
        p.reader().tracks = c.inserted;
        p.workbench.butRefresh.Click.raise();
        CHECK(p.platform.log.count("CdBase1.Command = Open") == (c.lists ? 1 : 0));
        CHECK(p.tracks().size() == (c.lists ? c.inserted : c.listed).size());
    }
}

TEST_CASE(
    "A refresh of an unchanged disc asks for the drive and twice for the first length, and keeps the marks")
{
    DiscProgram p;
    p.list({length(3, 25), length(4, 0)});
    p.check({1});
    p.workbench.butRefresh_Click();
    CHECK(p.calls() == "CDtoWAV.SelectDrive(1)\nCDtoWAV.TrackLength(1)\nCDtoWAV.TrackLength(1)\n");
    CHECK(p.workbench.firstTrackLine == "Track 01    325.00    3279.3  MB");
    CHECK(p.workbench.TracksList.Selected(1));
}

TEST_CASE("A refresh takes the drive where listing takes it, but does not pass over an unusable number")
{
    struct Case {
        Text saved, drive;
        Text calls;
        int fails;
    };
    const Text rest = "CDtoWAV.TrackLength(1)\nCDtoWAV.TrackLength(1)\n";
    const Case cases[] = {
        {"", "2", "CDtoWAV.SelectDrive(1)\n" + rest, 0},
        {"no", "2", "CDtoWAV.SelectDrive(1)\n" + rest, 0},
        {"yes", "2", "CDtoWAV.SelectDrive(2)\n" + rest, 0},
        {"yes", "0", "CDtoWAV.SelectDrive(0)\n" + rest, 0},
        {"yes", "two", "", 13},
        {"yes", "", "", 13},
        {"yes", "70000", "", 6},
    };
    for (const auto& c : cases) {
        CAPTURE(c.drive);
        DiscProgram p;
        p.list({length(3, 25)});
        p.store(cdToWav, "Settings Saved", c.saved);
        p.store(cdToWav, "CD Drive", c.drive);
        CHECK(failureOf([&] { p.workbench.butRefresh_Click(); }) == c.fails);
        CHECK(p.calls() == c.calls);
    }
}

TEST_CASE(
    "A first row with a title never equals the rebuilt line, so that every refresh lists the disc again")
{
    DiscProgram p;
    putTitledDisc(p);
    wantTitles(p);
    p.settings.get_tracks_fsd();
    p.platform.log.clear();
    for (int time = 1; time <= 2; ++time) {
        p.workbench.butRefresh_Click();
        CHECK(p.workbench.firstTrackLine == "Track 01    325.00    3279.3  MB");
        CHECK(p.platform.log.count("CdBase1.Lookup") == time);
    }
}

TEST_CASE("A refresh while a track is read changes nothing in the list, even with a new disc")
{
    DiscProgram p;
    p.list({length(3, 25), length(4, 0)});
    p.check({0});
    const auto before = p.tracks();
    p.platform.scriptedPump.steps = {
        [&] {
            p.reader().tracks = {length(1, 0)};
            p.platform.log.clear();
            p.workbench.butRefresh.Click.raise();
            CHECK(p.calls() == "CDtoWAV.SelectDrive(1)\nCDtoWAV.TrackLength(1)\nCDtoWAV.TrackLength(1)\n");
            CHECK(p.workbench.firstTrackLine == "Track 01    10.00    100.9  MB");
            CHECK(p.tracks() == before);
            CHECK(p.workbench.TracksList.Selected(0));
        },
        [&] { p.reader().Done.raise(); },
    };
    p.workbench.EncCDtoWAVStart.Click.raise();
    CHECK(p.tracks() == before);
    p.workbench.butRefresh.Click.raise();
    CHECK(p.tracks().size() == 1);
}

TEST_CASE("A refresh before the first read lists: the window begins with no read under way")
{
    DiscProgram p;
    CHECK(p.workbench.trackReadFinished);
}
