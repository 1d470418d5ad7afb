// Runs a part of a test in a process of its own, with other rights or to be killed.
#pragma once

#include "platform/text.h"

#include <functional>

#include <sys/wait.h>
#include <unistd.h>

constexpr uid_t nobody = 65534;

// What `work` returns, having run in a child process.
inline Text inChild(const std::function<Text()>& work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        const Text result = work();
        _exit(write(ends[1], result.data(), result.size()) < 0 ? 1 : 0);
    }
    close(ends[1]);
    Text result;
    char buffer[512];
    for (ssize_t got; (got = read(ends[0], buffer, sizeof buffer)) > 0;)
        result.append(buffer, static_cast<std::size_t>(got));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return result;
}

// The same without the rights of an administrator.
inline Text inChildOfNobody(const std::function<Text()>& work)
{
    return inChild([&]() -> Text {
        if (geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0))
            return "the administrator's rights cannot be dropped";
        return work();
    });
}
