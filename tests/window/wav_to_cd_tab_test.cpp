// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/disc_program.h"
#include "support/failures.h"
#include "support/list_hand.h"

#include <QAbstractButton>
#include <doctest/doctest.h>

namespace
{

using Answer = MessageBoxes::Answer;
using Writers = std::vector<RecordingACDWRITE::Writer>;

constexpr const char* question = "CD Writer";
constexpr const char* selectBox = "Select CD Writer";

// The settings window is loaded with these drives at the writer.
struct Tab : DiscProgram {
    explicit Tab(const Writers& writers = {}, const Text& hasWriter = "yes") :
        DiscProgram([&](FakePlatform& fakes) {
            fakes.store.values[{wavToCd, "CD Writer Yes/No"}] = hasWriter;
            fakes.onACDWRITE = [=](RecordingACDWRITE& writer) { writer.writers = writers; };
        })
    {
    }

    ctl::CommandButton& apply() { return settings.SetWAVtoCDApp; }

    // The search for a writer, once more.
    Text searched()
    {
        platform.log.clear();
        settings.start_up();
        return calls();
    }

    std::vector<Text> boxes()
    {
        std::vector<Text> titles;
        for (const auto& box : platform.boxes.shown)
            titles.push_back(box.title);
        return titles;
    }
};

// What a person sees of the four controls that choose a writer.
Text stateOf(Settings& s)
{
    const auto enabled = [](const ctl::Control& control) { return Text(control.Enabled() ? "on" : "off"); };
    return "'" + s.SetWAVtoCDcdwriter.Text() + "' '" + s.SetWAVtoCDwritertype.Text() + "' list " +
           enabled(s.SetWAVtoCDcddrives) + ", name " + enabled(s.SetWAVtoCDcdwriter) + ", type " +
           enabled(s.SetWAVtoCDwritertype) + ", button " + enabled(s.SetWAVtoCDcdwrSetwrtype);
}

struct Push {
    const char* name;
    ctl::CommandButton Settings::*button;
};
const Push pushes[] = {{"Apply", &Settings::SetWAVtoCDApp}, {"OK", &Settings::SetWAVtoCDOK}};

}

TEST_CASE("The writing tab's controls begin like this")
{
    Tab t({}, "no");
    CHECK(stateOf(t.settings) == "'' '' list off, name off, type off, button off");
    CHECK(t.settings.SetWAVtoCDcdwriter.ToolTipText() == "automatic selected CD writer");
    CHECK(t.settings.SetWAVtoCDclosedisc.ToolTipText() ==
          "Close the CD after the tracks have been written to it.  No more tracks can be added later!");
    CHECK(t.settings.SetWAVtoCDtestmode.ToolTipText() ==
          "Just simulate the writing process, don't actually write the CD.");
    CHECK(t.settings.SetWAVtoCDautoeject.ToolTipText() ==
          "Automatically eject the CD after all tracks have been written.");
    CHECK_FALSE(t.apply().Enabled());
}

TEST_CASE("Whether there is a writer is asked until it was answered once")
{
    struct Case {
        Text what, stored;
        Answer answer;
        Text storedAfter;
        bool asks, searches;
    };
    const Case cases[] = {
        {"never asked, yes", "", Answer::yes, "yes", true, true},
        {"never asked, no", "", Answer::no, "no", true, false},
        {"yes was answered", "yes", Answer::no, "yes", false, true},
        {"no was answered", "no", Answer::yes, "no", false, false},
        {"another word than no", "No", Answer::no, "No", false, true},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Player p([&](FakePlatform& platform) {
            platform.store.values[{wavToCd, "CD Writer Yes/No"}] = c.stored;
            platform.boxes.answers = {c.answer};
            platform.onACDWRITE = [](RecordingACDWRITE& writer) { writer.writers = {{"Recorder", 1}}; };
        });
        for (int opening = 0; opening < 2; ++opening)
            p.platform.mainMenu->choose(16);
        CHECK(p.stored(wavToCd, "CD Writer Yes/No") == c.storedAfter);
        CHECK(p.platform.log.count("CDWriter.Init") == (c.searches ? 1 : 0));
        CHECK(p.platform.boxes.shown.size() == (c.asks ? 1 : 0));
        CHECK(p.program.settings().SetWAVtoCDcddrives.ListCount() == (c.searches ? 1 : 0));
        CHECK_FALSE(p.program.settings().SetWAVtoCDcddrives.Enabled());
    }
}

