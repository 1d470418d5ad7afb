// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

namespace ctl
{

class ImageWidget;
class Slider;

enum class Button : std::int16_t { left = 1, right = 2, middle = 4 };

// A picture that can be clicked, dragged and dropped upon. Its artwork has the image's name in the skin.
class Image final : public ControlOf<ImageWidget>
{
public:
    enum class Use {
        picture,   // clicks and presses
        transport, // the same, with the transport's own pointer
        thumb, // dragged automatically: stands still until the drop, while its outline follows the pointer
        track, // takes drops, over the height of a thumb
    };

    Image(Container& container, const char* name, Place place, const Text& toolTip = {},
          Use use = Use::picture);
    ~Image();

    Event<> Click; // a left press and its release inside

    // Button, shift state and position in twips of the image. A quick second press counts as a press. A
    // thumb's drag ends with its `MouseUp`, however it ended: after the drop's handler on its own track,
    // before that of another one, which may wait for long.
    Event<Button, std::int16_t, Twips, Twips> MouseDown;
    Event<Button, std::int16_t, Twips, Twips> MouseUp;

    // An image was dropped here. A release inside the dragged image's own rectangle is no drop.
    Event<Image&, Twips, Twips> DragDrop;

    Use use() const { return use_; }
    bool acts() const { return Click.isWired(); }

    // What a thumb stands for, once a slider is shown by it.
    Slider* slider() const { return slider_; }
    const Image* track() const { return track_; }

private:
    friend class ImageWidget;
    friend class Slider;

    void standsFor(Slider& slider, const Image& track);

    Use use_;
    Slider* slider_ = nullptr;
    const Image* track_ = nullptr;
};

}
