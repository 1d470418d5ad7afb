// SPDX-License-Identifier: GPL-3.0-or-later
// Popup menus: trees of items, kept by name.
#pragma once

#include "platform/event.h"
#include "platform/text.h"

#include <cstdint>

class Form;

class PopupMenu
{
public:
    virtual ~PopupMenu() = default;

    // The window that owns the menus: positions are in its twips.
    virtual void hWndOwner(Form& window) = 0;

    // Empties the current tree; numbers begin at 1 again.
    virtual void Clear() = 0;

    // Adds an item under `parent`, 0 being the top level, and returns its number. Numbers count from 1 in the
    // order of adding, separators (caption "-") included. "&" marks the access key; what follows a tab is
    // shown as the item's key.
    virtual std::int32_t AddItem(const Text& caption, const Text& helpText = "", std::int32_t itemData = 0,
                                 std::int32_t parent = 0, std::int32_t iconIndex = -1, bool checked = false,
                                 bool enabled = true, const Text& key = "") = 0;

    virtual void Store(const Text& treeName) = 0;   // keeps the current tree under the name
    virtual void Restore(const Text& treeName) = 0; // makes a kept tree current

    // Shows the current tree at x, y, clear of the rectangle. A choice comes by `Click`, after the menu has
    // closed.
    virtual std::int32_t ShowPopupMenu(std::int32_t x, std::int32_t y, std::int32_t left, std::int32_t top,
                                       std::int32_t right, std::int32_t bottom, bool flag) = 0;

    Event<std::int32_t&> Click; // the chosen item's number
};