TEST_CASE("The question has these words and offers Yes and No")
{
    Player p;
    p.program.settings();
    const auto& box = p.platform.boxes.shown.front();
    CHECK(box.text == "Do you have a CD writer?");
    CHECK(box.title == question);
    CHECK(box.icon == MessageBoxes::Icon::none);
    CHECK(box.buttons == MessageBoxes::Buttons::yesNo);
}

TEST_CASE("After a No no later start asks again or touches the writer's search")
{
    std::map<std::pair<Text, Text>, Text> kept;
    for (int start = 0; start < 3; ++start) {
        CAPTURE(start);
        Player p([&](FakePlatform& platform) {
            platform.store.values = kept;
            platform.boxes.answers = {Answer::no};
            platform.onACDWRITE = [](RecordingACDWRITE& writer) { writer.writers = {{"Recorder", 0}}; };
        });
        p.platform.mainMenu->choose(17);
        CHECK(p.platform.boxes.shown.size() == (start == 0 ? 1 : 0));
        CHECK(p.platform.log.count("CDWriter.Init") == 0);
        CHECK(p.program.settings().SetWAVtoCDcddrives.ListCount() == 0);
        CHECK_FALSE(p.program.settings().SetWAVtoCDcddrives.Enabled());
        kept = p.platform.store.values;
    }
}

TEST_CASE("The search lists all drives and stops at the first whose type is known")
{
    Tab t({{"First", 0}, {"Second", 5}, {"Third", 6}});
    CHECK(rowsOf(t.settings.SetWAVtoCDcddrives) == std::vector<Text>{"First", "Second", "Third"});
    CHECK(stateOf(t.settings) == "'Second' '5' list off, name off, type off, button off");
    CHECK(t.settings.selectedWriter == 1);
    CHECK(t.settings.writerType == 5);
    CHECK(t.boxes().empty());
    CHECK_FALSE(t.message());
    CHECK(t.searched() == "CDWriter.Init\nCDWriter.DriveCount\nCDWriter.DriveName(0)\nCDWriter.DriveName(1)\n"
                          "CDWriter.DriveName(2)\nCDWriter.DriveCount\nCDWriter.SelectDrive(0)\n"
                          "CDWriter.WriterType\nCDWriter.SelectDrive(1)\nCDWriter.WriterType\n"
                          "CDWriter.SetWriterType(5)\nCDWriter.WriterType\nCDWriter.DriveName(1)\n");
}

TEST_CASE("A type is known from 1 to 99")
{
    struct Case {
        std::int16_t type;
        bool known;
    };
    for (const auto& c : {Case{1, true}, Case{12, true}, Case{99, true}, Case{0, false}, Case{100, false},
                          Case{-1, false}, Case{101, false}, Case{32767, false}, Case{-32768, false}}) {
        CAPTURE(c.type);
        Tab t({{"Only", c.type}});
        CHECK(t.settings.SetWAVtoCDcdwriter.Text() == (c.known ? "Only" : ""));
        CHECK(t.settings.SetWAVtoCDwritertype.Text() == (c.known ? textOf(c.type) : ""));
        CHECK(t.settings.writerType == (c.known ? c.type : 0));
        CHECK(t.settings.SetWAVtoCDcddrives.Enabled() == !c.known);
    }
}

TEST_CASE("No known type: the list is enabled, a box asks for a choice, and the last drive tried is left")
{
    Tab t({{"First", 0}, {"Second", 100}});
    CHECK(stateOf(t.settings) == "'' '' list on, name off, type off, button off");
    CHECK(t.settings.selectedWriter == 1);
    CHECK(t.settings.writerType == 0);
    t.settings.start_up();
    REQUIRE(t.platform.boxes.shown.size() == 1);
    const auto& box = t.platform.boxes.shown.front();
    CHECK(box.text == "Please select your CD writer!");
    CHECK(box.title == selectBox);
    CHECK(box.icon == MessageBoxes::Icon::none);
    CHECK(box.buttons == MessageBoxes::Buttons::ok);
}

TEST_CASE("The box asks only a user who said yes, although the list is enabled for any")
{
    Tab t({{"First", 0}}, "perhaps");
    CHECK(t.settings.SetWAVtoCDcddrives.Enabled());
    t.searched();
    CHECK(t.boxes().empty());
}

