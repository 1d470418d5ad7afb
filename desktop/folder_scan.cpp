// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/folder_scan.h"

#include "files/errand.h"
#include "platform/paths.h"

#include <dirent.h>
#include <sys/stat.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

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

// The folder is read on a thread of its own, which may be held up for ever; the entries arrive here.
class FolderScan::Walk
{
public:
    Walk(const Text& folder, std::string_view pattern) :
        pattern_(pattern), reading_(std::make_shared<Reading>())
    {
        try {
            std::thread([folder, reading = reading_] { read(folder, *reading); }).detach();
        } catch (const std::system_error&) { // no thread to be had
            reading_->end();
        }
    }
    ~Walk() { reading_->leave(); }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    // False at the end, and when the time for the whole walk is over.
    bool next(FoundFile& found)
    {
        while (auto entry = reading_->take(deadline_))
            if (matchesPattern(entry->name, pattern_)) {
                found = *std::move(entry);
                return true;
            }
        return false;
    }

private:
    class Reading
    {
    public:
        // False when nobody wants it any more.
        bool give(FoundFile entry)
        {
            const std::lock_guard lock(mutex_);
            entries_.push_back(std::move(entry));
            change_.notify_all();
            return !isLeft_;
        }
        void end()
        {
            const std::lock_guard lock(mutex_);
            hasEnded_ = true;
            change_.notify_all();
        }
        void leave()
        {
            const std::lock_guard lock(mutex_);
            isLeft_ = true;
        }
        std::optional<FoundFile> take(std::chrono::steady_clock::time_point deadline)
        {
            std::unique_lock lock(mutex_);
            change_.wait_until(lock, deadline, [this] { return !entries_.empty() || hasEnded_; });
            if (entries_.empty())
                return std::nullopt;
            FoundFile entry = std::move(entries_.front());
            entries_.pop_front();
            return entry;
        }

    private:
        std::mutex mutex_;
        std::condition_variable change_;
        std::deque<FoundFile> entries_;
        bool hasEnded_ = false;
        bool isLeft_ = false;
    };

    static void read(const Text& folder, Reading& reading)
    {
        if (const std::unique_ptr<DIR, CloseFolder> entries{opendir(folder.c_str())})
            readEntries(*entries, reading);
        reading.end();
    }

    static void readEntries(DIR& entries, Reading& reading)
    {
        for (const char* name : {".", ".."})
            reading.give({FoundFile::directory, name});
        while (const dirent* entry = readdir(&entries)) {
            if (isDots(entry->d_name))
                continue;
            const auto attributes = attributesOf(dirfd(&entries), entry->d_name, entry->d_type);
            if (attributes != 0 && !reading.give({attributes, entry->d_name}))
                return;
        }
    }

    const std::chrono::steady_clock::time_point deadline_ =
        std::chrono::steady_clock::now() + patienceForFiles;
    const Text pattern_;
    const std::shared_ptr<Reading> reading_;
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
