// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/folder_scan.h"

#include "files/errand.h"
#include "files/folders.h"
#include "platform/mutex.h"
#include "platform/paths.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace desktop
{

namespace
{

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

struct FolderEntry {
    unsigned char type;
    Text name;
};

// 0 for what does not exist.
std::uint32_t attributesAt(const Text& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return 0;
    return S_ISDIR(status.st_mode) ? FoundFile::directory : FoundFile::archive;
}

bool isDots(std::string_view name) { return name == "." || name == ".."; }

}

// The folder is read, and where links lead is asked, on threads of their own, which may be held up for ever.
class FolderScan::Walk
{
public:
    Walk(const Text& folder, std::string_view pattern) : folder_(folder), pattern_(pattern)
    {
        const auto reading = std::make_shared<Reading>();
        waiting([&] {
            files::answerWithin<bool>(left_, "entries of " + folder, [=] { return read(folder, *reading); });
        });
        entries_ = reading->leave();
    }

    // False at the end.
    bool next(FoundFile& found)
    {
        while (next_ < entries_.size()) {
            FolderEntry& entry = entries_[next_++];
            const auto attributes = files::fits(entry.name, pattern_) ? attributesOf(entry) : 0;
            if (attributes == 0)
                continue;
            found = {attributes, std::move(entry.name)};
            return true;
        }
        return false;
    }

private:
    class Reading
    {
    public:
        // False when nobody wants it any more.
        bool give(FolderEntry entry)
        {
            const Lock lock(mutex_);
            entries_.push_back(std::move(entry));
            return !isLeft_;
        }
        // What has been read until now.
        std::vector<FolderEntry> leave()
        {
            const Lock lock(mutex_);
            isLeft_ = true;
            return std::move(entries_);
        }

    private:
        Mutex mutex_;
        std::vector<FolderEntry> entries_ GUARDED_BY(mutex_);
        bool isLeft_ GUARDED_BY(mutex_) = false;
    };

    // True, as the answer of an errand.
    static bool read(const Text& folder, Reading& reading)
    {
        const std::unique_ptr<DIR, CloseFolder> entries{opendir(folder.c_str())};
        if (!entries)
            return true;
        for (const char* name : {".", ".."})
            reading.give({DT_DIR, name});
        while (const dirent* entry = readdir(entries.get()))
            if (!isDots(entry->d_name) && !reading.give({entry->d_type, entry->d_name}))
                break;
        return true;
    }

    // 0 also for what does not tell in time.
    std::uint32_t attributesOf(const FolderEntry& entry)
    {
        if (entry.type != DT_LNK && entry.type != DT_UNKNOWN)
            return entry.type == DT_DIR ? FoundFile::directory : FoundFile::archive;
        if (left_ == left_.zero())
            return 0;
        const Text path = joined(folder_, entry.name);
        std::optional<std::uint32_t> attributes;
        waiting([&] {
            attributes = files::answerWithin<std::uint32_t>(left_, "entry " + path,
                                                            [path] { return attributesAt(path); });
        });
        return attributes.value_or(0);
    }

    template <typename Work>
    void waiting(Work&& work)
    {
        using namespace std::chrono;
        const auto then = steady_clock::now();
        work();
        left_ -= std::min(duration_cast<milliseconds>(steady_clock::now() - then), left_);
    }

    std::chrono::milliseconds left_ = files::patienceForFiles; // to wait in; what the caller does costs none
    const Text folder_;
    const Text pattern_;
    std::vector<FolderEntry> entries_;
    std::size_t next_ = 0;
};

FolderScan::FolderScan() = default;
FolderScan::~FolderScan() = default;

DirectoryScan::Handle FolderScan::FindFirstFile(const Text& pattern, FoundFile& found)
{
    const Text folder = pattern.substr(0, pattern.rfind(pathSeparator) + 1);
    auto walk = std::make_unique<Walk>(folder.empty() ? Text(".") : folder, fileTitle(pattern));
    if (!walk->next(found))
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

}
