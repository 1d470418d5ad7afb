// SPDX-License-Identifier: GPL-3.0-or-later
#include "config/docking.h"
#include "platform/numbers.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

namespace
{

Place placeOf(const Form& window) { return {window.Left(), window.Top(), window.Width(), window.Height()}; }

}

// The stored side is wiped here when the window is placed; its activation judges the place and writes it
// again.
void StartUp::get_reg_settings_plse()
{
    PlayListEditor& list = program_.playListEditor();
    const auto& store = program_.settingsStore();
    const Text left = store.GetSetting(section::playListPlace, key::left);
    const Text top = store.GetSetting(section::playListPlace, key::top);
    if (left.empty() || top.empty()) {
        list.setLeft(Left());
        list.setTop(Top() + Height());
        setDocked(DockSide::bottom);
    } else {
        list.setLeft(toSingle(left));
        list.setTop(toSingle(top));
        setDocked(std::nullopt);
        const Text stored = store.GetSetting(section::playListPlace, key::dockSide);
        for (const auto side : {DockSide::left, DockSide::right, DockSide::top, DockSide::bottom})
            if (stored == nameOf(side))
                setDocked(side);
    }
    saveListPlace();
}

void StartUp::get_plss_pos_pi()
{
    const auto side = nearSide(placeOf(*this), placeOf(program_.playListEditor()));
    if (side)
        dockAt(*side);
    setDocked(side);
    dock_side = side ? nameOf(*side) : "";
    saveListPlace();
}

// On each tick: snaps, never undocks, and follows a main window that may lead.
void StartUp::dockPlayListEditor()
{
    if (const auto side = snapSide(placeOf(*this), placeOf(program_.playListEditor()))) {
        dockAt(*side);
        setDocked(side);
        dock_side = nameOf(*side);
    }
    if (window_active)
        follow();
    saveListPlace();
}

void StartUp::follow()
{
    if (dock_bottom)
        dockAt(DockSide::bottom);
    if (dock_top)
        dockAt(DockSide::top);
    if (dock_right)
        dockAt(DockSide::right);
    if (dock_left)
        dockAt(DockSide::left);
}

void StartUp::comeWithinReach()
{
    PlayListEditor& list = program_.playListEditor();
    bringWithinReach();
    if (!list.Visible())
        return;
    follow();
    if (!dock_bottom && !dock_top && !dock_right && !dock_left)
        list.bringWithinReach();
}

void StartUp::dockAt(DockSide side)
{
    PlayListEditor& list = program_.playListEditor();
    const Place place = docked(side, placeOf(*this), placeOf(list));
    if (list.isKeptFrom(place.left, place.top))
        return; // as good as done: asking again would move the window to and fro for ever
    if (side == DockSide::right || side == DockSide::left) {
        list.setLeft(place.left);
        list.setTop(place.top);
        return;
    }
    list.setTop(place.top);
    list.setLeft(place.left);
}

void StartUp::setDocked(std::optional<DockSide> side)
{
    dock_bottom = side == DockSide::bottom;
    dock_top = side == DockSide::top;
    dock_right = side == DockSide::right;
    dock_left = side == DockSide::left;
}

void StartUp::saveListPlace()
{
    PlayListEditor& list = program_.playListEditor();
    auto& store = program_.settingsStore();
    store.SaveSetting(section::playListPlace, key::left, textOf(list.Left()));
    store.SaveSetting(section::playListPlace, key::top, textOf(list.Top()));
    store.SaveSetting(section::playListPlace, key::dockSide, dock_side);
}
