// SPDX-License-Identifier: GPL-3.0-or-later
// Work in a process of its own, to be killed or to be given rights and limits that the tests cannot take
// themselves.
#pragma once

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

class Child
{
public:
    // Runs `work` and ends with 0. It dies with this process.
    explicit Child(const std::function<void()>& work) : id_(fork())
    {
        if (id_ != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        work();
        _exit(0);
    }
    ~Child() { kill(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t id() const { return id_; }

    void kill()
    {
        if (id_ > 0)
            ::kill(id_, SIGKILL);
        wait();
    }

    // The exit status; 128 and the signal's number for a killed one.
    int wait()
    {
        int status = 0;
        if (id_ > 0)
            waitpid(id_, &status, 0);
        id_ = -1;
        return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

private:
    pid_t id_;
};

// An exit status for the checks of a child, whose own would not be counted.
inline void endUnless(bool holds, int status)
{
    if (!holds)
        _exit(status);
}

// Gives up the rights of root, which no refusal of the file system touches.
inline void becomeNobody()
{
    if (geteuid() == 0)
        endUnless(setegid(65534) == 0 && seteuid(65534) == 0, 99);
}
