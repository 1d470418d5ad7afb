// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/menu_keys.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QWidget>

namespace
{

// A menu that is open, a dialog in front and a drag have the keys to themselves.
bool areTaken()
{
    return QApplication::activePopupWidget() || QApplication::activeModalWidget() ||
           QWidget::keyboardGrabber();
}

bool isMenuKey(const QKeyEvent& key)
{
    return (key.key() == Qt::Key_F10 || key.key() == Qt::Key_Menu) && key.modifiers() == Qt::NoModifier;
}

// On many systems the Menu key asks for the menu of the control that has the focus besides.
bool isAskedByKey(const QEvent& event)
{
    return static_cast<const QContextMenuEvent&>(event).reason() == QContextMenuEvent::Keyboard;
}

}

namespace ctl
{

MenuKeys::Handling MenuKeys::saw(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::KeyPress:
        return pressed(static_cast<const QKeyEvent&>(event));
    case QEvent::KeyRelease:
        return released(static_cast<const QKeyEvent&>(event));
    case QEvent::ContextMenu:
        return isAskedByKey(event) ? Handling::swallow : Handling::pass;
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::FocusOut:
    case QEvent::Move: // the window manager's own way to take a window by Alt and the pointer
        altAlone_ = false;
        return Handling::pass;
    default:
        return Handling::pass;
    }
}

MenuKeys::Handling MenuKeys::pressed(const QKeyEvent& key)
{
    if (key.isAutoRepeat())
        return isMenuKey(key) ? Handling::swallow : Handling::pass;
    const bool free = !areTaken();
    altAlone_ = free && key.key() == Qt::Key_Alt && (key.modifiers() & ~Qt::AltModifier) == Qt::NoModifier;
    return free && isMenuKey(key) ? Handling::open : Handling::pass;
}

MenuKeys::Handling MenuKeys::released(const QKeyEvent& key)
{
    const bool opens = altAlone_ && key.key() == Qt::Key_Alt && !key.isAutoRepeat() && !areTaken();
    altAlone_ = altAlone_ && key.isAutoRepeat();
    return opens ? Handling::open : Handling::pass;
}

}
