// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a private profile: reading stays inside them, and what was written is read back and written
// once.
#include "files/profile_text.h"
#include "tests/fuzz/input.h"

namespace
{

// The text up to the next bar, which goes too.
std::string_view taken(std::string_view& rest)
{
    const std::size_t end = std::min(rest.find('|'), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

bool lies(std::string_view part, std::string_view whole)
{
    return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

bool isFramed(std::string_view value)
{
    constexpr std::string_view stripped = " \t\v\f\"'";
    return !value.empty() &&
           (stripped.find(value.front()) != value.npos || stripped.find(value.back()) != value.npos);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = asText(data, size);
    const std::string_view section = taken(text);
    const std::string_view key = taken(text);
    const std::string_view value = taken(text);

    if (const auto found = files::profileValue(text, section, key); found && !found->empty())
        require(lies(*found, text));
    if (!files::fitsProfile(section, key, value))
        return 0;
    const Text changed = files::profileWith(text, section, key, value);
    const auto back = files::profileValue(changed, section, key);
    require(back.has_value());
    require(isFramed(value) || *back == value);
    require(files::profileWith(changed, section, key, value) == changed);
    return 0;
}
