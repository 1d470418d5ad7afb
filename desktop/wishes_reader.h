// SPDX-License-Identifier: GPL-3.0-or-later
// What the desktop asks of programs' looks, read over its portal (org.freedesktop.portal.Settings).
#pragma once

#include "desktop/appearance.h"
#include "platform/text.h"
#include "platform/thread.h"

#include <functional>

class Post;

namespace desktop
{

// Asks the portal on a thread of its own. Where there is none, or it does not answer, nothing is told.
class WishesReader
{
public:
    // `busAddress` is that of a running session bus, "" for none. `tell` runs on the window thread, once.
    WishesReader(const Text& busAddress, Post& post, std::function<void(const DesktopWishes&)> tell);
    ~WishesReader();

private:
    Thread asking_;
};

}
