// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/dialog_filter.h"

namespace desktop
{

std::vector<DialogFilter> dialogFilters(const Text& filter)
{
    std::vector<Text> parts(1);
    for (const char character : filter)
        character == '|' ? (void)parts.emplace_back() : parts.back().push_back(character);
    std::vector<DialogFilter> filters;
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2)
        filters.push_back({parts[i], parts[i + 1]});
    return filters;
}

}
