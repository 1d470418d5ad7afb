// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a neighbour on the bus asks of the player, and whatever the song's tags put on the bus: a refused
// call does nothing, a command has values that the player knows, and the bus keeps the connection.
//
// The calls go the library's short way, from one connection to itself.
#include "desktop/mpris_remote.h"
#include "tests/fuzz/window.h"
#include "tests/support/private_bus.h"
#include "toolkit/toolkit.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <thread>

namespace
{

constexpr const char* connection = "velmora-remote";
constexpr const char* path = "/org/mpris/MediaPlayer2";

// clang-format off
constexpr const char* interfaces[] = {
    "", "org.mpris.MediaPlayer2", "org.mpris.MediaPlayer2.Player", "org.freedesktop.DBus.Properties",
    "org.freedesktop.DBus.Introspectable", "org.freedesktop.DBus.Peer", "org.example.Other",
};
struct Member {
    const char* name;
    const char* signature;
};
constexpr Member members[] = {
    {"Play", ""}, {"Pause", ""}, {"PlayPause", ""}, {"Stop", ""}, {"Next", ""}, {"Previous", ""}, {"Raise", ""},
    {"Seek", "x"}, {"SetPosition", "ox"}, {"OpenUri", "s"}, {"Get", "ip"}, {"GetAll", "i"}, {"Set", "ipv"},
    {"Introspect", ""}, {"Ping", ""}, {"Other", "v"},
};
constexpr const char* properties[] = {
    "Volume", "Rate", "Position", "Metadata", "PlaybackStatus", "Identity", "CanQuit", "LoopStatus",
};
// clang-format on

template <typename Word, std::size_t count>
const Word& oneOf(const Word (&words)[count], FuzzedDataProvider& input)
{
    return words[input.ConsumeIntegralInRange<std::size_t>(0, count - 1)];
}

double number(FuzzedDataProvider& input)
{
    const auto bits = input.ConsumeIntegral<std::uint64_t>();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QString text(FuzzedDataProvider& input)
{
    return QString::fromStdString(input.ConsumeRandomLengthString(64)).remove(QChar(0));
}

QVariant track(FuzzedDataProvider& input)
{
    const auto number = QString::number(input.ConsumeIntegral<std::uint64_t>());
    const QString names[] = {"/velmora/track/" + number, "/velmora/track/0" + number, "/other/" + number,
                             "/org/mpris/MediaPlayer2/TrackList/NoTrack"};
    return QVariant::fromValue(QDBusObjectPath(oneOf(names, input)));
}

constexpr char kinds[] = {'x', 'o', 'i', 'p', 'd', 'n', 'b', 'y', 's', 'v', 'm', 'l'};

// Of a kind that holds others, or of one that does not.
QVariant value(char kind, FuzzedDataProvider& input, int depth = 0)
{
    const auto inner = [&] {
        const char any = oneOf(kinds, input);
        return value(depth > 3 ? 'd' : any, input, depth + 1);
    };
    switch (kind) {
    case 'x':
        return static_cast<qlonglong>(input.ConsumeIntegral<std::int64_t>());
    case 'o':
        return track(input);
    case 'i':
        return QString(oneOf(interfaces, input));
    case 'p':
        return QString(oneOf(properties, input));
    case 'd':
        return number(input);
    case 'n':
        return input.ConsumeIntegral<int>();
    case 'b':
        return input.ConsumeBool();
    case 'y':
        return QByteArray::fromStdString(input.ConsumeRandomLengthString(16));
    case 's':
        return text(input);
    case 'm':
        return QVariantMap{{text(input), inner()}};
    case 'l':
        return QVariantList{inner(), inner()};
    default:
        return QVariant::fromValue(QDBusVariant(inner()));
    }
}

// As the member wants them, or any.
QVariantList arguments(const char* signature, FuzzedDataProvider& input)
{
    QVariantList values;
    if (input.ConsumeBool())
        for (const char* kind = signature; *kind != '\0'; ++kind)
            values.push_back(value(*kind, input));
    else
        for (int count = input.ConsumeIntegralInRange(0, 3); count > 0; --count)
            values.push_back(value(oneOf(kinds, input), input));
    return values;
}

MediaRemote::Shown song(FuzzedDataProvider& input)
{
    MediaRemote::Shown shown;
    shown.status = static_cast<MediaRemote::Status>(input.ConsumeIntegralInRange(0, 2));
    shown.track = input.ConsumeIntegral<std::uint64_t>();
    shown.length = input.ConsumeIntegral<std::int32_t>();
    for (Text* part : {&shown.path, &shown.title, &shown.artist, &shown.album, &shown.genre})
        *part = input.ConsumeRandomLengthString(32);
    return shown;
}

class Neighbour
{
public:
    Neighbour()
    {
        remote_->Seek.calls([this](std::int64_t) { ++heard_; });
        remote_->SetPosition.calls([this](std::uint64_t, std::int64_t place) {
            ++heard_;
            require(place >= 0, "a place before the start");
        });
        remote_->SetVolume.calls([this](std::int32_t percent) {
            ++heard_;
            require(percent >= 0 && percent <= 100, "a volume that is none");
        });
        for (auto event :
             {&MediaRemote::Play, &MediaRemote::Pause, &MediaRemote::PlayPause, &MediaRemote::Stop,
              &MediaRemote::Next, &MediaRemote::Previous, &MediaRemote::Raise})
            ((*remote_).*event).calls([this] { ++heard_; });
        while (!isThere())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    void plays(const MediaRemote::Shown& shown, std::int32_t place)
    {
        remote_->show(shown, place);
        remote_->jumped(place);
        require(QDBusConnection(connection).isConnected(), "the bus has thrown it out");
    }

    void asks(const char* interface, const char* member, const QVariantList& arguments)
    {
        const int before = heard_;
        const bool isAnswered = call(interface, member, arguments).type() == QDBusMessage::ReplyMessage;
        QCoreApplication::processEvents();
        require(heard_ - before <= int{isAnswered}, "a refused call has done something");
    }

    // What is told next depends on what was told before: each input begins alike, and so takes the same edges
    // in every run.
    void rests()
    {
        remote_->show({}, 0);
        QCoreApplication::processEvents();
    }

private:
    QDBusMessage call(const char* interface, const char* member, const QVariantList& arguments)
    {
        const QDBusConnection bus(connection);
        auto message = QDBusMessage::createMethodCall(bus.baseService(), path, interface, member);
        message.setArguments(arguments);
        return bus.call(message);
    }

    bool isThere()
    {
        remote_->show({}, 0);
        return QDBusConnection(connection).isConnected() &&
               call(interfaces[3], "GetAll", {interfaces[1]}).type() == QDBusMessage::ReplyMessage;
    }

    QApplication& application_ = offScreen();
    PrivateBus bus_;
    bool runs_ = bus_.runs();
    Toolkit toolkit_{Toolkit::Timers::byHand};
    std::unique_ptr<MediaRemote> remote_ = desktop::makeMprisRemote(bus_.address, toolkit_.post());
    int heard_ = 0;
};

Neighbour& neighbour()
{
    static Neighbour only;
    return only;
}

}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    neighbour().rests();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider input(bytes, size);
    neighbour().plays(song(input), input.ConsumeIntegral<std::int32_t>());
    for (int calls = 0; calls < 8 && input.remaining_bytes() > 0; ++calls) {
        const char* interface = oneOf(interfaces, input);
        const Member& member = oneOf(members, input);
        neighbour().asks(interface, member.name, arguments(member.signature, input));
    }
    neighbour().rests();
    return 0;
}
