#pragma once

#include "toolkit/control.h"

namespace ctl
{

enum class Button : std::int16_t { left = 1, right = 2, middle = 4 };

// A picture that can be clicked, dragged and dropped upon. Its artwork has the image's name in the skin.
class Image final : public Control
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
    // thumb's drag ends with its `MouseUp`, however it ended and after the drop's handler.
    Event<Button, std::int16_t, Twips, Twips> MouseDown;
    Event<Button, std::int16_t, Twips, Twips> MouseUp;

    // An image was dropped here. A release inside the dragged image's own rectangle is no drop.
    Event<Image&, Twips, Twips> DragDrop;

    Use use() const { return use_; }

private:
    friend class ImageWidget;

    Use use_;
};

}
