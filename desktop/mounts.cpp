// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/mounts.h"

#include "platform/paths.h"

#include <algorithm>
#include <optional>

namespace desktop
{

namespace
{

std::vector<std::string_view> split(std::string_view text, char at)
{
    std::vector<std::string_view> parts;
    for (std::size_t end = 0; end != text.npos; text.remove_prefix(std::min(end + 1, text.size()))) {
        end = text.find(at);
        parts.push_back(text.substr(0, end));
    }
    return parts;
}

bool isOctal(std::string_view digits)
{
    return digits.size() == 3 && digits.find_first_not_of("01234567") == digits.npos;
}

// Blanks, tabs, line ends and backslashes stand as three octal digits behind a backslash.
Text unescaped(std::string_view field)
{
    Text text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const std::string_view digits = field.substr(std::min(i + 1, field.size()), 3);
        const bool escape = field[i] == '\\' && isOctal(digits);
        text += escape ? static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + digits[2] - '0')
                       : field[i];
        i += escape ? 3 : 0;
    }
    return text;
}

// id parent major:minor root folder options [tags] - type source options
std::optional<Mount> mountIn(std::string_view line)
{
    const auto fields = split(line, ' ');
    const auto dash = std::find(fields.begin(), fields.end(), "-");
    if (dash - fields.begin() < 6 || fields.end() - dash < 3)
        return std::nullopt;
    return Mount{Text(fields[2]), unescaped(fields[4]), Text(dash[1]), unescaped(dash[2])};
}

}

std::vector<Mount> mountsIn(std::string_view table)
{
    std::vector<Mount> mounts;
    for (const std::string_view line : split(table, '\n'))
        if (auto mount = mountIn(line))
            mounts.push_back(*std::move(mount));
    return mounts;
}

Text deviceOf(const std::vector<Mount>& mounts, std::string_view path)
{
    Text device;
    std::size_t longest = 0;
    for (const Mount& mount : mounts)
        if (liesIn(path, mount.folder) && mount.folder.size() >= longest) {
            device = mount.device;
            longest = mount.folder.size();
        }
    return device;
}

bool liesIn(std::string_view path, std::string_view folder)
{
    if (!path.starts_with(folder))
        return false;
    return path.size() == folder.size() || endsInSeparator(folder) || path[folder.size()] == pathSeparator;
}

}