TEST_CASE("Without any drive the list is enabled and empty")
{
    Tab t;
    CHECK(stateOf(t.settings) == "'' '' list on, name off, type off, button off");
    CHECK(t.settings.selectedWriter == 0);
    CHECK(t.searched() ==
          "CDWriter.Init\nCDWriter.DriveCount\nCDWriter.DriveCount\nMessageBox.Select CD Writer\n");
}

TEST_CASE("A writer that cannot start is told, and nothing is searched")
{
    for (const std::int16_t result : {1, -1}) {
        CAPTURE(result);
        Tab t({{"First", 0}});
        t.settings.SetWAVtoCDcdwriter.setText("old");
        t.settings.SetWAVtoCDcddrives.Clear();
        t.settings.SetWAVtoCDcddrives.setEnabled(false);
        t.writer().init = result;
        CHECK(t.searched() == "CDWriter.Init\n");
        CHECK(t.message() == "Can\u00B4t initialize ASPI or no CD-recorder found!");
        CHECK(stateOf(t.settings) == "'' '' list off, name off, type off, button off");
        CHECK(t.settings.SetWAVtoCDcddrives.ListCount() == 0);
        CHECK(t.boxes().empty());
    }
}

TEST_CASE("A writer whose start fails is told like one that cannot start")
{
    Tab t({{"First", 5}});
    t.fails("CDWriter.Init");
    CHECK(failureOf([&] { t.settings.start_up(); }) == 0);
    CHECK(t.calls() == "CDWriter.Init\n");
    CHECK(t.message() == "Can\u00B4t initialize ASPI or no CD-recorder found!");
    CHECK(stateOf(t.settings) == "'' '5' list off, name off, type off, button off");
}

TEST_CASE("A failing step of the search is passed over")
{
    struct Case {
        Text call;
        Text state;
        std::int16_t selected;
    };
    const Case cases[] = {
        {"CDWriter.DriveName(0)", "'Second' '5' list off, name off, type off, button off", 1},
        {"CDWriter.SelectDrive(0)", "'Second' '5' list off, name off, type off, button off", 1},
        {"CDWriter.SetWriterType", "'Second' '5' list off, name off, type off, button off", 1},
        {"CDWriter.DriveName(1)", "'' '5' list on, name off, type off, button off", 1},
        {"CDWriter.DriveCount", "'' '' list on, name off, type off, button off", 1},
    };
    for (const auto& c : cases) {
        CAPTURE(c.call);
        Tab t({{"First", 0}, {"Second", 5}});
        t.settings.SetWAVtoCDwritertype.setText("");
        t.writer().current = 0;
        t.fails(c.call);
        CHECK(failureOf([&] { t.settings.start_up(); }) == 0);
        CHECK(stateOf(t.settings) == c.state);
        CHECK(t.settings.selectedWriter == c.selected);
        CHECK_FALSE(t.message());
    }
}

TEST_CASE("The search runs with the first load of the window alone")
{
    Tab t({{"First", 1}});
    for (int opening = 0; opening < 3; ++opening)
        for (const std::int32_t item : {17, 19, 11})
            t.platform.mainMenu->choose(item);
    CHECK(t.platform.log.count("CDWriter.Init") == 0);
    CHECK(t.settings.SetWAVtoCDcddrives.ListCount() == 1);
}

TEST_CASE("The load selects the stored writer in the list, if there is such a row")
{
    struct Case {
        Text saved, stored;
        std::int32_t row;
    };
    for (const auto& c :
         {Case{"yes", "1", 1}, Case{"yes", "0", 0}, Case{"yes", "2", -1}, Case{"yes", "-2", -1},
          Case{"yes", "none", -1}, Case{"yes", "", -1}, Case{"", "1", -1}, Case{"no", "1", -1}}) {
        CAPTURE(c.saved);
        CAPTURE(c.stored);
        Player p([&](FakePlatform& platform) {
            platform.store.values[{wavToCd, "Settings Saved"}] = c.saved;
            platform.store.values[{wavToCd, "Selected CD Writer"}] = c.stored;
            platform.onACDWRITE = [](RecordingACDWRITE& writer) { writer.writers = {{"A", 0}, {"B", 0}}; };
        });
        CHECK(failureOf([&] { p.program.settings(); }) == 0);
        CHECK(p.program.settings().SetWAVtoCDcddrives.ListIndex() == c.row);
    }
}

TEST_CASE("A double click with no selected row does nothing")
{
    Tab t({{"First", 0}, {"Second", 0}});
    t.settings.SetWAVtoCDcddrives.DblClick.raise();
    CHECK(t.calls() == "");
    CHECK(stateOf(t.settings) == "'' '' list on, name off, type off, button off");
}

