// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/toolkit.h"

#include "toolkit/accessibility.h"
#include "toolkit/dialog_recall.h"
#include "toolkit/form.h"
#include "toolkit/form_widget.h"
#include "toolkit/later.h"
#include "toolkit/pace.h"
#include "toolkit/skin.h"

#include <QAbstractEventDispatcher>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>

struct Toolkit::Parts final : QObject, Post {
    Parts(Toolkit& owner, Timers timers) : toolkit(owner), pace(timers == Timers::run)
    {
        Q_INIT_RESOURCE(skin);
        QCoreApplication::instance()->installEventFilter(this);
        makeWidgetsAccessible();
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        pace.saw(*object, *event);
        recall.saw(*event);
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)
            pressed(object);
        return false;
    }

    // The window under a press is the active one before its control hears of the press, whatever the order in
    // which a window manager sends its own word.
    void pressed(QObject* object)
    {
        auto* widget = qobject_cast<QWidget*>(object);
        auto* window = widget ? dynamic_cast<FormWidget*>(widget->window()) : nullptr;
        if (window && &window->form().toolkit() == &toolkit)
            toolkit.outermost([&] { toolkit.activated(window->form()); });
    }

    void post(std::function<void()> call) override
    {
        later(this, [this, call = std::move(call)] { toolkit.outermostOfPosted(call); });
    }

    void end(const Failure& failure)
    {
        toolkit.stopTimers();
        if (!std::exchange(ending, true) && toolkit.unhandled)
            toolkit.unhandled(failure);
    }

    Toolkit& toolkit;
    Pace pace;
    DialogRecall recall{*this};
    Skin skin;
    Form* active = nullptr;
    bool ending = false;
};

Toolkit::Toolkit(Timers timers) : parts_(std::make_unique<Parts>(*this, timers)) {}

// A call that never ran may hold a window, which takes its leave of a whole toolkit.
Toolkit::~Toolkit() { QCoreApplication::removePostedEvents(parts_.get()); }

// Also the words of the end may find no memory.
void Toolkit::outermost(const std::function<void()>& call)
{
    try {
        try {
            call();
        } catch (const Failure& failure) {
            parts_->end(failure);
        } catch (const std::bad_alloc&) {
            parts_->end(Failure(Trouble::outOfMemory));
        }
    } catch (const std::exception& defect) {
        std::cerr << "Velmora ends by a defect of its own: " << defect.what() << '\n';
        std::abort();
    }
}

void Toolkit::outermostOfPosted(const std::function<void()>& call)
{
    QAbstractEventDispatcher::instance()->wakeUp();
    outermost(call);
}

void Toolkit::stopTimers() { parts_->pace.stop(); }

Place Toolkit::screen() const
{
    const QRect whole = QGuiApplication::primaryScreen()->geometry();
    return {twipsOf(whole.x()), twipsOf(whole.y()), twipsOf(whole.width()), twipsOf(whole.height())};
}

Activity& Toolkit::activity() { return parts_->pace; }

Post& Toolkit::post() { return *parts_; }

Skin& Toolkit::skin() { return parts_->skin; }

void Toolkit::add(ctl::IntervalTimer& timer) { parts_->pace.add(timer); }

void Toolkit::remove(ctl::IntervalTimer& timer) { parts_->pace.remove(timer); }

void Toolkit::activated(Form& form)
{
    if (parts_->active == &form)
        return;
    if (parts_->active)
        deactivated(*parts_->active);
    parts_->active = &form;
    form.Activate.raise();
}

void Toolkit::deactivated(Form& form)
{
    if (parts_->active != &form)
        return;
    parts_->active = nullptr;
    form.Deactivate.raise();
}

void Toolkit::closed(Form& form)
{
    if (parts_->active == &form)
        parts_->active = nullptr;
}
