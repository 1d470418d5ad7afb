// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/mpris_remote.h"

#include "support/waiting.h"
#include "tests/support/private_bus.h"
#include "toolkit/toolkit.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QDialog>
#include <QTimer>
#include <algorithm>
#include <doctest/doctest.h>
#include <limits>

namespace
{

constexpr const char* service = "org.mpris.MediaPlayer2.velmora";
constexpr const char* path = "/org/mpris/MediaPlayer2";
constexpr const char* root = "org.mpris.MediaPlayer2";
constexpr const char* player = "org.mpris.MediaPlayer2.Player";
constexpr const char* properties = "org.freedesktop.DBus.Properties";

MediaRemote::Shown aSong()
{
    return {.status = MediaRemote::Status::playing,
            .track = 7,
            .path = "/music/K\xC3\xB6ln \xFF 1.mp3",
            .title = "A song",
            .artist = "Somebody",
            .album = "A record",
            .genre = "Jazz",
            .length = 61234,
            .volume = 42,
            .canGoNext = true,
            .canGoPrevious = false,
            .canSeek = true};
}

struct Panel {
    PrivateBus bus;
    bool runs = bus.runs();
    Toolkit toolkit{Toolkit::Timers::byHand};
    std::unique_ptr<MediaRemote> remote = desktop::makeMprisRemote(bus.address, toolkit.post());
    QDBusConnection client = QDBusConnection::connectToBus(QString::fromStdString(bus.address), "panel");
    MediaRemote::Shown now = aSong();
    std::int32_t place = 5000;
    Text heard;

    Panel()
    {
        REQUIRE(runs);
        remote->Asked.calls([this] { remote->show(now, place); });
        for (auto [name, event] : {std::pair{"Play", &MediaRemote::Play},
                                   {"Pause", &MediaRemote::Pause},
                                   {"PlayPause", &MediaRemote::PlayPause},
                                   {"Stop", &MediaRemote::Stop},
                                   {"Next", &MediaRemote::Next},
                                   {"Previous", &MediaRemote::Previous},
                                   {"Raise", &MediaRemote::Raise},
                                   {"Quit", &MediaRemote::Quit}})
            ((*remote).*event).calls([this, name = Text(name)] { heard += name + "\n"; });
        remote->Seek.calls([this](std::int64_t by) { heard += "Seek " + std::to_string(by) + "\n"; });
        remote->SetPosition.calls([this](std::uint64_t track, std::int64_t at) {
            heard += "SetPosition " + std::to_string(track) + " " + std::to_string(at) + "\n";
        });
        remote->SetVolume.calls(
            [this](std::int32_t percent) { heard += "Volume " + std::to_string(percent) + "\n"; });
        waitUntilItTells();
    }
    ~Panel()
    {
        remote.reset();
        QDBusConnection::disconnectFromBus("panel");
    }

    // It is found on the bus a moment before it begins to tell of changes.
    void waitUntilItTells()
    {
        QTimer heardOf;
        REQUIRE(client.connect({}, path, properties, "PropertiesChanged", &heardOf, SLOT(start())));
        const auto ping =
            QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus.Peer", "Ping");
        REQUIRE_FALSE(failed(client.call(ping))); // the bus knows who listens
        REQUIRE(waitFor([&] {
            remote->show(now, place);
            return heardOf.isActive();
        }));
    }

    static bool failed(const QDBusMessage& answer) { return answer.type() != QDBusMessage::ReplyMessage; }

    QDBusMessage call(const char* interface, const char* member, const QVariantList& arguments)
    {
        auto message = QDBusMessage::createMethodCall(service, path, interface, member);
        message.setArguments(arguments);
        const QDBusPendingCall answer = client.asyncCall(message);
        REQUIRE(waitFor([&] { return answer.isFinished(); }));
        return answer.reply();
    }

    QVariant get(const char* interface, const char* name)
    {
        const QDBusMessage answer = call(properties, "Get", {interface, name});
        REQUIRE_FALSE(failed(answer));
        return answer.arguments()[0].value<QDBusVariant>().variant();
    }

    Text error(const char* interface, const char* member, const QVariantList& arguments)
    {
        return call(interface, member, arguments).errorName().toStdString();
    }

