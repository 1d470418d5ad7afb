// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/content.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>

namespace files
{

Text contentOf(const Text& path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return file ? contentOf(file) : Text();
}

Text contentOf(const Descriptor& file)
{
    std::array<char, 4096> piece;
    Text content;
    for (ssize_t got = 0; (got = read(file.number(), piece.data(), piece.size())) > 0;)
        content.append(piece.data(), static_cast<std::size_t>(got));
    return content;
}

}
