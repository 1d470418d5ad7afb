// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/folders.h"

#include "files/descriptor.h"
#include "platform/paths.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <memory>
#include <tuple>

namespace files
{

namespace
{

bool hasType(const Text& path, mode_t type)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && (status.st_mode & S_IFMT) == type;
}

// "" for what is no link.
Text linkTarget(const Text& path)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    return length > 0 ? Text(target, static_cast<std::size_t>(length)) : Text();
}

}

bool makeFolders(const Text& folder)
{
    if (isFolder(folder))
        return true;
    const Text above = folderOf(folder);
    return above != folder && makeFolders(above) && (mkdir(folder.c_str(), 0700) == 0 || isFolder(folder));
}

bool isFolder(const Text& path) { return hasType(path, S_IFDIR); }
bool isFile(const Text& path) { return hasType(path, S_IFREG); }
bool isExecutable(const Text& path)
{
    return isFile(path) && faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

// Songs have brackets in their names: to the matcher they would be a choice of letters.
bool fits(const Text& name, const Text& pattern)
{
    Text plain;
    for (const char c : pattern)
        plain += c == '[' || c == '\\' ? Text{'\\', c} : Text{c};
    return pattern == "*.*" || fnmatch(plain.c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

bool isSameFile(const Text& one, const Text& other)
{
    struct stat first;
    struct stat second;
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

void syncFolder(const Text& folder)
{
    const Descriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory)
        fsync(directory.number());
}

Text withoutSeparatorBehind(Text path)
{
    while (path.size() > driveRoot.size() && endsInSeparator(path))
        path.pop_back();
    return path;
}

Text folderOf(const Text& path)
{
    const std::size_t end = path.rfind(pathSeparator);
    return end == Text::npos ? "." : withoutSeparatorBehind(path.substr(0, end + 1));
}

Text resolvedLinks(const Text& path)
{
    Text place = path;
    for (int links = 0; links < 40; ++links) {
        const Text target = linkTarget(place);
        if (target.empty())
            return place;
        place = target.front() == pathSeparator ? target : joined(folderOf(place), target);
    }
    return {};
}

Text randomName()
{
    std::uint64_t number = 0;
    std::ignore = getrandom(&number, sizeof number, 0); // so few bytes are always there
    static constexpr char digits[] = "0123456789abcdef";
    Text name;
    for (int i = 0; i < 16; ++i, number >>= 4)
        name += digits[number & 15];
    return name;
}

std::vector<Text> namesIn(const Text& folder)
{
    std::vector<Text> names;
    const auto close = [](DIR* entries) { closedir(entries); };
    const std::unique_ptr<DIR, decltype(close)> entries(opendir(folder.c_str()));
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr)
        if (const Text name = entry->d_name; name != "." && name != "..")
            names.push_back(name);
    return names;
}

}
