// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"
#include "support/waiting.h"
#include "toolkit/later.h"

#include <QApplication>
#include <QWidget>

#include <doctest/doctest.h>

#include <algorithm>

namespace
{

const Text listPlace = "Position PlayList Editor";

// The main window stands at 3000, 6000: its right edge is 9435, its bottom edge 8985.
void placeMain(FakePlatform& platform)
{
    platform.store.values[{"Position StartUp Window", "Left"}] = "3000";
    platform.store.values[{"Position StartUp Window", "Top"}] = "6000";
}

void storeList(FakePlatform& platform, const Text& left, const Text& top, const Text& side)
{
    placeMain(platform);
    platform.store.values[{listPlace, "Left"}] = left;
    platform.store.values[{listPlace, "Top"}] = top;
    platform.store.values[{listPlace, "POS"}] = side;
}

struct Docking : Player {
    explicit Docking(const std::function<void(FakePlatform&)>& prepare = placeMain) : Player(prepare) {}

    void listAt(Twips left, Twips top)
    {
        list().setLeft(left);
        list().setTop(top);
    }
    bool listStandsAt(Twips left, Twips top) { return list().Left() == left && list().Top() == top; }

    // The flags that are up.
    Text docked() const
    {
        Text sides;
        sides += window.dock_bottom ? "bottom " : "";
        sides += window.dock_top ? "top " : "";
        sides += window.dock_right ? "right " : "";
        sides += window.dock_left ? "left " : "";
        return sides;
    }

    void setDocked(const Text& side)
    {
        window.dock_bottom = side == "bottom";
        window.dock_top = side == "top";
        window.dock_right = side == "right";
        window.dock_left = side == "left";
    }

    // The list shows, and nothing of that has been judged yet.
    void showList()
    {
        list().Show();
        setDocked("");
        window.dock_side = "";
        window.window_active = false;
        calls();
    }
};

Text saved(const Text& left, const Text& top, const Text& side)
{
    return "Store.Position PlayList Editor/Left = " + left + "\nStore.Position PlayList Editor/Top = " + top +
           "\nStore.Position PlayList Editor/POS = " + side + "\n";
}

struct Side {
    Text name;
    Twips nearLeft, nearTop;       // 195 twips off
    Twips farLeft, farTop;         // 210 twips off
    Twips dockedLeft, dockedTop;   // the corner shared
    Twips shiftedLeft, shiftedTop; // flush, and shifted along the side
};

// The places that a window goes through, one a line.
struct MovesSeen final : QObject {
    explicit MovesSeen(Form& form) : window(form.page()) { window->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Move)
            seen += line(twipsOf(window->x()), twipsOf(window->y()));
        return false;
    }
    static Text line(Twips left, Twips top) { return textOf(left) + ", " + textOf(top) + "\n"; }

    QWidget* window;
    Text seen;
};

// Puts a window seven pixels beside each place that it asks for.
struct ShiftingManager final : QObject {
    explicit ShiftingManager(Form& form) : window(form.page()) { window->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Move && window->pos() != given) {
            ++moves;
            asked_.push_back(window->pos());
            later(this, [this] { shift(); });
        }
        return false;
    }
    void shift()
    {
        if (window->pos() == given)
            return;
        given = asked_.back() + QPoint(7, 7);
        window->move(given);
    }
    int asked(Twips left, Twips top) const
    {
        return static_cast<int>(
            std::count(asked_.begin(), asked_.end(), QPoint(pixelsOf(left), pixelsOf(top))));
    }

    QWidget* window;
    int moves = 0;
    QPoint given;
    std::vector<QPoint> asked_;
};

const Side sides[] = {
    {"bottom", 3600, 9180, 3600, 9195, 3000, 8985, 4005, 8985},
    {"top", 3600, 2820, 3600, 2805, 3000, 3015, 4005, 3015},
    {"right", 9630, 6600, 9645, 6600, 9435, 6000, 9435, 7005},
    {"left", -3630, 6600, -3645, 6600, -3435, 6000, -3435, 7005},
};

}

