#include "platform/toolkit/image.h"

#include "platform/toolkit/image_widget.h"

namespace ctl
{

Image::Image(Container& container, const char* name, Place place, const Text& toolTip, Use use) :
    Control(container, name, place, new ImageWidget(*this, use), toolTip), use_(use)
{
}

}
