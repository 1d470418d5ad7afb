// SPDX-License-Identifier: GPL-3.0-or-later
// What the windows of one program share: the way in from the window system, the timers, the active window.
#pragma once

#include "platform/activity.h"
#include "platform/failure.h"
#include "platform/post.h"
#include "platform/twips.h"

#include <functional>
#include <memory>

class Form;
class Skin;

namespace ctl
{
class IntervalTimer;
}

class Toolkit
{
public:
    // Timers that run by hand tick only when a test raises them.
    enum class Timers { run, byHand };

    explicit Toolkit(Timers timers);
    ~Toolkit();

    // Stands at every place where the window system calls the program. A failure that arrives here was
    // handled nowhere: the timers stop, then `unhandled` has it; memory that runs out is failure 7. Any other
    // exception is a defect and ends the process.
    void outermost(const std::function<void()>& call);

    // The same for a call that may have been posted: a loop that begins in it would take what was posted
    // right behind it for delivered, and leave that until something else comes.
    void outermostOfPosted(const std::function<void()>& call);

    std::function<void(const Failure&)> unhandled;

    // No timer ticks again, so that nothing writes behind a closing message.
    void stopTimers();

    Place screen() const; // the whole primary one

    Activity& activity();
    Post& post();
    Skin& skin();

    // The toolkit's own parts report here.
    void add(ctl::IntervalTimer& timer);
    void remove(ctl::IntervalTimer& timer);
    void activated(Form& form);
    void deactivated(Form& form);
    void closed(Form& form);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};
