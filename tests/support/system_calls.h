// SPDX-License-Identifier: GPL-3.0-or-later
// What the libraries share that stand before the C library: the calls behind them, and what these are about.
#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <list>
#include <string>

// Each library's own: what stands behind a call depends on who asks.
namespace [[gnu::visibility("hidden")]] systemCalls
{

template <typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// `before` are the arguments of an opening call before its flags.
template <typename... Before>
int openNext(const char* name, int flags, va_list rest, Before... before)
{
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return next<int(Before..., int, ...)>(name)(before..., flags, hasMode ? va_arg(rest, mode_t) : 0);
}

// The folder itself lies below it, too.
inline bool liesBelow(const char* path, const char* folder)
{
    const std::size_t length = std::strlen(folder);
    return path != nullptr && length > 0 && std::strncmp(path, folder, length) == 0 &&
           (path[length] == '/' || path[length] == '\0');
}

// The path of what is open under that number, "" without one.
class PathOfOpen
{
public:
    explicit PathOfOpen(int file)
    {
        char link[64];
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
        using ReadLink = ssize_t(const char*, char*, std::size_t);
        static auto* const readNext = next<ReadLink>("readlink");
        const ssize_t length = readNext(link, path_, sizeof path_ - 1);
        path_[length > 0 ? length : 0] = '\0';
    }

    const char* get() const { return path_; }

    // A name in that folder; one from the root is itself.
    const char* with(const char* name)
    {
        if (name == nullptr || name[0] == '/')
            return name;
        const std::size_t length = std::strlen(path_);
        std::snprintf(path_ + length, sizeof path_ - length, "/%s", name);
        return path_;
    }

private:
    char path_[2 * PATH_MAX];
};

// The folder that a library is about, "" while there is none. Other threads' calls may still look at a name
// while the next one is said, so none goes before the tests do.
class Place
{
public:
    void set(const std::string& folder)
    {
        static auto& names = *new std::list<std::string>;
        path_ = names.emplace_back(folder).c_str();
    }
    void clear() { path_ = ""; }
    const char* get() const { return path_; }
    bool holds(const char* path) const { return liesBelow(path, get()); }

private:
    std::atomic<const char*> path_ = "";
};

}
