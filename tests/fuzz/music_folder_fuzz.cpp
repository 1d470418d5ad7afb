// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the file in which the desktop keeps where a user's folders are: music lies somewhere.
#include "desktop/places.h"
#include "tests/fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    putFile(memory() / "user-dirs.dirs", asText(bytes, size));
    const Text folder = desktop::musicFolder({.home = "/home/x", .configHome = memory().path()});
    require(folder.starts_with('/') && folder.find('\n') == Text::npos);
    return 0;
}
