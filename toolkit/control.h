// SPDX-License-Identifier: GPL-3.0-or-later
// What all controls have in common. Places are in twips of the container; an exact place is kept exactly and
// painted at the nearest pixel.
#pragma once

#include "platform/event.h"
#include "platform/text.h"
#include "platform/twips.h"
#include "toolkit/container.h"

#include <cstdint>

class Toolkit;

namespace ctl
{

// In place of a place: the control is never seen and only keeps its values.
struct Hidden {
};
inline constexpr Hidden hidden;

class Control
{
public:
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const char* Name() const { return name_; }

    Twips Left() const { return place_.left; }
    Twips Top() const { return place_.top; }
    Twips Width() const { return place_.width; }
    Twips Height() const { return place_.height; }
    void setLeft(Twips left);
    void setTop(Twips top);

    bool Enabled() const { return enabled_; }
    void setEnabled(bool enabled);

    Text ToolTipText() const { return toolTip_; }
    void setToolTipText(const Text& toolTip);

    void setGrey(); // with the window's own colour behind its text: it shows and asks for nothing

protected:
    Control(Container& container, const char* name, Place place, QWidget* widget, const Text& toolTip = {});
    Control(Container& container, const char* name, Hidden);
    ~Control() = default; // the widget belongs to its container

    Form& form() const { return form_; }
    Toolkit& toolkit() const;

    // Runs `call` as the window system's own call into the program.
    template <typename Call>
    void fromOutside(Call&& call) const
    {
        enter(std::function<void()>(call));
    }

private:
    void enter(const std::function<void()>& call) const;
    void placeWidget();

    QWidget* outside_ = nullptr; // null for a hidden control
    Form& form_;
    const char* name_;
    Place place_;
    Text toolTip_;
    bool enabled_ = true;
};

// A control that the user sees as a `Widget` of the window library.
template <typename Widget>
class ControlOf : public Control
{
protected:
    ControlOf(Container& container, const char* name, Place place, Widget* widget, const Text& toolTip = {}) :
        Control(container, name, place, widget, toolTip), widget_(widget)
    {
    }
    ControlOf(Container& container, const char* name, Hidden) :
        Control(container, name, hidden), widget_(nullptr)
    {
    }
    ~ControlOf() = default;

    Widget* const widget_; // null for a hidden control
};

}
