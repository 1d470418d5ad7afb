// SPDX-License-Identifier: GPL-3.0-or-later
// A sound server of the test's own, whose sink records bit for bit, and what comes out of it. While it lives,
// the process finds no other server.
#pragma once

#include "tests/support/no_sound.h"
#include "tests/support/program_process.h"
#include "tests/support/wait_until.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <vector>

class SoundServer
{
public:
    explicit SoundServer(int rate = 44100) : rate_(rate) { start(); }

    int rate() const { return rate_; }

    void start()
    {
        unlink(socket().c_str());
        process_ = std::make_unique<ProgramProcess>(std::vector<Text>{
            "pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
            "--disallow-exit=yes", "--realtime=no", "--high-priority=no", "-L",
            "module-null-sink sink_name=testsink format=s16le channels=2 norewinds=1 rate=" +
                std::to_string(rate_),
            "-L", "module-native-protocol-unix auth-anonymous=1 socket=" + socket()});
        if (!waitUntil([this] { return answers(); }))
            throw std::runtime_error("The test's sound server did not start: is pulseaudio installed?");
        process_->putBeforeOtherWork();
    }

    void kill() { process_->end(SIGKILL); }
    void hang() { process_->send(SIGSTOP); }
    void wakeUp() { process_->send(SIGCONT); }

    Text socket() const { return otherwise_.pulseSocket(); }

private:
    bool answers() const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        socket().copy(address.sun_path, sizeof(address.sun_path) - 1);
        const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const bool connected = connect(client, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
        close(client);
        return connected;
    }

    int rate_;
    NoSound otherwise_;
    std::unique_ptr<ProgramProcess> process_;
};

struct StereoFrame {
    std::int16_t left = 0;
    std::int16_t right = 0;

    bool operator==(const StereoFrame&) const = default;
    bool isSilent() const { return left == 0 && right == 0; }
};

using StereoFrames = std::vector<StereoFrame>;

// Takes down what the server's sink plays, from its making on.
class Recorder
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Recorder(const SoundServer& server)
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        process_ = std::make_unique<ProgramProcess>(
            std::vector<Text>{"parec", "-d", "testsink.monitor", "--raw", "--format=s16le", "--channels=2",
                              "--latency-msec=10", "--rate=" + std::to_string(server.rate())},
            ends[1]);
        close(ends[1]);
        process_->putBeforeOtherWork();
        input_ = ends[0];
        reader_ = std::thread([this] { read(); });
        if (!waitUntil([this] { return size() > 0; }))
            throw std::runtime_error("The test's recorder does not record: is pulseaudio-utils installed?");
    }

    ~Recorder()
    {
        process_->end();
        reader_.join();
        close(input_);
    }

    std::size_t size() const
    {
        const std::lock_guard lock(mutex_);
        return frames_.size();
    }

    StereoFrames frames() const
    {
        const std::lock_guard lock(mutex_);
        return frames_;
    }

    // The last frame recorded and when it came.
    std::pair<StereoFrame, Clock::time_point> latest() const
    {
        const std::lock_guard lock(mutex_);
        return {frames_.empty() ? StereoFrame{} : frames_.back(), when_};
    }

    // When the recording first held sound behind its frame `from`. Throws when none comes.
    Clock::time_point waitForSound(std::size_t from = 0) const
    {
        Clock::time_point when;
        const bool sounds = waitUntil([&] {
            const std::lock_guard lock(mutex_);
            when = when_;
            return std::any_of(frames_.begin() + static_cast<std::ptrdiff_t>(std::min(from, frames_.size())),
                               frames_.end(), [](const StereoFrame& frame) { return !frame.isSilent(); });
        });
        if (!sounds)
            throw std::runtime_error("No sound was recorded.");
        return when;
    }

private:
    void read()
    {
        std::vector<StereoFrame> part(4096);
        std::size_t filled = 0; // bytes
        for (;;) {
            const auto got = ::read(input_, reinterpret_cast<char*>(part.data()) + filled,
                                    part.size() * sizeof(StereoFrame) - filled);
            if (got <= 0)
                return;
            filled += static_cast<std::size_t>(got);
            const std::size_t whole = filled / sizeof(StereoFrame);
            const std::lock_guard lock(mutex_);
            frames_.insert(frames_.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(whole));
            when_ = Clock::now();
            filled %= sizeof(StereoFrame);
            if (filled != 0)
                part[0] = part[whole];
        }
    }

    std::unique_ptr<ProgramProcess> process_;
    int input_ = -1;
    mutable std::mutex mutex_;
    StereoFrames frames_;
    Clock::time_point when_;
    std::thread reader_;
};
