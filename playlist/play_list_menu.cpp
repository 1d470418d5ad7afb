// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/play_list_editor.h"
#include "toolkit/menu_below.h"

#include <iterator>

namespace
{

using Chosen = void (PlayListEditor::*)();

struct ListMenuItem {
    const char* caption;
    std::int32_t parent; // the number of the item above; 0: top level
    Chosen chosen = nullptr;
};

// An item's number is its place in this table, counted from 1.
// clang-format off
constexpr ListMenuItem menu[] = {
    {"&File",                 0},
    {"&New",                  1, &PlayListEditor::GoDoNew},
    {"&Open",                 1, &PlayListEditor::GoDoOpen},
    {"&Close",                1, &PlayListEditor::GoDoClose},
    {"-",                     1},
    {"&Save",                 1, &PlayListEditor::GoDoSave},
    {"Save &As...",           1, &PlayListEditor::GoDoSaveAs},
    {"-",                     1},
    {"C&lose Playlist Editor", 1, &PlayListEditor::closeVLMimg_Click},
    {"&Play",                 0},
    {"&Start",               10, &PlayListEditor::startFromFirst},
    {"S&top",                10, &PlayListEditor::GoDoStop},
    {"-",                    10},
    {"&Previous",            10, &PlayListEditor::stopAndPrevious},
    {"&Next",                10, &PlayListEditor::GoDoNext},
    {"-",                    10},
    {"Play Se&lected",       10, &PlayListEditor::GoDoPlaySelected},
    {"Play &From Selected",  10, &PlayListEditor::GoDoPlayFromSelected},
    {"&Options",              0},
    {"&Add Songs",           19, &PlayListEditor::GoDoAddSongs},
    {"&Remove Selected\tDEL", 19, &PlayListEditor::removeSelected},
};
// clang-format on

constexpr const char* menuName = "PlayListEditorMenu";

}

void PlayListEditor::CreateMenus()
{
    cP->Clear();
    for (const auto& item : menu)
        cP->AddItem(item.caption, "", 0, item.parent);
    cP->Store(menuName);
}

void PlayListEditor::imgMenu_Click() { showMenuBelow(*cP, imgMenu, menuName); }

void PlayListEditor::cP_Click(std::int32_t& item)
{
    if (item < 1 || item > static_cast<std::int32_t>(std::size(menu)))
        return;
    if (const Chosen chosen = menu[item - 1].chosen)
        (this->*chosen)();
}
