// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/control.h"

#include "toolkit/accessibility.h"
#include "toolkit/form.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/toolkit.h"

#include <QAbstractButton>
#include <QEvent>
#include <QPalette>
#include <QWidget>

namespace ctl
{

namespace
{

// Puts the window's own colour behind a control's text, also when the colours become others: the control has
// all of its own from then on, and is told of none.
class WindowGround final : public QObject
{
public:
    explicit WindowGround(QWidget& control) : QObject(&control), control_(control)
    {
        control.parentWidget()->installEventFilter(this);
        put();
    }

    bool eventFilter(QObject* around, QEvent* event) override
    {
        if (event->type() == QEvent::PaletteChange)
            put();
        return QObject::eventFilter(around, event);
    }

private:
    void put()
    {
        QPalette palette;
        for (const auto ground : {QPalette::Base, QPalette::AlternateBase})
            palette.setColor(ground, palette.color(QPalette::Window));
        control_.setPalette(palette);
    }

    QWidget& control_;
};

}

Control::Control(Container& container, const char* name, Place place, QWidget* widget, const Text& toolTip) :
    outside_(widget), form_(container.form()), name_(name), place_(place)
{
    outside_->setParent(container.page());
    outside_->setObjectName(name);
    outside_->setGeometry(pixelRect(place));
    setToolTipText(toolTip);
}

Control::Control(Container& container, const char* name, Hidden) : form_(container.form()), name_(name) {}

void Control::setLeft(Twips left)
{
    place_.left = left;
    placeWidget();
}

void Control::setTop(Twips top)
{
    place_.top = top;
    placeWidget();
}

void Control::placeWidget()
{
    const QPoint place(pixelsOf(place_.left), pixelsOf(place_.top));
    if (outside_ && outside_->pos() != place)
        outside_->move(place);
}

void Control::setEnabled(bool enabled)
{
    enabled_ = enabled;
    if (outside_)
        outside_->setEnabled(enabled);
}

void Control::setToolTipText(const Text& toolTip)
{
    if (toolTip_ == toolTip)
        return;
    toolTip_ = toolTip;
    if (!outside_)
        return;
    outside_->setToolTip(shown(toolTip));
    // What bears a caption is called by it.
    if (!qobject_cast<QAbstractButton*>(outside_) && !outside_->property(hasSpokenName).toBool())
        outside_->setAccessibleName(shown(toolTip));
}

void Control::setGrey() { new WindowGround(*outside_); }

Toolkit& Control::toolkit() const { return form_.toolkit(); }

void Control::enter(const std::function<void()>& call) const { toolkit().outermostOfPosted(call); }

}