TEST_CASE("A double click takes the selected row, and a box asks for its type")
{
    Tab t({{"First", 0}, {"Second", 0}, {"Third", 0}});
    t.settings.SetWAVtoCDcddrives.setListIndex(1);
    Text atTheBox;
    t.platform.boxes.onShow = [&] { atTheBox = stateOf(t.settings); };
    t.settings.SetWAVtoCDcddrives.DblClick.raise();
    CHECK(t.calls() == "CDWriter.SelectDrive(1)\nMessageBox.Set CD Writer Type\n");
    CHECK(atTheBox == "'Second' '' list off, name off, type on, button on");
    CHECK(t.settings.selectedWriter == 1);
    const auto& box = t.platform.boxes.shown.back();
    CHECK(box.text == "Please enter your CD writer type and press the \"Set CD Writer Type\" button.");
    CHECK(box.icon == MessageBoxes::Icon::none);
    CHECK(box.buttons == MessageBoxes::Buttons::ok);
}

TEST_CASE("A type that was typed is accepted, refused or a failure, as this table says")
{
    struct Case {
        Text typed;
        int fails;
        std::optional<std::int16_t> type; // nothing: refused
    };
    const Case cases[] = {
        {"1", 0, std::int16_t{1}},
        {"11", 0, std::int16_t{11}},
        {"12", 0, {}},
        {"0", 0, {}},
        {"-1", 0, {}},
        {"13", 0, {}},
        {"3.5", 0, std::int16_t{4}},
        {"2.5", 0, std::int16_t{2}},
        {"11.5", 0, std::int16_t{12}},
        {"11.99", 0, std::int16_t{12}},
        {"0.4", 0, std::int16_t{0}},
        {" 5 ", 0, std::int16_t{5}},
        {"1e1", 0, std::int16_t{10}},
        {"1e400", 6, {}},
        {"abc", 13, {}},
        {"5x", 13, {}},
        {"", 13, {}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.typed);
        Tab t({{"First", 0}});
        t.settings.SetWAVtoCDcddrives.setListIndex(0);
        t.settings.SetWAVtoCDcddrives.DblClick.raise();
        t.settings.SetWAVtoCDwritertype.setText(c.typed);
        t.apply().setEnabled(false);
        t.platform.log.clear();
        CHECK(failureOf([&] { t.settings.SetWAVtoCDcdwrSetwrtype.Click.raise(); }) == c.fails);
        CHECK(t.apply().Enabled());
        CHECK(t.calls() == (c.type ? "CDWriter.SetWriterType(" + textOf(*c.type) + ")\n" : ""));
        CHECK(t.settings.writerType == c.type.value_or(0));
        CHECK(t.settings.SetWAVtoCDwritertype.Enabled() == !c.type);
        CHECK(t.settings.SetWAVtoCDcdwrSetwrtype.Enabled() == !c.type);
        CHECK(t.message() == (c.type || c.fails != 0
                                  ? std::nullopt
                                  : std::optional<Text>("Please enter valid CD writer type. (1 - 12)")));
    }
}

TEST_CASE("A writer that was set by hand stays with all four controls disabled")
{
    Tab t({{"First", 0}, {"Second", 0}});
    t.settings.SetWAVtoCDcddrives.setListIndex(0);
    t.settings.SetWAVtoCDcddrives.DblClick.raise();
    t.settings.SetWAVtoCDwritertype.setText("12");
    t.settings.SetWAVtoCDcdwrSetwrtype.Click.raise();
    CHECK(stateOf(t.settings) == "'First' '12' list off, name off, type on, button on");
    t.settings.SetWAVtoCDwritertype.setText("7");
    t.settings.SetWAVtoCDcdwrSetwrtype.Click.raise();
    CHECK(stateOf(t.settings) == "'First' '7' list off, name off, type off, button off");
    CHECK(t.settings.selectedWriter == 0);
}

TEST_CASE("Close Disc and Simulate Writing keep each other out")
{
    using Box = ctl::CheckBox Settings::*;
    const Box close = &Settings::SetWAVtoCDclosedisc, simulate = &Settings::SetWAVtoCDtestmode;
    for (const auto& [one, other] : {std::pair(close, simulate), std::pair(simulate, close)}) {
        Tab t;
        ctl::CheckBox& first = t.settings.*one;
        ctl::CheckBox& second = t.settings.*other;
        first.setValue(1);
        CHECK(second.Value() == 0);
        CHECK_FALSE(second.Enabled());
        CHECK(first.Enabled());
        first.setValue(0);
        CHECK(second.Value() == 0);
        CHECK(second.Enabled());

        // Code can do what a user cannot: check the disabled one.
        first.setValue(1);
        second.setValue(1);
        CHECK(first.Value() == 0);
        CHECK_FALSE(first.Enabled());
        CHECK(second.Enabled());
        CHECK(t.settings.SetWAVtoCDautoeject.Enabled());
    }
}

