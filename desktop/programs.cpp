// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/programs.h"

#include "files/descriptor.h"
#include "files/folders.h"
#include "platform/paths.h"

#include <fcntl.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <sstream>
#include <tuple>

namespace desktop
{

namespace
{

// Other threads may hold any lock at the fork: from here to `execv` only calls that take none.
void takeStreamsAway()
{
    const int nothing = open("/dev/null", O_RDWR);
    for (int stream = 0; stream <= 2; ++stream)
        dup2(nothing, stream);
    close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
}

void takeSignalsBack()
{
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int number : {SIGPIPE, SIGCHLD, SIGHUP, SIGINT, SIGQUIT})
        signal(number, SIG_DFL);
}

void restoreStack(std::optional<rlim_t> soft)
{
    rlimit limit;
    if (!soft || getrlimit(RLIMIT_STACK, &limit) != 0)
        return;
    limit.rlim_cur = *soft;
    setrlimit(RLIMIT_STACK, &limit);
}

[[noreturn]] void become(char* const* words, std::optional<rlim_t> stackLimit, int report)
{
    takeStreamsAway();
    takeSignalsBack();
    restoreStack(stackLimit);
    execv(words[0], words);
    const int error = errno;
    std::ignore = write(report, &error, sizeof error);
    _exit(127);
}

// The process between ends at once, so that the program has no parent that would have to wait for it.
[[noreturn]] void standBetween(char* const* words, std::optional<rlim_t> stackLimit, int report)
{
    setsid();
    const pid_t program = _Fork();
    if (program == 0)
        become(words, stackLimit, report);
    const int error = program < 0 ? errno : 0;
    if (error != 0)
        std::ignore = write(report, &error, sizeof error);
    _exit(0);
}

}

Text programAt(const Text& searchPath, const Text& name)
{
    if (name.find(pathSeparator) != Text::npos)
        return files::isFile(name) ? name : Text();
    std::istringstream folders(searchPath);
    for (Text folder; std::getline(folders, folder, ':');)
        if (folder.starts_with(pathSeparator) && files::isExecutable(joined(folder, name)))
            return joined(folder, name);
    return {};
}

int startDetached(const std::vector<Text>& words, std::optional<rlim_t> stackLimit)
{
    std::vector<char*> pointers;
    for (const Text& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return errno;
    const files::Descriptor answer(ends[0]);
    files::Descriptor report(ends[1]);
    const pid_t between = _Fork();
    if (between < 0)
        return errno;
    if (between == 0)
        standBetween(pointers.data(), stackLimit, report.number());
    report = files::Descriptor();
    waitpid(between, nullptr, 0);
    int error = 0; // stays when the program's start closes the other end
    std::ignore = read(answer.number(), &error, sizeof error);
    return error;
}

}
