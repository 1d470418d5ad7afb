// SPDX-License-Identifier: GPL-3.0-or-later
// The window behind a form. For the toolkit's own sources alone.
#pragma once

#include "platform/text.h"
#include "toolkit/form.h"
#include "toolkit/menu_keys.h"

#include <QPixmap>
#include <QPoint>
#include <QWidget>
#include <chrono>
#include <deque>
#include <optional>
#include <vector>

class QAbstractButton;

class FormWidget final : public QWidget
{
public:
    FormWidget(Form& form, const char* name, Form::Border border, Extent client);

    Form& form() const { return form_; }

    // Where the form stands. The window manager's answers lag behind; they never change what was asked for
    // last.
    QPoint place() const { return place_; }
    void setPlace(QPoint place);

    Form::State state() const { return state_; }
    void setState(Form::State state);

    void present();
    void bringWithinReach();
    bool isKeptFrom(QPoint place) const;
    void pressed(QPoint at) { pressed_ = at; } // in the window
    void follow(); // the pointer from where it was pressed, until its buttons are released
    void setMenuImage(ctl::Image& image) { menuImage_ = &image; }
    void ignoreKeyAtWork(); // an Escape that is on its way through the window
    void cancelsWith(QAbstractButton& button) { cancelButtons_.push_back(&button); }
    void addFrame(const QRect& rect) { frames_.push_back(rect); }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* window, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;

    struct OwnMove {
        QPoint place;
        Clock::time_point at;
    };

    // How often the window manager answered the wish for a place with another one.
    struct Corrected {
        QPoint place;
        int times = 0;
    };

    void appear();
    bool isFramed() const;
    void prepareKeys();
    void keepSize();
    void cancel();
    void letGo();
    bool passOn(const QMouseEvent& press);
    bool isUsersMove() const;
    void noteCorrection();
    bool isLetStand() const;
    void carryOut();
    void forgetOldMoves();
    bool isEcho(QPoint place);
    void settle(QPoint place);

    Form& form_;
    QPoint place_;
    bool isPlaced_ = false; // by the program, or once it was seen somewhere
    Form::State state_ = Form::normal;
    std::deque<OwnMove> ownMoves_;
    bool moving_ = false;
    Clock::time_point shownAt_{};
    QPoint asked_; // the place that the window manager was last asked for
    Clock::time_point askedAt_{};
    bool touched_ = false; // by the user since it was shown, with the pointer or a key
    Corrected corrected_;
    QPoint pressed_;
    std::optional<QPoint> grip_; // where in the window the pointer holds it
    std::vector<QRect> frames_;
    std::vector<QAbstractButton*> cancelButtons_;
    bool isEscapeSpent_ = false;
    ctl::Image* menuImage_ = nullptr;
    ctl::MenuKeys menuKeys_;
};
