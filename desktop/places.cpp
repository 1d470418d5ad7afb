// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/places.h"

#include "files/account.h"
#include "files/folders.h"
#include "platform/environment_variable.h"
#include "platform/paths.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <optional>

namespace desktop
{

namespace
{

constexpr const char* ownName = "Velmora";

bool isAbsolute(std::string_view path) { return path.starts_with(pathSeparator); }

// A relative value is to be ignored, say the rules.
Text baseFolder(const Text& set, const Environment& environment, const char* usual)
{
    return files::withoutSeparatorBehind(isAbsolute(set) ? set : joined(homeFolder(environment), usual));
}

Text configHome(const Environment& environment)
{
    return baseFolder(environment.configHome, environment, ".config");
}

std::string_view withoutBlanksBefore(std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

// What stands between the quotes; a backslash takes the character behind it as it is.
std::optional<Text> quoted(std::string_view text)
{
    Text value;
    for (std::size_t i = 1; text.starts_with('"') && i < text.size(); ++i) {
        if (text[i] == '"')
            return value;
        i += text[i] == '\\' && i + 1 < text.size();
        value += text[i];
    }
    return std::nullopt;
}

// XDG_MUSIC_DIR="$HOME/Music" or ="/absolute"; nothing for any other line.
std::optional<Text> musicEntry(std::string_view line, const Environment& environment)
{
    constexpr std::string_view name = "XDG_MUSIC_DIR";
    constexpr std::string_view inHome = "$HOME";
    line = withoutBlanksBefore(line);
    if (!line.starts_with(name))
        return std::nullopt;
    line = withoutBlanksBefore(line.substr(name.size()));
    if (!line.starts_with('='))
        return std::nullopt;
    auto value = quoted(withoutBlanksBefore(line.substr(1)));
    if (value && (*value + '/').starts_with("$HOME/"))
        value->replace(0, inHome.size(), homeFolder(environment));
    return value && isAbsolute(*value) ? value : std::nullopt;
}

Text executable()
{
    constexpr std::string_view removed = " (deleted)";
    char target[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", target, sizeof target);
    const Text path(target, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return path.ends_with(removed) ? path.substr(0, path.size() - removed.size()) : path;
}

}

Environment environmentOfProcess()
{
    const Text home = environmentVariable("HOME");
    return {.executable = executable(),
            .home = home,
            .accountHome = isAbsolute(home) ? Text() : files::accountOfUser().home, // asked only in need
            .configHome = environmentVariable("XDG_CONFIG_HOME"),
            .dataHome = environmentVariable("XDG_DATA_HOME"),
            .stateHome = environmentVariable("XDG_STATE_HOME"),
            .cacheHome = environmentVariable("XDG_CACHE_HOME"),
            .runtimeFolder = environmentVariable("XDG_RUNTIME_DIR"),
            .searchPath = environmentVariable("PATH"),
            .busAddress = environmentVariable("DBUS_SESSION_BUS_ADDRESS"),
            .systemBus = environmentVariable("DBUS_SYSTEM_BUS_ADDRESS")};
}

Text homeFolder(const Environment& environment)
{
    for (const Text* home : {&environment.home, &environment.accountHome})
        if (isAbsolute(*home))
            return files::withoutSeparatorBehind(*home);
    return Text(driveRoot);
}

Text configFolder(const Environment& environment) { return joined(configHome(environment), ownName); }

Text dataFolder(const Environment& environment)
{
    return joined(baseFolder(environment.dataHome, environment, ".local/share"), ownName);
}

Text stateFolder(const Environment& environment)
{
    return joined(baseFolder(environment.stateHome, environment, ".local/state"), ownName);
}

Text cacheFolder(const Environment& environment)
{
    return joined(baseFolder(environment.cacheHome, environment, ".cache"), ownName);
}

Text musicFolder(const Environment& environment)
{
    Text folder = joined(homeFolder(environment), "Music");
    std::ifstream lines(joined(configHome(environment), "user-dirs.dirs"));
    for (Text line; std::getline(lines, line);)
        folder = musicEntry(line, environment).value_or(folder);
    return files::withoutSeparatorBehind(folder);
}

}