TEST_CASE("Each speed is kept as it stands and marks the tab")
{
    Tab t;
    const std::int16_t factors[] = {1, 2, 4, 6, 8, 10, 12, 14, 16};
    REQUIRE(t.settings.speedButtons.size() == std::size(factors));
    t.settings.SetWAVtoCDSpeed16x.setValue(true);
    for (std::size_t row = 0; row < std::size(factors); ++row) {
        CAPTURE(factors[row]);
        t.apply().setEnabled(false);
        t.settings.speedButtons[row].button.setValue(true);
        CHECK(t.settings.writeSpeed == factors[row]);
        CHECK(t.apply().Enabled());
    }
    CHECK(t.calls() == "");
}

TEST_CASE("Each change marks the writing tab and no other")
{
    struct Change {
        Text what;
        std::function<void(Settings&)> make;
    };
    const Change changes[] = {
        {"a speed", [](Settings& s) { s.SetWAVtoCDSpeed4x.setValue(true); }},
        {"Close Disc", [](Settings& s) { s.SetWAVtoCDclosedisc.setValue(1); }},
        {"Simulate Writing", [](Settings& s) { s.SetWAVtoCDtestmode.setValue(1); }},
        {"Auto Eject", [](Settings& s) { s.SetWAVtoCDautoeject.setValue(0); }},
        {"the writer's name", [](Settings& s) { s.SetWAVtoCDcdwriter.setText("Other"); }},
        {"the writer's type", [](Settings& s) { s.SetWAVtoCDwritertype.setText("3"); }},
    };
    for (const auto& change : changes) {
        CAPTURE(change.what);
        Tab t;
        for (int tab = 0; tab < 4; ++tab)
            t.settings.applyButton(tab).setEnabled(false);
        change.make(t.settings);
        for (int tab = 0; tab < 4; ++tab)
            CHECK(t.settings.applyButton(tab).Enabled() == (tab == 3));
    }
}

TEST_CASE("Finding the writer marks the tab; the workbench's Settings opens it clean all the same")
{
    Tab t({{"First", 1}});
    t.apply().setEnabled(false);
    t.settings.SetWAVtoCDcdwriter.setText("");
    t.apply().setEnabled(false);
    t.settings.start_up();
    CHECK(t.apply().Enabled());
    t.workbench.EncWAVtoCDsettings.Click.raise();
    CHECK_FALSE(t.apply().Enabled());
    CHECK(t.settings.SettingsTab.Tab() == 3);
    CHECK(t.settings.Visible());
}

TEST_CASE("Apply and OK write the same keys in the same order, then hand all to the writer")
{
    for (const auto& push : pushes) {
        CAPTURE(push.name);
        Tab t({{"First", 0}, {"Second", 5}});
        t.settings.SetWAVtoCDSpeed8x.setValue(true);
        t.settings.SetWAVtoCDclosedisc.setValue(1);
        (t.settings.*push.button).Click.raise();
        CHECK(t.calls() == "Store.WAV => CD Settings/Selected CD Writer = 1\n"
                           "Store.WAV => CD Settings/Write Speed = 8\n"
                           "Store.WAV => CD Settings/Close Disc = 1\n"
                           "Store.WAV => CD Settings/Simulate Writing = 0\n"
                           "Store.WAV => CD Settings/Auto Eject = 1\n"
                           "Store.WAV => CD Settings/CD Writer Type = 5\n"
                           "Store.WAV => CD Settings/Settings Saved = yes\n"
                           "CDWriter.WriteSpeed = 8\nCDWriter.CloseDisc = True\nCDWriter.Simulate = False\n"
                           "CDWriter.AutoEject = True\nCDWriter.SelectDrive(1)\nCDWriter.SetWriterType(5)\n");
    }
}

