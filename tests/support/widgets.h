// SPDX-License-Identifier: GPL-3.0-or-later
// The window system's side of a form's controls.
#pragma once

#include "toolkit/form.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QWindow>

// The toolkit's own entrance for keys of tests.
extern Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key,
                                           Qt::KeyboardModifiers modifiers, const QString& text, bool repeats,
                                           ushort count);

// The widget of that kind and name, or null.
template <typename Widget>
Widget* widgetOf(Form& form, const char* name)
{
    return form.page()->findChild<Widget*>(name);
}

// With the window's own colour behind its text.
inline bool isGrey(const QWidget& widget)
{
    return widget.palette().color(QPalette::Base) == QApplication::palette().color(QPalette::Window);
}

inline void typeInto(QWidget& widget, const QString& text)
{
    for (const QChar letter : text) {
        QKeyEvent event(QEvent::KeyPress, letter.unicode(), Qt::NoModifier, QString(letter));
        QApplication::sendEvent(&widget, &event);
    }
}

// One event of a key, to the form as the active window.
inline void sendKey(Form& form, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                    bool repeats = false)
{
    qt_handleKeyEvent(form.page()->window()->windowHandle(), type, key, modifiers, {}, repeats, 1);
    QCoreApplication::processEvents();
}

// As the desktop does it while a key is held: each repeat is a release and a press.
inline void repeatKey(Form& form, int key)
{
    sendKey(form, QEvent::KeyRelease, key, Qt::NoModifier, true);
    sendKey(form, QEvent::KeyPress, key, Qt::NoModifier, true);
}

// A key goes to the form as the active window, access keys and shortcuts first.
inline void pressKey(Form& form, int key)
{
    QWidget& window = *form.page()->window();
    window.activateWindow();
    QCoreApplication::processEvents();
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease})
        qt_handleKeyEvent(window.windowHandle(), type, key, Qt::NoModifier, {}, false, 1);
    QCoreApplication::processEvents();
}
