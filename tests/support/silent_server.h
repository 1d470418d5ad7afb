// SPDX-License-Identifier: GPL-3.0-or-later
// A server that takes who comes and never says a word.
#pragma once

#include "platform/text.h"

#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

class SilentServer
{
public:
    explicit SilentServer(const Text& path) : path_(path)
    {
        sockaddr_un address{AF_UNIX, {}};
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            listen(listener_, 1) != 0)
            throw std::runtime_error("no server at " + path);
    }
    ~SilentServer()
    {
        close(guest_);
        close(listener_);
        unlink(path_.c_str());
    }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    // Whether anyone came within half a minute.
    bool await()
    {
        pollfd state{listener_, POLLIN, 0};
        if (poll(&state, 1, 30'000) != 1)
            return false;
        close(std::exchange(guest_, accept(listener_, nullptr, nullptr)));
        return guest_ >= 0;
    }

    // Who came is sent away, and so is everybody who comes.
    void refuse()
    {
        close(std::exchange(listener_, -1));
        close(std::exchange(guest_, -1));
    }

private:
    Text path_;
    int listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int guest_ = -1;
};
