// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/module_head.h"
#include "modules/sound/cubeb_client.h"

namespace
{

std::unique_ptr<audio::SoundClient> makeClient() { return std::make_unique<audio::CubebClient>(); }

constexpr audio::SoundParts parts{makeClient};

}

VELMORA_MODULE(sound, parts);