    QDBusMessage set(const char* interface, const char* name, const QVariant& value)
    {
        return call(properties, "Set", {interface, name, QVariant::fromValue(QDBusVariant(value))});
    }

    Text told() { return std::exchange(heard, {}); }
};

Text signatureOf(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return value.value<QDBusArgument>().currentSignature().toStdString();
    switch (value.typeId()) {
    case QMetaType::Bool:
        return "b";
    case QMetaType::Double:
        return "d";
    case QMetaType::LongLong:
        return "x";
    case QMetaType::QStringList:
        return "as";
    default:
        return value.typeId() == QMetaType::QString ? "s" : value.typeName();
    }
}

QVariantMap mapIn(const QVariant& value) { return qdbus_cast<QVariantMap>(value.value<QDBusArgument>()); }

Text failure(const char* name) { return Text("org.freedesktop.DBus.Error.") + name; }

}

TEST_CASE("Every property of the standard has its type and its value, alone and among all")
{
    Panel panel;
    struct Row {
        const char* interface;
        const char* name;
        Text signature;
        QVariant value; // invalid: not compared here
    };
    const Row rows[] = {
        {root, "CanQuit", "b", true},
        {root, "CanRaise", "b", true},
        {root, "HasTrackList", "b", false},
        {root, "Identity", "s", "Velmora"},
        {root, "DesktopEntry", "s", "org.velmora.Velmora"},
        {root, "SupportedUriSchemes", "as", QStringList()},
        {root, "SupportedMimeTypes", "as", QStringList()},
        {player, "PlaybackStatus", "s", "Playing"},
        {player, "Rate", "d", 1.0},
        {player, "Metadata", "a{sv}", {}},
        {player, "Volume", "d", 0.42},
        {player, "Position", "x", 5000000LL},
        {player, "MinimumRate", "d", 1.0},
        {player, "MaximumRate", "d", 1.0},
        {player, "CanGoNext", "b", true},
        {player, "CanGoPrevious", "b", false},
        {player, "CanPlay", "b", true},
        {player, "CanPause", "b", true},
        {player, "CanSeek", "b", true},
        {player, "CanControl", "b", true},
    };
    for (const auto& row : rows) {
        CAPTURE(row.name);
        const QVariant value = panel.get(row.interface, row.name);
        CHECK(signatureOf(value) == row.signature);
        if (row.value.isValid())
            CHECK(value == row.value);
        const QVariantMap all = mapIn(panel.call(properties, "GetAll", {row.interface}).arguments().value(0));
        CHECK(all.contains(row.name));
        CHECK(all.size() == std::count_if(std::begin(rows), std::end(rows), [&](auto& other) {
                  return Text(other.interface) == row.interface;
              }));
    }
}

TEST_CASE("The optional properties that the player has no use for are not there")
{
    Panel panel;
    for (const char* name : {"LoopStatus", "Shuffle"})
        CHECK(panel.error(properties, "Get", {player, name}) == failure("UnknownProperty"));
    for (const char* name : {"Fullscreen", "CanSetFullscreen"})
        CHECK(panel.error(properties, "Get", {root, name}) == failure("UnknownProperty"));
}

TEST_CASE("The metadata names the track and its file byte for byte, and tells what is known of it")
{
    Panel panel;
    const QVariantMap map = mapIn(panel.get(player, "Metadata"));
    CHECK(map["mpris:trackid"].value<QDBusObjectPath>().path() == "/velmora/track/7");
    CHECK(map["mpris:length"] == QVariant(61234000LL));
    CHECK(map["xesam:url"].toString() == "file:///music/K%C3%B6ln%20%FF%201.mp3");
    CHECK(map["xesam:title"].toString() == "A song");
    CHECK(map["xesam:album"].toString() == "A record");
    CHECK(map["xesam:artist"].toStringList() == QStringList{"Somebody"});
    CHECK(map["xesam:genre"].toStringList() == QStringList{"Jazz"});

    panel.now = {.track = 8, .path = "/b.wav", .title = "b.wav"};
    CHECK(mapIn(panel.get(player, "Metadata")).keys() ==
          QStringList{"mpris:trackid", "xesam:title", "xesam:url"});

    panel.now = {};
    const QVariantMap none = mapIn(panel.get(player, "Metadata"));
    CHECK(none.size() == 1);
    CHECK(none["mpris:trackid"].value<QDBusObjectPath>().path() ==
          "/org/mpris/MediaPlayer2/TrackList/NoTrack");
}

