// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/optical_devices.h"

#include "files/descriptor.h"

#include <sys/stat.h>

#include <algorithm>

namespace disc
{

namespace
{

constexpr std::string_view nodeLabel = "drive name:";
constexpr std::string_view recordLabel = "Can write CD-R:";

// One column for each drive.
std::vector<std::string_view> columns(std::string_view line)
{
    constexpr std::string_view blanks = " \t";
    std::vector<std::string_view> words;
    for (auto begin = line.find_first_not_of(blanks); begin < line.size();
         begin = line.find_first_not_of(blanks)) {
        line.remove_prefix(begin);
        words.push_back(line.substr(0, line.find_first_of(blanks)));
        line.remove_prefix(words.back().size());
    }
    return words;
}

// What stands behind the label, in its columns.
std::vector<std::string_view> labelled(std::string_view text, std::string_view label)
{
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (line.starts_with(label))
            return columns(line.substr(label.size()));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return {};
}

bool isPlainName(std::string_view node)
{
    return !node.empty() && node.find_first_of("/.") == std::string_view::npos;
}

// What the drive says of itself comes in fields that are filled up with blanks.
Text field(const Text& node, const Text& name)
{
    const Text text = files::contentOf("/sys/class/block/" + node + "/device/" + name);
    const auto begin = text.find_first_not_of(" \n");
    return begin == Text::npos ? "" : text.substr(begin, text.find_last_not_of(" \n") - begin + 1);
}

Text shownName(const Text& node)
{
    const Text vendor = field(node, "vendor");
    const Text model = field(node, "model");
    const Text both = vendor.empty() || model.empty() ? vendor + model : vendor + ' ' + model;
    return (both.empty() ? "CD drive" : both) + " (/dev/" + node + ')';
}

bool isThere(const Text& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISBLK(status.st_mode);
}

}

std::vector<ListedDrive> drivesIn(std::string_view cdromInfo)
{
    const auto nodes = labelled(cdromInfo, nodeLabel);
    const auto records = labelled(cdromInfo, recordLabel);
    std::vector<ListedDrive> drives;
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (isPlainName(nodes[i]))
            drives.push_back({Text(nodes[i]), i < records.size() && records[i] == "1"});
    std::ranges::sort(drives, {}, [](const auto& drive) { return std::pair(drive.node.size(), drive.node); });
    return drives;
}

std::vector<OpticalDevice> opticalDevices()
{
    std::vector<OpticalDevice> devices;
    for (const auto& drive : drivesIn(files::contentOf("/proc/sys/dev/cdrom/info")))
        if (const Text path = "/dev/" + drive.node; isThere(path))
            devices.push_back({path, shownName(drive.node), drive.records});
    return devices;
}

}
