// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/image.h"

#include "toolkit/image_widget.h"

namespace ctl
{

Image::Image(Container& container, const char* name, Place place, const Text& toolTip, Use use) :
    ControlOf(container, name, place, new ImageWidget(*this, use), toolTip), use_(use)
{
}

void Image::standsFor(Slider& slider, const Image& track)
{
    slider_ = &slider;
    track_ = &track;
    track.widget_->showReachOf(*widget_);
}

// The form's widgets outlive its controls: none of them may tell of the end of a press any more.
Image::~Image() { widget_->leave(); }

}
