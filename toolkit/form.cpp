// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/form.h"

#include "toolkit/form_widget.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/toolkit.h"

Form::Form(Toolkit& toolkit, const char* name, Border border, Extent client) :
    toolkit_(toolkit), name_(name), widget_(std::make_unique<FormWidget>(*this, name, border, client))
{
}

Form::~Form() { toolkit_.closed(*this); }

Text Form::Caption() const { return bytesOf(widget_->windowTitle()); }

void Form::setCaption(const Text& caption) { widget_->setWindowTitle(shown(caption)); }

Twips Form::Left() const { return twipsOf(widget_->place().x()); }

Twips Form::Top() const { return twipsOf(widget_->place().y()); }

void Form::setLeft(Twips left) { widget_->setPlace({pixelsOf(left), widget_->place().y()}); }

void Form::setTop(Twips top) { widget_->setPlace({widget_->place().x(), pixelsOf(top)}); }

Twips Form::Width() const { return twipsOf(widget_->frameSize().width()); }

Twips Form::Height() const { return twipsOf(widget_->frameSize().height()); }

Form::State Form::WindowState() const { return widget_->state(); }

void Form::setWindowState(State state)
{
    if (widget_->state() != state)
        widget_->setState(state);
}

bool Form::Visible() const { return widget_->isVisible(); }

void Form::Show()
{
    widget_->present();
    toolkit_.activated(*this);
}

void Form::Hide()
{
    widget_->hide();
    toolkit_.deactivated(*this);
}

void Form::dragWithPointer() { widget_->follow(); }

void Form::bringWithinReach() { widget_->bringWithinReach(); }

bool Form::isKeptFrom(Twips left, Twips top) const
{
    return widget_->isKeptFrom({pixelsOf(left), pixelsOf(top)});
}

void Form::setMenuImage(ctl::Image& image) { widget_->setMenuImage(image); }

QWidget* Form::page() { return widget_.get(); }
