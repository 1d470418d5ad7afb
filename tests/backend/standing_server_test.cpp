// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/sound/cubeb_client.h"
#include "modules/sound/standing_server.h"
#include "tests/support/no_sound.h"
#include "tests/support/silent_server.h"
#include "tests/support/sound_server.h"

#include <doctest/doctest.h>
#include <fcntl.h>
#include <sys/inotify.h>

#include <optional>
#include <thread>

namespace
{

// A user without a server, and a folder for sockets.
struct Machine {
    void set(const char* name, const Text& value) { setenv(name, value.c_str(), 1); }

    NoSound silence;
    TemporaryFolder folder;
};

// Whether anyone opens what JACK's clients share in memory, from the making on.
class SharedMemoryWatch
{
public:
    SharedMemoryWatch()
    {
        const Text shared = name();
        REQUIRE(inotify_add_watch(watch_, "/dev/shm", IN_CREATE) >= 0);
        inotify_add_watch(watch_, ("/dev/shm/" + shared).c_str(), IN_OPEN);
    }
    ~SharedMemoryWatch() { close(watch_); }

    bool saw() const
    {
        alignas(inotify_event) char events[4096];
        for (;;) {
            const ssize_t size = read(watch_, events, sizeof events);
            for (ssize_t at = 0; at < size;) {
                const auto& event = *reinterpret_cast<const inotify_event*>(events + at);
                if ((event.mask & IN_OPEN) != 0 || (event.len > 0 && event.name == name()))
                    return true;
                at += static_cast<ssize_t>(sizeof event + event.len);
            }
            if (size <= 0)
                return false;
        }
    }

private:
    static Text name() { return "jack_db-" + std::to_string(getuid()); }

    int watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

std::shared_ptr<audio::Stream> anyStream()
{
    return std::make_shared<audio::Stream>(std::make_shared<audio::Levels>(), std::make_shared<audio::Bell>(),
                                           44100);
}

}

TEST_CASE("A server that listens is talked to, and none is none")
{
    Machine machine;
    const Text socket = machine.folder / "native";
    const Text jack = "velmora-test-" + std::to_string(getpid());
    machine.set("JACK_DEFAULT_SERVER", jack);
    CHECK(audio::standingServer() == Text("alsa"));
    {
        const SilentServer server("/dev/shm/jack_" + jack + '_' + std::to_string(getuid()) + "_0");
        CHECK(audio::standingServer() == Text("jack"));
        const SilentServer better(machine.silence.pulseSocket());
        CHECK(audio::standingServer() == Text("pulse"));
    }
    CHECK(audio::standingServer() == Text("alsa"));
    {
        const SilentServer promiscuous("/dev/shm/jack_" + jack + "_0");
        CHECK(audio::standingServer() == Text("jack"));
    }
    const SilentServer server(socket);
    CHECK(audio::standingServer() == Text("alsa"));
    for (const Text& named : {"unix:" + socket, socket, Text("tcp:127.0.0.1:1")}) {
        CAPTURE(named);
        machine.set("PULSE_SERVER", named);
        CHECK(audio::standingServer() == Text("pulse"));
    }
    machine.set("PULSE_SERVER", "unix:/" + Text(200, 'x'));
    CHECK(audio::standingServer() == Text("alsa"));
}

TEST_CASE("Where no variable names the server, it is looked for where sessions have theirs")
{
    Machine machine;
    std::filesystem::create_directory(machine.folder / "pulse");
    for (const Text& place : {machine.folder / "native", machine.folder / "pulse/native"}) {
        CAPTURE(place);
        machine.set("PULSE_SERVER", "");
        machine.set(place == machine.folder / "native" ? "PULSE_RUNTIME_PATH" : "XDG_RUNTIME_DIR",
                    machine.folder.path());
        {
            const SilentServer server(place);
            CHECK(audio::standingServer() == Text("pulse"));
        }
    }
}

TEST_CASE("A socket that nobody listens at any more is no server")
{
    Machine machine;
    std::optional<SilentServer> server(machine.silence.pulseSocket());
    CHECK(audio::standingServer() == Text("pulse"));
    const Text kept = machine.folder / "kept";
    std::filesystem::create_hard_link(machine.silence.pulseSocket(), kept);
    server.reset();
    machine.set("PULSE_SERVER", kept);
    CHECK(std::filesystem::is_socket(kept));
    CHECK(audio::standingServer() == Text("alsa"));
}

TEST_CASE("Without a server, what JACK's clients share is left alone")
{
    Machine machine;
    const SharedMemoryWatch watch;
    audio::CubebClient client;
    const auto stream = anyStream();
    client.open(stream);
    CHECK(stream->hasFailed());
    CHECK(!watch.saw());
}

TEST_CASE("A server that stands and refuses leads to no other that does not stand")
{
    Machine machine;
    SilentServer server(machine.silence.pulseSocket());
    CHECK(audio::standingServer() == Text("pulse")); // whose call waits there, too
    std::thread refusing([&] {
        for (int guest = 0; guest < 2; ++guest)
            server.await();
        server.refuse();
    });
    const SharedMemoryWatch watch;
    audio::CubebClient client;
    const auto stream = anyStream();
    client.open(stream);
    refusing.join();
    CHECK(stream->hasFailed());
    CHECK(!watch.saw());
}

TEST_CASE("A stream on a server that stands opens")
{
    const SoundServer server;
    const SharedMemoryWatch watch;
    CHECK(audio::standingServer() == Text("pulse"));
    audio::CubebClient client;
    const auto stream = anyStream();
    client.open(stream);
    CHECK(!stream->hasFailed());
    CHECK(!watch.saw());
    client.close(stream);
}
