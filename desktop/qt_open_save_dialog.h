// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/dialog_memory.h"
#include "platform/open_save_dialog.h"

namespace desktop
{

class FileDialog;

class QtOpenSaveDialog final : public OpenSaveDialog
{
public:
    explicit QtOpenSaveDialog(DialogMemory memory = DialogMemory("")) : memory_(std::move(memory)) {}

    void setDialogTitle(const Text& title) override { title_ = title; }
    void setCancelError(bool fails) override { cancelError_ = fails; }
    void setFilter(const Text& filter) override { filter_ = filter; }
    void setInitialName(const Text& name) override { initialName_ = name; }
    std::int16_t FilterIndex() const override { return filterIndex_; }
    void setFilterIndex(std::int16_t index) override { filterIndex_ = index; }
    void setFlags(std::int32_t flags) override { flags_ = flags; }
    void ShowOpen() override;
    void ShowSave() override;
    Text FileName() const override;
    Text FileTitle() const override;
    void GetFileList(Text& folder, std::vector<Text>& names, std::int32_t& count) const override;

private:
    void show(FileDialog& dialog);
    void take(FileDialog& dialog);
    Text beginningFolder() const;

    DialogMemory memory_;
    Text title_;
    Text filter_;
    Text initialName_;
    Text folder_; // of the first file chosen last: where the next dialog begins
    std::vector<Text> paths_;
    std::int32_t flags_ = 0;
    std::int16_t filterIndex_ = 0;
    bool cancelError_ = true;
};

}
