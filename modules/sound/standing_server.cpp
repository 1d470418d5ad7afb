// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/sound/standing_server.h"

#include "platform/environment_variable.h"

#include <cerrno>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace audio
{

namespace
{

// Someone listens there. A server that is too busy to take the call listens, too.
bool isListenedTo(const Text& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    path.copy(address.sun_path, path.size());
    const int caller = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (caller < 0)
        return false;
    const bool answers = connect(caller, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    const bool isBusy = !answers && errno == EAGAIN;
    close(caller);
    return answers || isBusy;
}

bool pulseStands()
{
    constexpr std::string_view ofSocket = "unix:";
    const Text named = environmentVariable("PULSE_SERVER");
    if (named.starts_with(ofSocket))
        return isListenedTo(named.substr(ofSocket.size()));
    if (!named.empty())
        return named.front() != '/' || isListenedTo(named); // another machine's is the library's to find
    return isListenedTo(environmentVariable("PULSE_RUNTIME_PATH") + "/native") ||
           isListenedTo(environmentVariable("XDG_RUNTIME_DIR") + "/pulse/native") ||
           isListenedTo("/run/pulse/native");
}

bool sndioStands()
{
    return isListenedTo("/tmp/sndio-" + std::to_string(getuid()) + "/sock0") ||
           isListenedTo("/tmp/sndio/sock0");
}

}

bool jackStands()
{
    const Text named = environmentVariable("JACK_DEFAULT_SERVER");
    const Text server = "/dev/shm/jack_" + (named.empty() ? "default" : named) + '_';
    return isListenedTo(server + std::to_string(getuid()) + "_0") || isListenedTo(server + '0');
}

const char* standingServer()
{
    if (pulseStands())
        return "pulse";
    if (jackStands())
        return "jack";
    return sndioStands() ? "sndio" : "alsa";
}

}
