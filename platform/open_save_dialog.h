// SPDX-License-Identifier: GPL-3.0-or-later
// The file dialogs. One instance keeps its own settings between dialogs.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <vector>

class OpenSaveDialog
{
public:
    // What these bits of `Flags` mean; the others are without effect.
    static constexpr std::int32_t askBeforeOverwriting = 0x2;
    static constexpr std::int32_t severalFiles = 0x200;
    static constexpr std::int32_t fileMustExist = 0x1000;

    virtual ~OpenSaveDialog() = default;

    virtual void setDialogTitle(const Text& title) = 0;

    // True, as at the start: cancelling makes `ShowOpen` and `ShowSave` fail with 32755 "Cancel was
    // selected.". False: they return, and `FileName` is empty.
    virtual void setCancelError(bool fails) = 0;

    // Name, vertical bar, pattern; further pairs after another vertical bar.
    virtual void setFilter(const Text& filter) = 0;

    virtual void setInitialName(const Text& name) = 0;

    // Counted from 1; 0 until set or until a dialog was accepted. A cancelled dialog changes nothing.
    virtual std::int16_t FilterIndex() const = 0;
    virtual void setFilterIndex(std::int16_t index) = 0;

    virtual void setFlags(std::int32_t flags) = 0;

    // Shows the dialog and returns when it closes; other windows' events run meanwhile.
    virtual void ShowOpen() = 0;
    virtual void ShowSave() = 0;

    virtual Text FileName() const = 0;  // full path of the choice
    virtual Text FileTitle() const = 0; // its name without the folder

    // After a selection of several: their folder, their names from index 1 on (index 0 is unused), their
    // count. Files of more than one folder have full paths for names, and an empty folder.
    virtual void GetFileList(Text& folder, std::vector<Text>& names, std::int32_t& count) const = 0;
};
