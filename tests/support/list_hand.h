// SPDX-License-Identifier: GPL-3.0-or-later
// A user's hand on a list box: keys and mouse buttons, as the window system would send them.
#pragma once

#include "toolkit/form.h"
#include "toolkit/list_box.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

class ListHand
{
public:
    ListHand(Form& form, const ctl::ListBox& list) :
        view_(*form.page()->findChild<QAbstractItemView*>(list.Name()))
    {
    }

    QAbstractItemView& view() const { return view_; }

    // What the user sees as selected; -1 for nothing.
    int markedRow() const
    {
        const auto marked = view_.selectionModel()->selectedIndexes();
        return marked.isEmpty() ? -1 : marked.front().row();
    }

    QPoint middleOf(int row) const { return view_.visualRect(view_.model()->index(row, 0)).center(); }
    QPoint checkMarkOf(int row) const
    {
        const QRect place = view_.visualRect(view_.model()->index(row, 0));
        return {place.left() + 9, place.center().y()};
    }
    QPoint emptyPart() const { return {view_.viewport()->width() / 2, view_.viewport()->height() - 3}; }

    void key(int code, const QString& text = {}, Qt::KeyboardModifiers held = Qt::NoModifier,
             quint32 scanCode = 0)
    {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, code, held, scanCode, 0, 0, text);
            QApplication::sendEvent(&view_, &event);
        }
    }

    void press(QPoint at, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers held = {})
    {
        send(QEvent::MouseButtonPress, at, button, button, held);
    }
    void release(QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, at, button, Qt::NoButton, {});
    }
    void move(QPoint to, Qt::MouseButton held = Qt::LeftButton)
    {
        send(QEvent::MouseMove, to, Qt::NoButton, held, {});
    }
    void click(QPoint at, Qt::KeyboardModifiers held = {})
    {
        press(at, Qt::LeftButton, held);
        release(at);
    }
    void doubleClick(QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        press(at, button);
        release(at, button);
        send(QEvent::MouseButtonDblClick, at, button, button, {});
        release(at, button);
    }

    void takeFocus(Qt::FocusReason reason)
    {
        QFocusEvent event(QEvent::FocusIn, reason);
        QApplication::sendEvent(&view_, &event);
    }

private:
    void send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers held)
    {
        QMouseEvent event(type, at, view_.viewport()->mapToGlobal(at), button, buttons, held);
        QApplication::sendEvent(view_.viewport(), &event);
    }

    QAbstractItemView& view_;
};
