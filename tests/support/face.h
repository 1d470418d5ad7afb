// SPDX-License-Identifier: GPL-3.0-or-later
// A small window with one control of each kind that a pointer can reach, and what it heard from them.
#pragma once

#include "platform/numbers.h"
#include "toolkit/form.h"
#include "toolkit/image.h"
#include "toolkit/interval_timer.h"
#include "toolkit/label.h"
#include "toolkit/slider.h"

#include <QWidget>
#include <functional>

struct Face final : Form {
    // clang-format off
    ctl::Image key       {*this, "key",        { 150_tw,  150_tw, 300_tw, 300_tw}, "Press me"};
    ctl::Image picture   {*this, "picture",    { 600_tw,  150_tw, 300_tw, 300_tw}};
    ctl::Image track     {*this, "track",      { 300_tw, 1500_tw, 1500_tw, 75_tw}, "",      ctl::Image::Use::track};
    ctl::Image thumb     {*this, "thumb",      { 600_tw, 1425_tw, 105_tw, 225_tw}, "Thumb", ctl::Image::Use::thumb};
    ctl::Image otherTrack{*this, "otherTrack", { 300_tw, 2100_tw, 1500_tw, 75_tw}, "",      ctl::Image::Use::track};
    ctl::Label caption   {*this, "caption",    { 150_tw,  600_tw, 1500_tw, 600_tw}};
    ctl::Slider bar{*this, "bar", 0, 100, 50}; // stands at `thumb`, along `track`
    ctl::IntervalTimer timer{*this, "timer", std::chrono::milliseconds(1)};
    // clang-format on

    Text heard; // one event a line
    std::function<void()> onClick;
    std::function<void()> onDrop;

    explicit Face(Toolkit& toolkit, const char* name = "Face") :
        Form(toolkit, name, Border::none, {3000_tw, 3000_tw})
    {
        Activate.calls([this] { hear("Activate"); });
        Deactivate.calls([this] { hear("Deactivate"); });
        for (auto* image : {&key, &thumb, &track, &otherTrack}) {
            const Text whose = image->Name();
            image->MouseDown.calls([=, this](ctl::Button button, std::int16_t shift, Twips x, Twips y) {
                hear(whose + " down " + textOf(static_cast<std::int32_t>(button)) + " " + textOf(shift) +
                     " at " + textOf(x) + ", " + textOf(y));
            });
            image->MouseUp.calls([=, this](ctl::Button button, std::int16_t, Twips, Twips) {
                hear(whose + " up " + textOf(static_cast<std::int32_t>(button)));
            });
            image->DragDrop.calls([=, this](ctl::Image& source, Twips x, Twips y) {
                hear(whose + " takes " + source.Name() + " at " + textOf(x) + ", " + textOf(y));
                if (onDrop)
                    onDrop();
            });
        }
        bar.showBy(thumb, track);
        key.Click.calls([this] {
            hear("key click");
            if (onClick)
                onClick();
        });
    }

    QWidget* widgetOf(const ctl::Control& control) { return page()->findChild<QWidget*>(control.Name()); }

    // All that was heard since the last time.
    Text told() { return std::exchange(heard, {}); }

private:
    void hear(const Text& event) { heard += event + "\n"; }
};
