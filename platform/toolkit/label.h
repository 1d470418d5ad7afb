#pragma once

#include "platform/toolkit/control.h"

namespace ctl
{

// Text that the user cannot change. It is shown as it is: no markup, no access keys.
class Label final : public Control
{
public:
    Label(Container& container, const char* name, Place place, const Text& caption = {});
    Label(Container& container, const char* name, Hidden, const Text& caption = {});

    Text Caption() const { return caption_; }
    void setCaption(const Text& caption);

    void setFontSize(int points);
    void setFontBold(bool bold);
    void setWordWrap(bool wrap);

private:
    Text caption_;
};

}
