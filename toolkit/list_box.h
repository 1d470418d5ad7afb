// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace ctl
{

class ListRows;
class ListView;

// The paths that were dropped on a list, counted from 1.
class DroppedFiles
{
public:
    explicit DroppedFiles(std::vector<Text> paths) : paths_(std::move(paths)) {}

    const Text& item(std::int32_t number) const; // fails with 9 past the last

private:
    std::vector<Text> paths_;
};

// Rows of text, one of which can be selected. A row is its text: what was added is kept byte for byte.
// Removing the selected row selects nothing; rows above it take the selection along with their shift.
class ListBox final : public ControlOf<ListView>
{
public:
    enum class Style { plain, checks };

    ListBox(Container& container, const char* name, Place place, Style style = Style::plain);
    ListBox(Container& container, const char* name, Hidden);
    ~ListBox();

    Event<> Click;                             // the selection changed, or the left button clicked
    Event<> DblClick;                          // also on the empty part of the list
    Event<std::int16_t, std::int16_t> KeyDown; // key code, shift state
    Event<const DroppedFiles&> OLEDragDrop;    // files from another program, accepted as copies

    void AddItem(::Text text);                     // as the last row
    void AddItem(::Text text, std::int32_t index); // fails with 5 outside 0..ListCount
    void RemoveItem(std::int32_t index);           // fails with 5 outside the list
    void Clear();                                  // raises nothing

    std::int32_t ListCount() const;
    ::Text List(std::int32_t index) const; // "" outside the list
    ::Text Text() const;                   // the selected row's, or ""

    std::int32_t ListIndex() const { return listIndex_; } // -1: none
    void setListIndex(std::int32_t index);                // fails with 380 outside -1..ListCount-1

    // Whether the row is selected; in a list with check marks, whether it is checked. False outside the list.
    bool Selected(std::int32_t index) const;
    void setSelected(std::int32_t index, bool selected); // fails with 381 outside the list

    void acceptFiles(); // from now on files can be dropped here

    // Another number for every content that the list ever had.
    std::uint64_t revision() const;

private:
    friend class ListView;

    template <typename Change>
    void change(Change&& change, std::int32_t selected);

    void chosen(std::int32_t index); // by the user
    bool holds(std::int32_t index) const { return index >= 0 && index < ListCount(); }

    std::unique_ptr<ListRows> rows_;
    std::int32_t listIndex_ = -1;
};

}
