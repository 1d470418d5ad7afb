// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fire/changes.h"

#include "tests/support/system_calls.h"

#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace fire
{

namespace
{

const char* given(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

struct Fault {
    const std::string name = given("VELMORA_FIRE_FAULT");
    const long at = std::atol(given("VELMORA_FIRE_AT"));

    bool is(const char* which) const { return name == which; }

    // 0 for one that is no error.
    int error() const
    {
        const struct {
            const char* name;
            int number;
        } errors[] = {{"ENOSPC", ENOSPC}, {"EIO", EIO}, {"EACCES", EACCES}, {"EDQUOT", EDQUOT}};
        for (const auto& each : errors)
            if (is(each.name))
                return each.number;
        return 0;
    }
};

struct Watch {
    const std::string folder = given("VELMORA_FIRE_BELOW");
    const bool keepsBytes = *given("VELMORA_FIRE_BYTES") != '\0';
    const Fault fault{};
    const int log = static_cast<int>(syscall(SYS_openat, AT_FDCWD, given("VELMORA_FIRE_LOG"),
                                             O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    std::mutex mutex;
    long count = 0;
};

// Never taken down: threads outlive the end of main.
Watch& watch()
{
    static auto* const only = new Watch;
    return *only;
}

ino_t inodeOf(const Change& change)
{
    struct stat status = {};
    if (change.file >= 0)
        fstat(change.file, &status);
    else
        lstat(change.path.c_str(), &status);
    return status.st_ino;
}

// What a copying call wrote is not in anybody's memory, and the file may be open for writing alone.
std::vector<char> bytesOf(const Change& change, std::size_t size)
{
    std::vector<char> bytes(size);
    const std::string name = "/proc/self/fd/" + std::to_string(change.file);
    const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, name.c_str(), O_RDONLY | O_CLOEXEC));
    const ssize_t got = file < 0 ? 0 : pread(file, bytes.data(), size, change.at);
    bytes.resize(static_cast<std::size_t>(got > 0 ? got : 0));
    syscall(SYS_close, file);
    return bytes;
}

// A line of what happened, and behind that of a write its bytes.
void note(const Change& change, ino_t inode, ssize_t result, const char* what)
{
    const bool isWrite = change.size > 0 && result > 0;
    std::vector<char> bytes;
    if (isWrite && watch().keepsBytes)
        bytes = bytesOf(change, static_cast<std::size_t>(result));
    std::string line;
    for (const std::string& word :
         {std::to_string(watch().count), std::string(change.kind), std::string(what), std::to_string(inode),
          std::to_string(change.at), std::to_string(bytes.size()), change.path, change.second})
        line += word + '\0';
    line.append(bytes.data(), bytes.size());
    syscall(SYS_write, watch().log, line.data(), line.size());
}

[[noreturn]] void endHere()
{
    syscall(SYS_kill, getpid(), SIGKILL);
    for (;;)
        pause();
}

// What is opened is known only then.
ino_t inodeAfter(const Change& change, ino_t before, ssize_t result)
{
    return std::string_view(change.kind) == "open" && result >= 0
               ? inodeOf({"", change.path, static_cast<int>(result)})
               : before;
}

ssize_t failAt(const Change& change, int error)
{
    note(change, inodeOf(change), -1, watch().fault.name.c_str());
    errno = error;
    return -1;
}

}

bool isWatched(const std::string& path)
{
    return systemCalls::liesBelow(path.c_str(), watch().folder.c_str());
}

ssize_t carryOut(const Change& change, const std::function<ssize_t(std::size_t)>& call)
{
    Watch& all = watch();
    const std::lock_guard guard(all.mutex);
    const bool isHere = ++all.count == all.fault.at;
    if (const int error = isHere ? all.fault.error() : 0; error != 0)
        return failAt(change, error);
    const ino_t inode = inodeOf(change);
    if (isHere && all.fault.is("kill")) {
        note(change, inode, -1, "kill");
        endHere();
    }
    const bool isHalf = isHere && change.size > 1 && (all.fault.is("torn") || all.fault.is("short"));
    const ssize_t result = call(isHalf ? change.size / 2 : change.size);
    const int error = errno;
    note(change, inodeAfter(change, inode, result), result,
         isHalf       ? all.fault.name.c_str()
         : result < 0 ? "failed"
                      : "done");
    if (isHalf && all.fault.is("torn"))
        endHere();
    errno = error;
    return result;
}

}