TEST_CASE("Without a file nothing can be played or paused")
{
    Panel panel;
    panel.now = {};
    for (const char* name : {"CanPlay", "CanPause", "CanSeek", "CanGoNext", "CanGoPrevious"}) {
        CAPTURE(name);
        CHECK_FALSE(panel.get(player, name).toBool());
    }
    CHECK(panel.get(player, "PlaybackStatus").toString() == "Stopped");
    CHECK(panel.error(player, "PlayPause", {}) == failure("Failed"));
    CHECK(panel.told().empty());
}

TEST_CASE("Every method is answered before it is carried out")
{
    Panel panel;
    struct Row {
        const char* interface;
        const char* name;
        QVariantList arguments;
        Text told;
    };
    const auto track = QVariant::fromValue(QDBusObjectPath("/velmora/track/7"));
    const Row rows[] = {
        {root, "Raise", {}, "Raise\n"},
        {root, "Quit", {}, "Quit\n"},
        {player, "Next", {}, "Next\n"},
        {player, "Previous", {}, "Previous\n"},
        {player, "Pause", {}, "Pause\n"},
        {player, "PlayPause", {}, "PlayPause\n"},
        {player, "Stop", {}, "Stop\n"},
        {player, "Play", {}, "Play\n"},
        {player, "Seek", {-2500000LL}, "Seek -2500\n"},
        {player, "SetPosition", {track, 12345678LL}, "SetPosition 7 12345\n"},
        {"", "Play", {}, "Play\n"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.name);
        CHECK_FALSE(Panel::failed(panel.call(row.interface, row.name, row.arguments)));
        CHECK(waitFor([&] { return panel.heard == row.told; }));
        panel.told();
    }
}

TEST_CASE("A track id that is none moves nothing, and neither does a place before the start")
{
    Panel panel;
    for (const char* id :
         {"/velmora/track/x", "/velmora/track/07", "/other/7", "/org/mpris/MediaPlayer2/TrackList/NoTrack"}) {
        panel.call(player, "SetPosition", {QVariant::fromValue(QDBusObjectPath(id)), 1000000LL});
        CHECK(waitFor([&] { return panel.heard == "SetPosition 0 1000\n"; }));
        panel.told();
    }
    panel.call(player, "SetPosition", {QVariant::fromValue(QDBusObjectPath("/velmora/track/7")), -1LL});
    panel.call(player, "Stop", {});
    CHECK(waitFor([&] { return panel.heard == "Stop\n"; }));
}

TEST_CASE("The volume is held to its range, and the one speed stays")
{
    Panel panel;
    struct Row {
        double volume;
        Text told;
    };
    const Row rows[] = {{0.42, "Volume 42\n"},
                        {0, "Volume 0\n"},
                        {-3, "Volume 0\n"},
                        {1.7, "Volume 100\n"},
                        {std::numeric_limits<double>::quiet_NaN(), "Volume 0\n"},
                        {std::numeric_limits<double>::infinity(), "Volume 100\n"}};
    for (const auto& row : rows) {
        CAPTURE(row.volume);
        CHECK_FALSE(Panel::failed(panel.set(player, "Volume", row.volume)));
        CHECK(waitFor([&] { return panel.heard == row.told; }));
        panel.told();
    }
    CHECK_FALSE(Panel::failed(panel.set(player, "Rate", 2.0)));
    CHECK_FALSE(Panel::failed(panel.set(player, "Rate", 0.0)));
    CHECK(waitFor([&] { return panel.heard == "Pause\n"; }));
    CHECK(panel.get(player, "Rate") == QVariant(1.0));
}

