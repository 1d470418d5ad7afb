// SPDX-License-Identifier: GPL-3.0-or-later
// What the desktop asks of programs' looks, read over its portal (org.freedesktop.portal.Settings).
#pragma once

#include "desktop/appearance.h"
#include "platform/text.h"
#include "platform/worker.h"

#include <QTimer>

#include <functional>
#include <memory>

class Post;

namespace desktop
{

// Asks the portal on a thread of its own, and again when the portal tells of a change. Where there is none,
// or it does not answer, nothing is told.
class WishesReader
{
public:
    // `busAddress` is that of a running session bus, "" for none. `tell` runs on the window thread, when the
    // wishes are others than before; at first they are as usual.
    WishesReader(const Text& busAddress, Post& post, std::function<void(const DesktopWishes&)> tell);
    ~WishesReader(); // never waits longer than nobody notices

private:
    struct Portal;

    void ask();

    std::shared_ptr<Portal> portal_;
    QTimer changed_; // a slider in the desktop's settings tells of many changes
    Worker worker_{Worker::AtEnd::abandons};
};

}