TEST_CASE("On a first run the list stands under the main window")
{
    struct Row {
        Text what;
        Text left;
        Text top;
    };
    for (const auto& c :
         {Row{"nothing stored", "", ""}, Row{"Left alone", "15", ""}, Row{"Top alone", "", "15"}}) {
        CAPTURE(c.what);
        Docking p([&](FakePlatform& platform) { storeList(platform, c.left, c.top, "left"); });
        CHECK(p.listStandsAt(3000, 8985));
        CHECK(p.docked() == "bottom ");
        CHECK(p.window.dock_side.empty());
        CHECK(p.stored(listPlace, "Left") == "3000");
        CHECK(p.stored(listPlace, "Top") == "8985");
        CHECK(p.stored(listPlace, "POS").empty());
        const auto& reads = p.platform.store.reads;
        CHECK(std::find(reads.begin(), reads.end(), listPlace + "/POS") == reads.end());
        CHECK_FALSE(p.list().Visible());
    }
}

TEST_CASE("A stored place is taken as it is, and a stored side raises its flag alone")
{
    struct Row {
        Text stored;
        Text flags;
    };
    for (const auto& c : {Row{"bottom", "bottom "}, Row{"top", "top "}, Row{"right", "right "},
                          Row{"left", "left "}, Row{"", ""}, Row{"Bottom", ""}, Row{"under", ""}}) {
        CAPTURE(c.stored);
        Docking p([&](FakePlatform& platform) { storeList(platform, "-45000", "99000", c.stored); });
        CHECK(p.listStandsAt(-45000, 99000));
        CHECK(p.docked() == c.flags);
        CHECK(p.window.dock_side.empty());
    }
}

TEST_CASE("An unknown stored side raises no flag until the next activation decides")
{
    for (const bool near : {true, false}) {
        CAPTURE(near);
        Docking p(
            [&](FakePlatform& platform) { storeList(platform, "3000", near ? "8985" : "99000", "under"); });
        CHECK(p.docked().empty());
        p.list().Activate.raise();
        CHECK(p.docked() == (near ? "bottom " : ""));
        CHECK(p.stored(listPlace, "POS") == (near ? "bottom" : ""));
    }
}

TEST_CASE("Placing the list from the store lets go of the side before")
{
    for (const Text side : {"bottom", "top", "right", "left"}) {
        CAPTURE(side);
        Docking p([](FakePlatform& platform) { storeList(platform, "0", "0", ""); });
        p.setDocked(side);
        p.window.dock_side = side;
        p.window.get_reg_settings_plse();
        CHECK(p.docked().empty());
        CHECK(p.window.dock_side == side);
        CHECK(p.stored(listPlace, "POS") == side);
        p.window.get_reg_settings_plse();
        CHECK(p.docked() == side + " ");
    }
}

TEST_CASE("The stored side is wiped when the list is placed, and written again by its activation")
{
    Text calls;
    Docking p([&](FakePlatform& platform) {
        storeList(platform, "3000", "8985", "bottom");
        platform.store.values[{listPlace, "SHOWN"}] = "YES";
        platform.log.onCall = [&](const Text& call) {
            if (call.starts_with("Store."))
                calls += call + "\n";
        };
    });
    CHECK(calls == saved("3000", "8985", "") + saved("3000", "8985", "bottom"));
    CHECK(p.window.dock_side == "bottom");
    CHECK(p.docked() == "bottom ");
    CHECK(p.list().Visible());
}

TEST_CASE("A stored fraction of a pixel is rounded as windows are")
{
    Docking p([](FakePlatform& platform) { storeList(platform, "3007.5", " 8e3 ", ""); });
    CHECK(p.listStandsAt(3015, 7995));
    CHECK(p.stored(listPlace, "Left") == "3015");
}

TEST_CASE("A stored place that is no number is a failure that the start does not handle")
{
    for (const bool left : {true, false}) {
        FakePlatform platform;
        storeList(platform, left ? "far" : "0", left ? "0" : "down", "");
        Program program(platform);
        int number = 0;
        guarded([&](const Failure& failure) { number = failure.number; }, [&] { program.startUp(); });
        CHECK(number == 13);
        CHECK(platform.boxes.shown.empty());
    }
}

