#include "desktop/mpris_remote.h"

#include "desktop/appearance.h"
#include "platform/post.h"
#include "toolkit/qt_bridge.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QUrl>
#include <QVariantMap>
#include <atomic>
#include <optional>
#include <thread>

namespace
{

constexpr const char* connectionName = "velmora-remote";
constexpr const char* serviceName = "org.mpris.MediaPlayer2.velmora";
constexpr const char* objectPath = "/org/mpris/MediaPlayer2";
constexpr const char* rootInterface = "org.mpris.MediaPlayer2";
constexpr const char* playerInterface = "org.mpris.MediaPlayer2.Player";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

constexpr const char* introspection = R"(
  <interface name="org.mpris.MediaPlayer2">
    <method name="Raise"/><method name="Quit"/>
    <property name="CanQuit" type="b" access="read"/><property name="CanRaise" type="b" access="read"/>
    <property name="HasTrackList" type="b" access="read"/><property name="Identity" type="s" access="read"/>
    <property name="DesktopEntry" type="s" access="read"/>
    <property name="SupportedUriSchemes" type="as" access="read"/>
    <property name="SupportedMimeTypes" type="as" access="read"/>
  </interface>
  <interface name="org.mpris.MediaPlayer2.Player">
    <method name="Next"/><method name="Previous"/><method name="Pause"/><method name="PlayPause"/>
    <method name="Stop"/><method name="Play"/>
    <property name="PlaybackStatus" type="s" access="read"/><property name="Metadata" type="a{sv}" access="read"/>
    <property name="Rate" type="d" access="read"/><property name="MinimumRate" type="d" access="read"/>
    <property name="MaximumRate" type="d" access="read"/><property name="Volume" type="d" access="read"/>
    <property name="Position" type="x" access="read"/>
    <property name="CanGoNext" type="b" access="read"/><property name="CanGoPrevious" type="b" access="read"/>
    <property name="CanPlay" type="b" access="read"/><property name="CanPause" type="b" access="read"/>
    <property name="CanSeek" type="b" access="read"/><property name="CanControl" type="b" access="read"/>
  </interface>
)";

QVariantMap rootProperties()
{
    return {{"CanQuit", true},
            {"CanRaise", true},
            {"HasTrackList", false},
            {"Identity", "Velmora"},
            {"DesktopEntry", applicationId},
            {"SupportedUriSchemes", QStringList()},
            {"SupportedMimeTypes", QStringList()}};
}

QString statusText(MediaRemote::Status status)
{
    constexpr const char* texts[] = {"Stopped", "Playing", "Paused"};
    return texts[static_cast<int>(status)];
}

void addText(QVariantMap& map, const QString& key, const Text& text)
{
    if (!text.empty())
        map[key] = shown(text);
}

QVariantMap metadata(const MediaRemote::Shown& now)
{
    if (now.path.empty())
        return {{"mpris:trackid",
                 QVariant::fromValue(QDBusObjectPath("/org/mpris/MediaPlayer2/TrackList/NoTrack"))}};
    QVariantMap map{{"mpris:trackid", QVariant::fromValue(QDBusObjectPath("/velmora/current"))},
                    {"mpris:length", static_cast<qlonglong>(now.length) * 1000},
                    {"xesam:url", QUrl::fromLocalFile(shown(now.path)).toString(QUrl::FullyEncoded)}};
    addText(map, "xesam:title", now.title);
    addText(map, "xesam:album", now.album);
    if (!now.artist.empty())
        map["xesam:artist"] = QStringList{shown(now.artist)};
    return map;
}

QVariantMap changingProperties(const MediaRemote::Shown& now)
{
    return {{"PlaybackStatus", statusText(now.status)}, {"Metadata", metadata(now)}};
}

QVariantMap playerProperties(const MediaRemote::Shown& now)
{
    QVariantMap map = changingProperties(now);
    map.insert({{"Rate", 1.0},
                {"MinimumRate", 1.0},
                {"MaximumRate", 1.0},
                {"Volume", 1.0},
                {"Position", static_cast<qlonglong>(0)},
                {"CanGoNext", true},
                {"CanGoPrevious", true},
                {"CanPlay", true},
                {"CanPause", true},
                {"CanSeek", false},
                {"CanControl", true}});
    return map;
}

class MprisRemote final : public MediaRemote, private QDBusVirtualObject
{
public:
    MprisRemote(const Text& address, Post& post) : address_(shown(address)), post_(post) {}

    ~MprisRemote() override
    {
        if (meeting_.joinable())
            meeting_.join();
        QDBusConnection::disconnectFromBus(connectionName);
    }

    void show(const Shown& now) override
    {
        if (address_.isEmpty())
            return;
        if (!meeting_.joinable())
            meeting_ = std::thread([this] { meetBus(); });
        if (!met_ || now_ == now)
            return;
        now_ = now;
        tellChange();
    }

private:
    struct Command {
        const char* name;
        Event<> MediaRemote::*event;
    };
    // clang-format off
    static constexpr Command commands[] = {
        {"Play", &MediaRemote::Play}, {"Pause",    &MediaRemote::Pause},    {"PlayPause", &MediaRemote::PlayPause},
        {"Stop", &MediaRemote::Stop}, {"Next",     &MediaRemote::Next},     {"Previous",  &MediaRemote::Previous},
        {"Quit", &MediaRemote::Quit}, {"Raise",    &MediaRemote::Raise},
    };
    // clang-format on

    // A second copy of the program gets a name of its own.
    void meetBus()
    {
        auto bus = QDBusConnection::connectToBus(address_, connectionName);
        bus.registerVirtualObject(objectPath, this);
        if (!bus.registerService(serviceName))
            bus.registerService(QString("%1.instance%2").arg(serviceName).arg(getpid()));
        met_ = bus.isConnected();
    }

    void tellChange()
    {
        auto signal = QDBusMessage::createSignal(objectPath, propertiesInterface, "PropertiesChanged");
        signal << playerInterface << changingProperties(*now_) << QStringList();
        QDBusConnection(connectionName).send(signal);
    }

    QString introspect(const QString& path) const override
    {
        return path == objectPath ? introspection : QString();
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        if (message.interface() == propertiesInterface)
            return answerProperties(message, bus);
        for (const auto& command : commands) {
            if (message.member() != command.name)
                continue;
            bus.send(message.createReply());
            post_.post([this, command] { carryOut(command); });
            return true;
        }
        return false;
    }

    // A box or a dialog has the program to itself, as it has against the mouse: what began behind a file
    // dialog would hold up its answer.
    void carryOut(const Command& command)
    {
        if (!QApplication::activeModalWidget())
            (this->*command.event).raise();
    }

    bool answerProperties(const QDBusMessage& message, const QDBusConnection& bus) const
    {
        const QString interface = message.arguments().value(0).toString();
        const QVariantMap all =
            interface == rootInterface ? rootProperties() : playerProperties(now_.value_or(Shown()));
        const QString name = message.arguments().value(1).toString();
        if (message.member() == "GetAll")
            return bus.send(message.createReply(QVariant(all)));
        if (message.member() == "Get" && all.contains(name))
            return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(all[name]))));
        return bus.send(message.createErrorReply(QDBusError::UnknownProperty, name));
    }

    QString address_;
    Post& post_;
    std::thread meeting_;
    std::atomic<bool> met_ = false;
    std::optional<Shown> now_;
};

}

std::unique_ptr<MediaRemote> makeMprisRemote(const Text& busAddress, Post& post)
{
    return std::make_unique<MprisRemote>(busAddress, post);
}
