// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/directory_scan.h"
#include "platform/failure.h"
#include "platform/paths.h"
#include "platform/profile_file.h"
#include "player/start_up.h"
#include "program.h"

#include <array>

namespace
{

bool scanFinds(DirectoryScan& scan, DirectoryScan::Handle handle, FoundFile found, const Text& name)
{
    do {
        // Plain files without any attribute are passed over unseen; that is the rule of this look-up.
        if ((found.attributes & FoundFile::plainNormal) == 0 &&
            equalWithoutCase(StartUp::StripTerminator(found.name), name))
            return true;
    } while (scan.FindNextFile(handle, found));
    return false;
}

}

Text StartUp::StripTerminator(const Text& text) { return text.substr(0, text.find('\0')); }

bool StartUp::FileOrDirExists(const Text& name, const Text& folder)
{
    if (name.empty() && folder.empty())
        return false;
    const bool seeksFile = !name.empty();
    const Text path = seeksFile ? name.substr(0, name.rfind(pathSeparator) + 1) : folder;

    DirectoryScan& scan = program_.platform().directoryScan();
    FoundFile found;
    auto handle = DirectoryScan::invalid;
    succeeds([&] { handle = scan.FindFirstFile(joined(path, "*.*"), found); });
    if (handle == DirectoryScan::invalid)
        return false;
    bool exists = true;
    skipping([&] { exists = !seeksFile || scanFinds(scan, handle, found, Text(fileTitle(name))); },
             [&] { scan.FindClose(handle); });
    return exists;
}

bool StartUp::AddToINI(const Text& section, const Text& key, const Text& value, const Text& file)
{
    return program_.platform().profileFile().write(section, key, value, file);
}

// Reading a missing value plants its default in the file. A value is cut to 254 characters, of up to four
// bytes each.
Text StartUp::GetFromINI(const Text& section, const Text& key, const Text& fallback, const Text& file)
{
    constexpr std::size_t characters = 255;
    std::array<char, 4 * characters> buffer{};
    if (program_.platform().profileFile().read(section, key, "", buffer.data(), buffer.size(), file) != 0) {
        const Text value = StripTerminator(Text(buffer.data(), buffer.size()));
        return Text(firstCharacters(value, characters - 1));
    }
    if (!fallback.empty())
        AddToINI(section, key, fallback, file);
    return fallback;
}
