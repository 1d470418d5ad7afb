// SPDX-License-Identifier: GPL-3.0-or-later
// The user's pointer over one window. What it does takes the way of a real one: from the window down to the
// control under it, which then has the pointer until its buttons are up.
#pragma once

#include "toolkit/form.h"
#include "toolkit/image.h"

#include <QWidget>
#include <QWindow>

// The toolkit's own entrance for pointers of tests.
extern Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                             Qt::MouseButtons state, Qt::MouseButton button,
                                             QEvent::Type type, Qt::KeyboardModifiers modifiers,
                                             int timestamp);

class Pointer
{
public:
    explicit Pointer(Form& form) : window_(form.page()->windowHandle()) {}
    ~Pointer()
    {
        for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
            if (buttons_.testFlag(button))
                release(button);
    }

    Qt::KeyboardModifiers keys; // held down meanwhile

    // In pixels of the window.
    Pointer& to(QPointF place)
    {
        place_ = window_->mapToGlobal(place);
        send(QEvent::MouseMove, Qt::NoButton);
        return *this;
    }
    Pointer& to(const ctl::Control& control) { return to(centreOf(control)); }

    Pointer& press(Qt::MouseButton button = Qt::LeftButton)
    {
        buttons_.setFlag(button);
        clock() += 10'000; // long after the last press
        send(QEvent::MouseButtonPress, button);
        return *this;
    }
    Pointer& pressQuickly()
    {
        buttons_.setFlag(Qt::LeftButton);
        clock() += 20;
        send(QEvent::MouseButtonPress, Qt::LeftButton);
        return *this;
    }
    Pointer& release(Qt::MouseButton button = Qt::LeftButton)
    {
        buttons_.setFlag(button, false);
        clock() += 20;
        send(QEvent::MouseButtonRelease, button);
        return *this;
    }
    // The window will be gone before the buttons are up.
    void keepDown() { buttons_ = {}; }
    Pointer& click(const ctl::Control& control, Qt::MouseButton button = Qt::LeftButton)
    {
        return to(control).press(button).release(button);
    }

    static QPointF centreOf(const ctl::Control& control)
    {
        return QPointF(control.Left() + control.Width() / 2, control.Top() + control.Height() / 2) /
               twipsPerPixel;
    }

private:
    // One time for all pointers: the window toolkit keeps the last press of the process.
    static int& clock()
    {
        static int milliseconds = 0;
        return milliseconds;
    }

    void send(QEvent::Type type, Qt::MouseButton button)
    {
        qt_handleMouseEvent(window_, window_->mapFromGlobal(place_), place_, buttons_, button, type, keys,
                            clock());
    }

    QWindow* window_;
    QPointF place_; // on the screen: it stays there when the window moves away under it
    Qt::MouseButtons buttons_;
};
