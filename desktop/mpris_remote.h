// SPDX-License-Identifier: GPL-3.0-or-later
// The player on the session bus, by MPRIS 2 (freedesktop.org): the interface of media keys and player panels.
#pragma once

#include "platform/media_remote.h"

#include <memory>

class Post;

namespace desktop
{

// `busAddress` is that of a running session bus, "" for none: then nothing happens at all. The bus is met on
// a thread of its own, at the first `show`.
std::unique_ptr<MediaRemote> makeMprisRemote(const Text& busAddress, Post& post);

}