TEST_CASE("What is not there is refused by the standard errors")
{
    Panel panel;
    const QVariant one = QVariant::fromValue(QDBusVariant(1.0));
    const QVariant text = QVariant::fromValue(QDBusVariant(QString("loud")));
    struct Row {
        const char* interface;
        const char* member;
        QVariantList arguments;
        const char* error;
    };
    const Row rows[] = {
        {properties, "Get", {"org.example.None", "Volume"}, "UnknownInterface"},
        {properties, "GetAll", {"org.example.None"}, "UnknownInterface"},
        {properties, "Set", {"org.example.None", "Volume", one}, "UnknownInterface"},
        {properties, "GetAll", {"org.mpris.MediaPlayer2.TrackList"}, "UnknownInterface"},
        {properties, "Get", {player, "Colour"}, "UnknownProperty"},
        {properties, "Get", {root, "Volume"}, "UnknownProperty"},
        {properties, "Set", {player, "Colour", one}, "UnknownProperty"},
        {properties, "Set", {player, "Position", one}, "PropertyReadOnly"},
        {properties, "Set", {root, "Identity", text}, "PropertyReadOnly"},
        {properties, "Set", {player, "Volume", text}, "InvalidArgs"},
        {properties, "Set", {player, "Volume"}, "InvalidArgs"},
        {properties, "Get", {}, "InvalidArgs"},
        {properties, "GetAll", {}, "InvalidArgs"},
        {properties, "Take", {player, "Volume"}, "UnknownMethod"},
        {"org.example.None", "Play", {}, "UnknownInterface"},
        {player, "Fly", {}, "UnknownMethod"},
        {player, "OpenUri", {"file:///a.mp3"}, "UnknownMethod"},
        {player, "Raise", {}, "UnknownMethod"},
        {player, "Seek", {}, "InvalidArgs"},
        {player, "Seek", {"far"}, "InvalidArgs"},
        {player, "Play", {1}, "InvalidArgs"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.interface);
        CAPTURE(row.member);
        CHECK(panel.error(row.interface, row.member, row.arguments) == failure(row.error));
    }
    CHECK(panel.told().empty());
}

TEST_CASE(
    "Behind a box the player keeps still and can be raised and ended; the last volume is set afterwards")
{
    Panel panel;
    QDialog box;
    box.setModal(true);
    box.show();
    for (const char* name : {"Play", "Pause", "PlayPause", "Stop", "Next", "Previous"})
        panel.call(player, name, {});
    for (const double volume : {0.7, 0.1})
        panel.set(player, "Volume", volume);
    panel.set(player, "Rate", 0.0);
    panel.call(root, "Raise", {});
    panel.call(root, "Quit", {});
    CHECK(waitFor([&] { return panel.heard == "Raise\nQuit\n"; }));
    panel.remote->show(panel.now, panel.place);
    QCoreApplication::processEvents();
    CHECK(panel.heard == "Raise\nQuit\n");
    box.hide();
    for (int i = 0; i < 3; ++i)
        panel.remote->show(panel.now, panel.place);
    CHECK(waitFor([&] { return panel.heard == "Raise\nQuit\nVolume 10\n"; }));
    panel.call(player, "Play", {});
    CHECK(waitFor([&] { return panel.heard == "Raise\nQuit\nVolume 10\nPlay\n"; }));
}

TEST_CASE("What changed is told once, and nothing else; a jump is told as one")
{
    Panel panel;
    Spawned monitor({"dbus-monitor", "--address", panel.bus.address, "--profile",
                     "type='signal',path='/org/mpris/MediaPlayer2'"});
    const auto lineWith = [&](const Text& word) {
        for (Text line = monitor.line(); !line.empty(); line = monitor.line())
            if (line.find(word) != Text::npos)
                return line;
        return Text();
    };
    REQUIRE(lineWith("NameLost") != ""); // it watches from now on
    panel.remote->show(panel.now, panel.place += 40);
    panel.remote->jumped(9000);
    CHECK(lineWith("sig").find("Seeked") != Text::npos); // the place alone is no change
    panel.now.status = MediaRemote::Status::paused;
    panel.remote->show(panel.now, panel.place);
    panel.remote->show(panel.now, panel.place);
    CHECK(lineWith("sig").find("PropertiesChanged") != Text::npos);
    panel.remote->jumped(9000);
    CHECK(lineWith("sig").find("Seeked") != Text::npos);
}

TEST_CASE("The interfaces can be read on the bus")
{
    Panel panel;
    const Text xml = panel.call("org.freedesktop.DBus.Introspectable", "Introspect", {})
                         .arguments()
                         .value(0)
                         .toString()
                         .toStdString();
    for (const char* word : {"\"SetPosition\"", "\"Seeked\"", "\"CanSetFullscreen\""}) {
        CAPTURE(word);
        CHECK((xml.find(word) != Text::npos) == (Text(word) != "\"CanSetFullscreen\""));
    }
}
