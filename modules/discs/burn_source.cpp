// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/discs/burn_source.h"

#include "engines/disc/disc_contents.h"

#include <libburn/libburn.h>

#include <algorithm>
#include <cstdlib>

namespace disc
{

namespace
{

using Held = std::shared_ptr<BurnSource>;

Held& held(burn::burn_source* source) { return *static_cast<Held*>(source->data); }

int readSamples(burn::burn_source* source, unsigned char* buffer, int size)
{
    held(source)->read(std::as_writable_bytes(std::span(buffer, static_cast<std::size_t>(size))));
    return size;
}

off_t soundBytes(burn::burn_source* source) { return held(source)->sectors() * sectorBytes; }

int keepSize(burn::burn_source*, off_t) { return 1; }

void letGo(burn::burn_source* source) { delete &held(source); }

}

void BurnSource::read(std::span<std::byte> samples)
{
    const auto wanted =
        std::min<std::int64_t>(left_, static_cast<std::int64_t>(samples.size()) / CdSound::frameBytes);
    const auto got = sound_.read(samples.first(static_cast<std::size_t>(wanted * CdSound::frameBytes)));
    std::ranges::fill(samples.subspan(got), std::byte{0});
    left_ -= wanted;
    wasCutShort_ = wasCutShort_ || got < static_cast<std::size_t>(wanted * CdSound::frameBytes);
}

// The library frees the object by itself.
burn::burn_source* newBurnSource(std::shared_ptr<BurnSource> source)
{
    auto* const made = static_cast<burn::burn_source*>(std::calloc(1, sizeof(burn::burn_source)));
    made->refcount = 1;
    made->read = &readSamples;
    made->get_size = &soundBytes;
    made->set_size = &keepSize;
    made->free_data = &letGo;
    made->data = new Held(std::move(source));
    return made;
}

}
