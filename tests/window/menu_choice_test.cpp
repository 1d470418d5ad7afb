// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_popup_menu.h"
#include "toolkit/form.h"
#include "toolkit/toolkit.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <doctest/doctest.h>

namespace
{

// A window with a menu of two submenus: Play (1) with Start (2) and Stop (3), Options (4) with Add (6),
// behind a separator (5).
struct Shown {
    Shown()
    {
        menu.hWndOwner(form);
        menu.AddItem("&Play", "", 0, 0, -1, false, true, "");
        menu.AddItem("&Start", "", 0, 1, -1, false, true, "");
        menu.AddItem("S&top", "", 0, 1, -1, false, true, "");
        menu.AddItem("&Options", "", 0, 0, -1, false, true, "");
        menu.AddItem("-", "", 0, 4, -1, false, true, "");
        menu.AddItem("&Add\tDEL", "", 0, 4, -1, false, true, "");
        menu.Store("tree");
        form.Show();
        QCoreApplication::processEvents();
    }

    // As a user does with the arrow keys: through the top-level item's submenu to the item in it.
    void choose(int topLevel, int item)
    {
        menu.Restore("tree");
        menu.ShowPopupMenu(0, 225, 0, 0, 240, 225, true);
        menu.Store("tree");
        for (int down = 0; down <= topLevel; ++down)
            key(Qt::Key_Down);
        key(Qt::Key_Right);
        for (int down = 0; down < item; ++down)
            key(Qt::Key_Down);
        key(Qt::Key_Return);
    }

    static void key(int code)
    {
        QWidget* popup = QApplication::activePopupWidget();
        REQUIRE(popup);
        QKeyEvent event(QEvent::KeyPress, code, Qt::NoModifier);
        QApplication::sendEvent(popup, &event);
    }

    Toolkit toolkit{Toolkit::Timers::byHand};
    Form form{toolkit, "MenuForm", Form::Border::none, {6000_tw, 3000_tw}};
    desktop::QtPopupMenu menu{toolkit};
};

}

TEST_CASE("A choice is told by its number in the whole tree, once the menu has closed")
{
    struct Case {
        int topLevel, item;
        std::int32_t number;
    };
    for (const auto& c : {Case{0, 0, 2}, Case{0, 1, 3}, Case{1, 0, 6}}) {
        Shown window;
        std::vector<std::int32_t> chosen;
        bool open = true;
        window.menu.Click.calls([&](std::int32_t& item) {
            chosen.push_back(item);
            open = QApplication::activePopupWidget() != nullptr;
        });
        window.choose(c.topLevel, c.item);
        CHECK(chosen.empty()); // not from inside the menu's own handling of the key
        QCoreApplication::processEvents();
        CHECK(chosen == std::vector{c.number});
        CHECK_FALSE(open);
    }
}

TEST_CASE("A choice whose work waits for hours leaves the menu ready for the next one")
{
    Shown window;
    std::vector<int> begun, ended;
    window.menu.Click.calls([&](std::int32_t& item) {
        begun.push_back(item);
        if (begun.size() < 4) {
            window.choose(0, static_cast<int>(begun.size()) % 2);
            QCoreApplication::processEvents();
        }
        ended.push_back(item);
    });
    window.choose(0, 0);
    QCoreApplication::processEvents();
    CHECK(begun == std::vector{2, 3, 2, 3});
    CHECK(ended == std::vector{3, 2, 3, 2});
}

TEST_CASE("A menu that is closed without a choice tells nothing")
{
    Shown window;
    int chosen = 0;
    window.menu.Click.calls([&](std::int32_t&) { ++chosen; });
    window.menu.ShowPopupMenu(0, 225, 0, 0, 240, 225, true);
    Shown::key(Qt::Key_Down);
    Shown::key(Qt::Key_Escape);
    QCoreApplication::processEvents();
    CHECK(chosen == 0);
    CHECK(QApplication::activePopupWidget() == nullptr);
}

TEST_CASE("A failure in what a choice started reaches the end of the program")
{
    Shown window;
    int unhandled = 0;
    window.toolkit.unhandled = [&](const Failure& failure) { unhandled = failure.number; };
    window.menu.Click.calls([](std::int32_t&) { throw Failure(Trouble::pathOrFileAccess); });
    window.choose(0, 0);
    QCoreApplication::processEvents();
    CHECK(unhandled == 75);
}
