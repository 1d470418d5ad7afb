// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as what file dialogs remember: a size that a screen has and a folder that has a path, or nothing.
#include "desktop/dialog_memory.h"
#include "tests/fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const desktop::DialogMemory memorised(memory() / "dialogs");
    putFile(memory() / "dialogs", asText(bytes, size));
    const auto read = memorised.read();
    require((read.width == 0) == (read.height == 0) && read.width >= 0 && read.width <= 20000);
    require(read.folder.empty() || (read.folder.front() == '/' && read.width > 0));
    if (read.width == 0)
        return 0;
    memorised.write(read);
    const auto again = memorised.read();
    require(again.width == read.width && again.height == read.height && again.folder == read.folder);
    return 0;
}
