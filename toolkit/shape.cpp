// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/shape.h"

#include "toolkit/form.h"
#include "toolkit/form_widget.h"
#include "toolkit/qt_bridge.h"

#include <QFrame>

namespace ctl
{

Shape::Shape(Form& form, const char* name, Place place) : Control(form, name, hidden)
{
    static_cast<FormWidget*>(form.page())->addFrame(pixelRect(place));
}

Line::Line(Container& container, const char* name, Place place) :
    ControlOf(container, name, place, new QFrame)
{
    widget_->setFrameStyle(QFrame::HLine | QFrame::Sunken);
}

}
