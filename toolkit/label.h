// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

namespace ctl
{

class LabelWidget;

// Text that the user cannot change. It is shown as it is: no markup, no access keys. A path in a text that is
// too long for a label that wraps is shortened in its middle; tip and accessible description then have the
// whole.
class Label final : public ControlOf<LabelWidget>
{
public:
    Label(Container& container, const char* name, Place place, const Text& caption = {});
    Label(Container& container, const char* name, Hidden, const Text& caption = {});

    Text Caption() const { return caption_; }
    void setCaption(const Text& caption);

    // How the face shows it: a caption beside a value is quiet, a heading and the time are lit.
    enum class Tone { plain, quiet, lit };
    void setTone(Tone tone);
    void setCentered();
    void setAtRight(); // against what stands at its right

    void setFontSize(int points);
    void setFontBold(bool bold);
    void setWordWrap(bool wrap);

private:
    void settle();

    Text caption_;
};

}
