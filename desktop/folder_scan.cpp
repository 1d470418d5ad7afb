#include "desktop/folder_scan.h"

#include "platform/paths.h"

#include <dirent.h>
#include <sys/stat.h>

namespace
{

constexpr auto npos = std::string_view::npos;

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// 0 for what does not exist.
std::uint32_t attributesOf(int folder, const char* name, unsigned char type)
{
    if (type == DT_DIR)
        return FoundFile::directory;
    struct stat status;
    if (type == DT_LNK || type == DT_UNKNOWN) {
        if (fstatat(folder, name, &status, 0) != 0)
            return 0;
        return S_ISDIR(status.st_mode) ? FoundFile::directory : FoundFile::archive;
    }
    return FoundFile::archive;
}

// How much of the name's beginning a pattern without stars covers; npos when it does not fit.
std::size_t coveredBy(std::string_view pattern, std::string_view name)
{
    std::size_t at = 0;
    for (const char& c : pattern) {
        if (at >= name.size() || (c != '?' && !equalWithoutCase({&c, 1}, name.substr(at, 1))))
            return npos;
        at += c == '?' ? characterBytes(name, at) : 1;
    }
    return at;
}

bool isDots(std::string_view name) { return name == "." || name == ".."; }

}

class FolderScan::Walk
{
public:
    Walk(const Text& folder, std::string_view pattern) : entries_(opendir(folder.c_str())), pattern_(pattern)
    {
    }

    explicit operator bool() const { return entries_ != nullptr; }

    bool next(FoundFile& found)
    {
        while (step(found))
            if (matchesPattern(found.name, pattern_))
                return true;
        return false;
    }

private:
    bool step(FoundFile& found)
    {
        static constexpr const char* firstNames[] = {".", ".."};
        if (given_ < std::size(firstNames)) {
            found = {FoundFile::directory, firstNames[given_++]};
            return true;
        }
        while (const dirent* entry = readdir(entries_.get())) {
            if (isDots(entry->d_name))
                continue;
            found = {attributesOf(dirfd(entries_.get()), entry->d_name, entry->d_type), entry->d_name};
            if (found.attributes != 0)
                return true;
        }
        return false;
    }

    std::unique_ptr<DIR, CloseFolder> entries_;
    Text pattern_;
    std::size_t given_ = 0;
};

FolderScan::FolderScan() = default;
FolderScan::~FolderScan() = default;

DirectoryScan::Handle FolderScan::FindFirstFile(const Text& pattern, FoundFile& found)
{
    const Text folder = pattern.substr(0, pattern.rfind(pathSeparator) + 1);
    auto walk = std::make_unique<Walk>(folder.empty() ? Text(".") : folder, fileTitle(pattern));
    if (!*walk || !walk->next(found))
        return invalid;
    walks_[++last_] = std::move(walk);
    return last_;
}

bool FolderScan::FindNextFile(Handle scan, FoundFile& found)
{
    const auto walk = walks_.find(scan);
    return walk != walks_.end() && walk->second->next(found);
}

void FolderScan::FindClose(Handle scan) { walks_.erase(scan); }

bool matchesPattern(std::string_view name, std::string_view pattern)
{
    if (pattern == "*.*")
        return true;
    const std::size_t star = pattern.find('*');
    const std::size_t covered = coveredBy(pattern.substr(0, star), name);
    if (covered == npos || star == npos)
        return covered == name.size();
    const std::string_view behind = pattern.substr(star + 1);
    std::size_t at = covered;
    while (at < name.size() && !matchesPattern(name.substr(at), behind))
        at += characterBytes(name, at);
    return matchesPattern(name.substr(at), behind);
}
