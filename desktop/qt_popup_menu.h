// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/popup_menu.h"

#include <map>
#include <memory>
#include <vector>

class QMenu;
class Toolkit;

namespace desktop
{

class QtPopupMenu final : public PopupMenu
{
public:
    explicit QtPopupMenu(Toolkit& toolkit);
    ~QtPopupMenu() override;

    void hWndOwner(Form& window) override { owner_ = &window; }
    void Clear() override { items_.clear(); }
    std::int32_t AddItem(const Text& caption, const Text& helpText, std::int32_t itemData,
                         std::int32_t parent, std::int32_t iconIndex, bool checked, bool enabled,
                         const Text& key) override;
    void Store(const Text& treeName) override { trees_[treeName] = items_; }
    void Restore(const Text& treeName) override { items_ = trees_[treeName]; }
    std::int32_t ShowPopupMenu(std::int32_t x, std::int32_t y, std::int32_t left, std::int32_t top,
                               std::int32_t right, std::int32_t bottom, bool flag) override;

private:
    struct Item {
        Text caption;
        std::size_t parent;
        bool checked;
        bool enabled;
    };

    std::unique_ptr<QMenu> build();
    bool hasChildren(std::size_t number) const;
    void addAction(QMenu& menu, const Item& item, std::int32_t number);

    Toolkit& toolkit_;
    Form* owner_ = nullptr;
    std::vector<Item> items_;
    std::map<Text, std::vector<Item>> trees_;
    std::unique_ptr<QMenu> shown_;
};

}