TEST_CASE("Simulation and no eject are handed over as they are checked")
{
    Tab t;
    t.settings.SetWAVtoCDtestmode.setValue(1);
    t.settings.SetWAVtoCDautoeject.setValue(0);
    t.settings.SetWAVtoCDApp.Click.raise();
    const Text calls = t.calls();
    CHECK(calls.find("CDWriter.CloseDisc = False\nCDWriter.Simulate = True\nCDWriter.AutoEject = False\n") !=
          Text::npos);
    CHECK(t.stored(wavToCd, "Simulate Writing") == "1");
    CHECK(t.stored(wavToCd, "Auto Eject") == "0");
}

TEST_CASE("Apply leaves the answer about the writer alone")
{
    Tab t({}, "no");
    t.settings.SetWAVtoCDApp.Click.raise();
    CHECK(t.stored(wavToCd, "CD Writer Yes/No") == "no");
    CHECK(t.platform.log.of("Store").size() == 7);
}

TEST_CASE("Apply cleans the writing tab and leaves the window, OK hides the window and leaves the button, "
          "Cancel only hides")
{
    Tab t;
    t.settings.Show();
    t.apply().setEnabled(true);
    t.settings.SetWAVtoCDApp.Click.raise();
    CHECK_FALSE(t.apply().Enabled());
    CHECK(t.settings.Visible());
    t.apply().setEnabled(true);
    t.settings.SetWAVtoCDOK.Click.raise();
    CHECK(t.apply().Enabled());
    CHECK_FALSE(t.settings.Visible());
    t.settings.Show();
    t.platform.log.clear();
    t.settings.SetWAVtoCDCan.Click.raise();
    CHECK_FALSE(t.settings.Visible());
    CHECK(t.apply().Enabled());
    CHECK(t.calls() == "");
}

TEST_CASE("The stored writer reaches the control alone: Apply writes what this run found over it")
{
    Tab t({{"First", 0}, {"Second", 0}});
    t.store(wavToCd, "Settings Saved", "yes");
    t.store(wavToCd, "Selected CD Writer", "0");
    t.store(wavToCd, "CD Writer Type", "7");
    t.window.get_all_settings();
    CHECK(t.platform.log.count("CDWriter.SelectDrive(0)") == 1);
    CHECK(t.platform.log.count("CDWriter.SetWriterType(7)") == 1);
    t.platform.log.clear();
    t.settings.SetWAVtoCDApp.Click.raise();
    CHECK(t.stored(wavToCd, "Selected CD Writer") == "1");
    CHECK(t.stored(wavToCd, "CD Writer Type") == "0");
    CHECK(t.calls().ends_with("CDWriter.SelectDrive(1)\nCDWriter.SetWriterType(0)\n"));
}

TEST_CASE("Apply during a writing changes the writer's settings at once")
{
    Tab t({{"First", 1}});
    t.workbench.EncWAVtoCDdragndrop.AddItem("/a.wav");
    t.workbench.EncWAVtoCDWrite.Click.raise();
    t.platform.log.clear();
    t.settings.SetWAVtoCDSpeed2x.setValue(true);
    t.settings.SetWAVtoCDApp.Click.raise();
    CHECK(t.platform.log.count("CDWriter.WriteSpeed = 2") == 1);
}

TEST_CASE("A user cannot reach the box that the other one keeps out, nor the list once the writer is found")
{
    Tab t({{"First", 1}, {"Second", 0}});
    t.settings.SettingsTab.setTab(3);
    t.settings.Show();
    QCoreApplication::processEvents();
    const auto click = [&](const ctl::CheckBox& box) {
        t.settings.page()->findChild<QAbstractButton*>(box.Name())->click();
    };
    click(t.settings.SetWAVtoCDclosedisc);
    click(t.settings.SetWAVtoCDtestmode);
    CHECK(t.settings.SetWAVtoCDclosedisc.Value() == 1);
    CHECK(t.settings.SetWAVtoCDtestmode.Value() == 0);
    click(t.settings.SetWAVtoCDclosedisc);
    click(t.settings.SetWAVtoCDtestmode);
    CHECK(t.settings.SetWAVtoCDclosedisc.Value() == 0);
    CHECK(t.settings.SetWAVtoCDtestmode.Value() == 1);

    ListHand hand(t.settings, t.settings.SetWAVtoCDcddrives);
    hand.doubleClick(hand.middleOf(1));
    CHECK(t.settings.SetWAVtoCDcdwriter.Text() == "First");
    t.settings.SetWAVtoCDcddrives.setEnabled(true);
    hand.doubleClick(hand.middleOf(1));
    CHECK(t.settings.SetWAVtoCDcdwriter.Text() == "Second");
}