TEST_CASE("On a tick the list snaps to a side that it has come near")
{
    for (const auto& side : sides) {
        CAPTURE(side.name);
        Docking p;
        p.showList();
        p.listAt(side.farLeft, side.farTop);
        p.window.Timer_Timer();
        CHECK(p.listStandsAt(side.farLeft, side.farTop));
        CHECK(p.docked().empty());
        CHECK(p.stored(listPlace, "POS").empty());

        p.listAt(side.nearLeft, side.nearTop);
        p.window.Timer_Timer();
        CHECK(p.listStandsAt(side.dockedLeft, side.dockedTop));
        CHECK(p.docked() == side.name + " ");
        CHECK(p.window.dock_side == side.name);
        CHECK(p.stored(listPlace, "POS") == side.name);
        CHECK(p.stored(listPlace, "Left") == textOf(side.dockedLeft));
        CHECK(p.stored(listPlace, "Top") == textOf(side.dockedTop));
    }
}

TEST_CASE("The clock leaves a flush list alone however it is shifted; an activation aligns it")
{
    for (const auto& side : sides) {
        CAPTURE(side.name);
        Docking p;
        p.showList();
        p.listAt(side.shiftedLeft, side.shiftedTop);
        p.window.Timer_Timer();
        CHECK(p.listStandsAt(side.shiftedLeft, side.shiftedTop));
        CHECK(p.docked().empty());
        p.calls();
        p.window.get_plss_pos_pi();
        CHECK(p.listStandsAt(side.dockedLeft, side.dockedTop));
        CHECK(p.docked() == side.name + " ");
        CHECK(p.window.dock_side == side.name);
        CHECK(p.calls() == saved(textOf(side.dockedLeft), textOf(side.dockedTop), side.name));
    }
}

TEST_CASE("An activation docks a list that is near and lets go of one that is far")
{
    for (const auto& side : sides) {
        CAPTURE(side.name);
        Docking p;
        p.showList();
        p.listAt(side.nearLeft, side.nearTop);
        p.window.get_plss_pos_pi();
        CHECK(p.listStandsAt(side.dockedLeft, side.dockedTop));
        CHECK(p.docked() == side.name + " ");

        p.listAt(side.farLeft, side.farTop);
        p.calls();
        p.window.get_plss_pos_pi();
        CHECK(p.listStandsAt(side.farLeft, side.farTop));
        CHECK(p.docked().empty());
        CHECK(p.window.dock_side.empty());
        CHECK(p.calls() == saved(textOf(side.farLeft), textOf(side.farTop), ""));
    }
}

TEST_CASE("Docking sets the edge first, then the corner")
{
    for (const auto& side : sides) {
        CAPTURE(side.name);
        Docking p;
        p.showList();
        p.listAt(side.nearLeft, side.nearTop);
        MovesSeen moves(p.list());
        p.window.get_plss_pos_pi();
        const bool sideways = side.name == "right" || side.name == "left";
        const Twips between[] = {sideways ? side.dockedLeft : side.nearLeft,
                                 sideways ? side.nearTop : side.dockedTop};
        CHECK(moves.seen ==
              MovesSeen::line(between[0], between[1]) + MovesSeen::line(side.dockedLeft, side.dockedTop));
    }
}

TEST_CASE("A window manager that shifts every move is asked for a docked place twice, and then has its way")
{
    for (const auto& side : sides) {
        CAPTURE(side.name);
        Docking p;
        p.showList();
        p.listAt(side.nearLeft, side.nearTop);
        QApplication::processEvents();
        ShiftingManager manager(p.list());
        const auto tick = [&] {
            for (int i = 0; i < 20; ++i) {
                p.window.Timer_Timer();
                QApplication::processEvents();
            }
        };
        tick();
        CHECK(manager.asked(side.dockedLeft, side.dockedTop) == 2);
        CHECK(p.listStandsAt(side.dockedLeft + 105, side.dockedTop + 105));
        CHECK(p.docked() == side.name + " ");
        const int before = manager.moves;
        tick();
        CHECK(manager.moves == before);

        p.window.window_active = true;
        p.window.setLeft(6000); // a new target
        tick();
        CHECK(manager.asked(side.dockedLeft + 3000, side.dockedTop) == 2);
        CHECK(p.listStandsAt(side.dockedLeft + 3105, side.dockedTop + 105));
    }
}

