// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the system's table of mounts, in which names are those that somebody gave a stick: each mount
// is one whose own folder lies on a device.
#include "desktop/mounts.h"
#include "tests/fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const auto mounts = desktop::mountsIn(asText(bytes, size));
    for (const auto& mount : mounts) {
        require(desktop::liesIn(mount.folder, mount.folder));
        const Text device = desktop::deviceOf(mounts, mount.folder);
        require(std::ranges::any_of(mounts, [&](const auto& each) { return each.device == device; }));
    }
    return 0;
}
