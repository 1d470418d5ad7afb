// SPDX-License-Identifier: GPL-3.0-or-later
// Another program, started for a test and ended with it.
#pragma once

#include "platform/text.h"
#include "tests/support/child.h"

#include <fcntl.h>
#include <poll.h>

#include <vector>

class Spawned
{
public:
    explicit Spawned(std::vector<Text> words) :
        child_([&] {
            std::vector<char*> pointers;
            for (Text& word : words)
                pointers.push_back(word.data());
            pointers.push_back(nullptr);
            dup2(ends_[1], STDOUT_FILENO);
            dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
            execvp(pointers[0], pointers.data());
            _exit(127);
        })
    {
        close(ends_[1]);
    }
    ~Spawned() { close(ends_[0]); }

    void kill() { child_.kill(); }
    void hang() { ::kill(child_.id(), SIGSTOP); }
    void wakeUp() { ::kill(child_.id(), SIGCONT); }

    // The next line that it prints, waited for; "" when it ends, or says nothing for ten seconds.
    Text line()
    {
        Text text;
        pollfd state{ends_[0], POLLIN, 0};
        for (char c = 0; poll(&state, 1, 10'000) == 1 && read(ends_[0], &c, 1) == 1 && c != '\n';)
            text += c;
        return text;
    }

private:
    struct Ends {
        Ends() { endUnless(pipe2(numbers, O_CLOEXEC) == 0, 97); }
        int operator[](int end) const { return numbers[end]; }
        int numbers[2];
    };
    Ends ends_;
    Child child_;
};