TEST_CASE("The clock never lets go: a flag that is left pulls the list back")
{
    Docking p;
    p.showList();
    p.listAt(20010, 20010);
    p.setDocked("bottom");
    p.window.dock_side = "bottom";
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(20010, 20010));
    CHECK(p.docked() == "bottom ");
    CHECK(p.stored(listPlace, "POS") == "bottom");
    p.window.window_active = true;
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(3000, 8985));
}

TEST_CASE("A main window that may lead carries the list along, however far it goes")
{
    for (const auto& side : sides) {
        CAPTURE(side.name);
        Docking p;
        p.showList();
        p.setDocked(side.name);
        p.window.window_active = true;
        p.window.setLeft(30000);
        p.window.setTop(15000);
        p.window.Timer_Timer();
        CHECK(p.listStandsAt(side.dockedLeft + 27000, side.dockedTop + 9000));
        CHECK(p.stored(listPlace, "Left") == textOf(side.dockedLeft + 27000));
    }
}

TEST_CASE("A main window that may not lead goes alone; a near list still snaps")
{
    Docking p;
    p.showList();
    p.listAt(3000, 8985);
    p.setDocked("bottom");
    p.window.setLeft(30000);
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(3000, 8985));
    p.listAt(30000, 9000);
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(30000, 8985));
}

TEST_CASE("A snap replaces the flag of the side before, and is followed at once")
{
    Docking p;
    p.showList();
    p.setDocked("top");
    p.window.window_active = true;
    p.listAt(9500, 6600);
    p.window.Timer_Timer();
    CHECK(p.docked() == "right ");
    CHECK(p.listStandsAt(9435, 6000));
}

TEST_CASE("Should several flags be up, the list follows them in the order bottom, top, right, left")
{
    Docking p;
    p.showList();
    p.listAt(20010, 20010);
    p.window.dock_bottom = p.window.dock_left = true;
    p.window.window_active = true;
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(-3435, 6000));
    CHECK(p.docked() == "bottom left ");
}

TEST_CASE("Over the bottom right corner the bottom wins")
{
    Docking p;
    p.showList();
    p.listAt(9405, 8910);
    p.window.Timer_Timer();
    CHECK(p.docked() == "bottom ");
    CHECK(p.listStandsAt(3000, 8985));
}

TEST_CASE("Beside the right edge but wholly above there is no snap; edges that touch are enough")
{
    Docking p;
    p.showList();
    p.listAt(9585, 3000);
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(9585, 3000));
    p.listAt(9585, 3015);
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(9435, 6000));
}

TEST_CASE("A hidden list is neither docked nor saved, and keeps its flags")
{
    Docking p;
    p.showList();
    p.window.Timer_Timer();
    p.list().Hide();
    p.setDocked("left");
    p.window.window_active = true;
    p.listAt(9500, 6600);
    p.calls();
    p.window.Timer_Timer();
    CHECK(p.calls().find(listPlace + "/Left") == Text::npos);
    CHECK(p.listStandsAt(9495, 6600));
    CHECK(p.docked() == "left ");
}

TEST_CASE("The list is saved on every tick, changed or not, minimised or not")
{
    Docking p;
    p.showList();
    p.listAt(20010, 20010);
    for (const auto state : {Form::normal, Form::minimized}) {
        p.list().setWindowState(state);
        for (int tick = 0; tick < 2; ++tick) {
            p.calls();
            p.window.Timer_Timer();
            CHECK(p.calls().find(saved("20010", "20010", "")) != Text::npos);
        }
    }
}

TEST_CASE("A main window that the system minimised is not saved, its list is")
{
    Docking p;
    p.showList();
    p.listAt(20010, 20010);
    p.window.setWindowState(Form::minimized);
    p.window.Timer_Timer();
    CHECK(p.calls() == saved("20010", "20010", "") + "Store.Position PlayList Editor/SHOWN = YES\n");
}

