// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_popup_menu.h"

#include "toolkit/form.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/toolkit.h"

#include <QMenu>
#include <QScreen>
#include <algorithm>

namespace desktop
{

namespace
{

// Set off from the dark window that it lies on.
constexpr char menuStyle[] = R"(
    QMenu { background: #2b2f35; border: 1px solid #565d66; padding: 3px; }
    QMenu::item { padding: 4px 26px 4px 18px; border-radius: 2px; }
    QMenu::item:selected { background: #c97b14; color: #ffffff; }
    QMenu::item:disabled { color: #757c84; }
    QMenu::separator { height: 1px; background: #464c54; margin: 3px 6px; }
)";

QPoint pixelPoint(std::int32_t x, std::int32_t y)
{
    return {pixelsOf(static_cast<Twips>(x)), pixelsOf(static_cast<Twips>(y))};
}

}

QtPopupMenu::QtPopupMenu(Toolkit& toolkit) : toolkit_(toolkit) {}

QtPopupMenu::~QtPopupMenu() = default;

std::int32_t QtPopupMenu::AddItem(const Text& caption, const Text&, std::int32_t, std::int32_t parent,
                                  std::int32_t, bool checked, bool enabled, const Text&)
{
    items_.push_back({caption, static_cast<std::size_t>(parent), checked, enabled});
    return static_cast<std::int32_t>(items_.size());
}

std::unique_ptr<QMenu> QtPopupMenu::build()
{
    auto root = std::make_unique<QMenu>(owner_->page());
    root->setStyleSheet(menuStyle);
    std::vector<QMenu*> menus(items_.size() + 1, nullptr);
    menus[0] = root.get();
    for (std::size_t number = 1; number <= items_.size(); ++number) {
        const Item& item = items_[number - 1];
        if (hasChildren(number))
            menus[number] = menus[item.parent]->addMenu(shown(item.caption));
        else if (item.caption == "-")
            menus[item.parent]->addSeparator();
        else
            addAction(*menus[item.parent], item, static_cast<std::int32_t>(number));
    }
    return root;
}

bool QtPopupMenu::hasChildren(std::size_t number) const
{
    return std::any_of(items_.begin(), items_.end(), [=](const Item& item) { return item.parent == number; });
}

// The choice is told once the menu has closed: what it starts may run for hours.
void QtPopupMenu::addAction(QMenu& menu, const Item& item, std::int32_t number)
{
    QAction* action = menu.addAction(shown(item.caption), [this, number] {
        toolkit_.post().post([this, number] {
            std::int32_t chosen = number;
            Click.raise(chosen);
        });
    });
    action->setEnabled(item.enabled);
    action->setCheckable(item.checked);
    action->setChecked(item.checked);
}

std::int32_t QtPopupMenu::ShowPopupMenu(std::int32_t x, std::int32_t y, std::int32_t, std::int32_t top,
                                        std::int32_t, std::int32_t, bool)
{
    shown_ = build();
    QWidget* window = owner_->page();
    QPoint place = window->mapToGlobal(pixelPoint(x, y));
    const int height = shown_->sizeHint().height();
    if (place.y() + height > window->screen()->availableGeometry().bottom())
        place.setY(window->mapToGlobal(pixelPoint(x, top)).y() - height);
    shown_->popup(place);
    return 0;
}

}
