// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/sound/jack_gate.h"

#include "modules/sound/cubeb_client.h"
#include "tests/support/no_sound.h"
#include "tests/support/silent_server.h"
#include "tests/support/sound_server.h"

#include <doctest/doctest.h>
#include <fcntl.h>
#include <sys/inotify.h>

#include <thread>

namespace
{

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

TEST_CASE("A JACK server stands where one listens, for this user or for all")
{
    const NoSound silence;
    const Text name = "velmora-test-" + std::to_string(getpid());
    setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
    const Text ofAll = "/dev/shm/jack_" + name + "_0";
    const Text ofUser = "/dev/shm/jack_" + name + '_' + std::to_string(getuid()) + "_0";
    for (const Text& socket : {ofUser, ofAll}) {
        CAPTURE(socket);
        CHECK(!audio::jackStands());
        const SilentServer server(socket);
        CHECK(audio::jackStands());
    }
    CHECK(!audio::jackStands());
}

TEST_CASE("A JACK server that nobody listens for any more, or that no socket could name, does not stand")
{
    const NoSound silence;
    const Text name = "velmora-test-" + std::to_string(getpid());
    setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
    const Text socket = "/dev/shm/jack_" + name + "_0";
    {
        const SilentServer server(socket + "_kept");
        std::filesystem::create_hard_link(socket + "_kept", socket);
        CHECK(audio::jackStands());
    }
    CHECK(std::filesystem::is_socket(socket));
    CHECK(!audio::jackStands());
    std::filesystem::remove(socket);
    setenv("JACK_DEFAULT_SERVER", Text(200, 'x').c_str(), 1);
    CHECK(!audio::jackStands());
}

TEST_CASE("Without a server, what JACK's clients share is left alone")
{
    const NoSound silence;
    const SharedMemoryWatch watch;
    audio::CubebClient client;
    const auto stream = anyStream();
    client.open(stream);
    CHECK(stream->hasFailed());
    CHECK(!watch.saw());
}

TEST_CASE("A server that stands and refuses leads to no other that does not stand")
{
    const NoSound silence;
    SilentServer server(silence.pulseSocket());
    bool came = false;
    std::thread refusing([&] {
        came = server.await();
        server.refuse();
    });
    const SharedMemoryWatch watch;
    audio::CubebClient client;
    const auto stream = anyStream();
    client.open(stream);
    refusing.join();
    CHECK(came);
    CHECK(stream->hasFailed());
    CHECK(!watch.saw());
}

TEST_CASE("A stream opens on a server that stands, however it is named")
{
    const SoundServer server;
    const TemporaryFolder folder;
    const Text config = folder / "client.conf";
    putFile(config, "default-server = unix:" + server.socket() + "\n");
    const Text several = "unix:" + (folder / "nobody") + " unix:" + server.socket();
    const struct {
        const char* variable;
        Text value;
    } ways[] = {{"PULSE_SERVER", "unix:" + server.socket()},
                {"PULSE_SERVER", several},
                {"PULSE_CLIENTCONFIG", config}};
    for (const auto& way : ways) {
        CAPTURE(way.value);
        unsetenv("PULSE_SERVER");
        setenv(way.variable, way.value.c_str(), 1);
        const SharedMemoryWatch watch;
        audio::CubebClient client;
        const auto stream = anyStream();
        client.open(stream);
        CHECK(!stream->hasFailed());
        CHECK(!watch.saw());
        client.close(stream);
    }
    unsetenv("PULSE_CLIENTCONFIG");
}