TEST_CASE("While the position thumb is held nothing snaps, follows or is saved; the release brings all of it")
{
    struct Ticking final : FakePlatform {
        Toolkit ticking{Toolkit::Timers::run};
        Toolkit& toolkit() override { return ticking; }
    } platform;
    placeMain(platform);
    Program program(platform);
    StartUp& window = program.startUp();
    PlayListEditor& list = program.playListEditor();
    list.Show();
    window.window_active = true;
    window.posbar_img2.MouseDown.raise(ctl::Button::left, 0, 0, 0);
    window.setLeft(6000);
    list.setTop(9180);
    platform.log.clear();
    REQUIRE(waitFor([&] { return platform.log.of("Profile").size() > 3; })); // the list's own timer goes on
    CHECK(list.Left() == 3000);
    CHECK(list.Top() == 9180);
    CHECK(platform.log.of("Store").empty());

    window.posbar_img2.MouseUp.raise(ctl::Button::left, 0, 0, 0);
    CHECK(waitFor([&] { return list.Left() == 6000 && list.Top() == 8985; }));
    CHECK(waitFor([&] { return platform.store.values[{listPlace, "Left"}] == "6000"; }));
}

TEST_CASE("The main window leads while it is active, and after the list was left")
{
    Docking p;
    p.window.window_active = false;
    p.window.Activate.raise();
    CHECK(p.window.window_active);
    p.window.Deactivate.raise();
    CHECK_FALSE(p.window.window_active);
    p.window.form_active_ok_sub();
    CHECK(p.window.window_active);
    p.window.window_active = false;
    p.list().Deactivate.raise();
    CHECK(p.window.window_active);
}

TEST_CASE("A docked list that was left is held in place on each tick, though the main window is not active")
{
    Docking p;
    p.showList();
    p.listAt(3000, 8985);
    p.list().Deactivate.raise(); // for the settings, say
    for (const Twips left : {3600.0F, 20010.0F}) {
        CAPTURE(left);
        p.listAt(left, 20010);
        p.window.Timer_Timer();
        CHECK(p.listStandsAt(3000, 8985));
    }
}

TEST_CASE("Leaving the list judges its place before the main window may lead")
{
    Docking p;
    p.showList();
    p.listAt(3600, 9180);
    bool leading = true;
    p.platform.log.onCall = [&](const Text&) { leading = p.window.window_active; };
    p.list().Form_Deactivate();
    CHECK_FALSE(leading);
    CHECK(p.window.window_active);
    CHECK(p.docked() == "bottom ");
}

TEST_CASE("The list is undocked by taking it away and clicking elsewhere")
{
    Docking p;
    p.window.Show();
    p.list().Show();
    CHECK(p.docked() == "bottom ");
    CHECK_FALSE(p.window.window_active);
    p.listAt(20010, 20010);
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(20010, 20010));
    p.window.Show(); // the click elsewhere
    CHECK(p.window.window_active);
    CHECK(p.docked().empty());
    CHECK(p.stored(listPlace, "POS").empty());
    p.window.setLeft(6000);
    p.window.Timer_Timer();
    CHECK(p.listStandsAt(20010, 20010));
}

TEST_CASE("Minimising takes both windows down, the list also when it is hidden")
{
    for (const bool shown : {false, true}) {
        CAPTURE(shown);
        Docking p;
        p.window.Show();
        if (shown)
            p.list().Show();
        p.window.Minimizeimg.Click.raise();
        CHECK(p.window.WindowState() == Form::minimized);
        CHECK(p.list().WindowState() == Form::minimized);
        CHECK(p.list().Visible() == shown);
    }
}

TEST_CASE("The list comes back with the main window and cannot stay minimised alone")
{
    Docking p;
    p.window.Show();
    p.list().Show();
    p.window.Minimizeimg_Click();
    p.window.vslider_tim1_Timer();
    CHECK(p.list().WindowState() == Form::minimized);
    p.window.setWindowState(Form::normal);
    p.window.vslider_tim1_Timer();
    CHECK(p.list().WindowState() == Form::normal);
    p.list().setWindowState(Form::minimized);
    p.window.vslider_tim1_Timer();
    CHECK(p.list().WindowState() == Form::normal);
}

TEST_CASE("The tick that brings the list back neither shows a hidden list nor activates a visible one")
{
    Docking p;
    p.window.Show();
    p.list().setWindowState(Form::minimized);
    p.window.vslider_tim1_Timer();
    CHECK(p.list().WindowState() == Form::normal);
    CHECK_FALSE(p.list().Visible());
    p.list().Show();
    p.window.Show();
    p.list().setWindowState(Form::minimized);
    p.window.vslider_tim1_Timer();
    CHECK(p.window.window_active);
}
