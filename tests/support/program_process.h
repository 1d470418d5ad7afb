// SPDX-License-Identifier: GPL-3.0-or-later
// A program started by a test, and ended by its own number at the latest with the test.
#pragma once

#include "platform/text.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

class ProgramProcess
{
public:
    // `output` takes what the program writes; -1: nothing does.
    ProgramProcess(std::vector<Text> arguments, int output = -1) : id_(fork())
    {
        if (id_ != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int nothing = ::open("/dev/null", O_RDWR);
        dup2(output >= 0 ? output : nothing, STDOUT_FILENO);
        dup2(nothing, STDERR_FILENO);
        std::vector<char*> list;
        for (auto& argument : arguments)
            list.push_back(argument.data());
        list.push_back(nullptr);
        execvp(list[0], list.data());
        _exit(127);
    }
    ~ProgramProcess() { end(SIGKILL); }
    ProgramProcess(const ProgramProcess&) = delete;
    ProgramProcess& operator=(const ProgramProcess&) = delete;

    void send(int signal) const
    {
        if (id_ > 0)
            ::kill(id_, signal);
    }

    void end(int signal = SIGTERM)
    {
        send(signal);
        if (id_ > 0)
            waitpid(id_, nullptr, 0);
        id_ = -1;
    }

    // Where that is allowed: a busy machine must not look like a fault.
    void putBeforeOtherWork() const
    {
        const sched_param first{1};
        const Text threads = "/proc/" + std::to_string(id_) + "/task";
        for (const auto& thread : std::filesystem::directory_iterator(threads))
            sched_setscheduler(std::stoi(thread.path().filename()), SCHED_RR, &first);
    }

private:
    pid_t id_;
};
