// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/tool_registry.h"

#include "desktop/programs.h"

namespace desktop
{

namespace
{

constexpr std::uint32_t localMachine = 0x80000002;
constexpr std::string_view toolKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr std::string_view toolValue = "PATH";
constexpr Registry::Key openKey = 1;

constexpr std::int32_t success = 0;
constexpr std::int32_t notFound = 2;
constexpr std::int32_t invalidHandle = 6;
constexpr std::int32_t moreData = 234;
constexpr std::uint32_t textType = 1;

struct Tool {
    const char* program;
    const char* arguments;
};

// clang-format off
constexpr Tool tools[] = {
    {"kinfocenter",          ""},
    {"gnome-control-center", " info-overview"},
    {"mate-system-monitor",  ""},
    {"gnome-system-monitor", ""},
    {"hardinfo2",            ""},
    {"hardinfo",             ""},
    {"lshw-gtk",             ""},
};
// clang-format on

Text firstTool(const Text& searchPath)
{
    for (const Tool& tool : tools)
        if (const Text path = programAt(searchPath, tool.program); !path.empty())
            return path + tool.arguments;
    return {};
}

}

std::int32_t ToolRegistry::RegOpenKeyEx(std::uint32_t root, const Text& name, std::uint32_t, Key& key)
{
    key = 0;
    if (root != localMachine || !equalWithoutCase(name, toolKey))
        return notFound;
    tool_ = firstTool(searchPath_);
    if (tool_.empty())
        return notFound;
    key = openKey;
    return success;
}

// The closing NUL counts, as it does in a registry.
std::int32_t ToolRegistry::RegQueryValueEx(Key key, const Text& valueName, std::uint32_t& type, Text& buffer,
                                           std::uint32_t& size)
{
    if (key != openKey)
        return invalidHandle;
    if (!equalWithoutCase(valueName, toolValue))
        return notFound;
    const std::uint32_t room = size;
    type = textType;
    size = static_cast<std::uint32_t>(tool_.size()) + 1;
    if (size > room)
        return moreData;
    buffer.replace(0, size, tool_ + '\0');
    return success;
}

std::int32_t ToolRegistry::RegCloseKey(Key key) { return key == openKey ? success : invalidHandle; }

}
