// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/mpris_interface.h"

#include "desktop/appearance.h"
#include "toolkit/qt_bridge.h"

#include <QDBusObjectPath>
#include <QStringList>

namespace desktop
{

namespace
{

constexpr const char* noTrack = "/org/mpris/MediaPlayer2/TrackList/NoTrack";
constexpr const char* tracks = "/velmora/track/";

QString statusText(MediaRemote::Status status)
{
    constexpr const char* texts[] = {"Stopped", "Playing", "Paused"};
    return texts[static_cast<int>(status)];
}

// The path's own bytes, also where they are no valid text.
QString addressOf(const Text& path)
{
    const auto bytes = QByteArray::fromRawData(path.data(), static_cast<qsizetype>(path.size()));
    return QString::fromLatin1("file://" + bytes.toPercentEncoding("/"));
}

void addTexts(QVariantMap& map, const QString& key, const Text& text)
{
    if (!text.empty())
        map[key] = QStringList{shown(text)};
}

QVariantMap metadata(const MediaRemote::Shown& now)
{
    if (now.path.empty())
        return {{"mpris:trackid", QVariant::fromValue(QDBusObjectPath(noTrack))}};
    QVariantMap map{{"mpris:trackid", QVariant::fromValue(QDBusObjectPath(mpris::trackName(now.track)))},
                    {"xesam:url", addressOf(now.path)},
                    {"xesam:title", shown(now.title)}};
    if (now.length > 0)
        map["mpris:length"] = static_cast<qlonglong>(mpris::microseconds(now.length));
    if (!now.album.empty())
        map["xesam:album"] = shown(now.album);
    addTexts(map, "xesam:artist", now.artist);
    addTexts(map, "xesam:genre", now.genre);
    return map;
}

}

namespace mpris
{

const char* const introspection = R"(
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
    <method name="Seek"><arg name="Offset" type="x" direction="in"/></method>
    <method name="SetPosition">
      <arg name="TrackId" type="o" direction="in"/><arg name="Position" type="x" direction="in"/>
    </method>
    <signal name="Seeked"><arg name="Position" type="x"/></signal>
    <property name="PlaybackStatus" type="s" access="read"/><property name="Metadata" type="a{sv}" access="read"/>
    <property name="Rate" type="d" access="readwrite"/><property name="MinimumRate" type="d" access="read"/>
    <property name="MaximumRate" type="d" access="read"/><property name="Volume" type="d" access="readwrite"/>
    <property name="Position" type="x" access="read">
      <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>
    </property>
    <property name="CanGoNext" type="b" access="read"/><property name="CanGoPrevious" type="b" access="read"/>
    <property name="CanPlay" type="b" access="read"/><property name="CanPause" type="b" access="read"/>
    <property name="CanSeek" type="b" access="read"/>
    <property name="CanControl" type="b" access="read">
      <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>
    </property>
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

QVariantMap changingProperties(const MediaRemote::Shown& now)
{
    const bool hasFile = !now.path.empty();
    return {{"PlaybackStatus", statusText(now.status)},
            {"Metadata", metadata(now)},
            {"Volume", now.volume / 100.0},
            {"CanGoNext", now.canGoNext},
            {"CanGoPrevious", now.canGoPrevious},
            {"CanPlay", hasFile},
            {"CanPause", hasFile},
            {"CanSeek", now.canSeek}};
}

QVariantMap playerProperties(const MediaRemote::Shown& now, std::int32_t place)
{
    QVariantMap map = changingProperties(now);
    map.insert({{"Rate", 1.0},
                {"MinimumRate", 1.0},
                {"MaximumRate", 1.0},
                {"Position", static_cast<qlonglong>(microseconds(place))},
                {"CanControl", true}});
    return map;
}

QString trackName(std::uint64_t track) { return tracks + QString::number(track); }

std::uint64_t trackOf(const QString& name)
{
    const std::uint64_t track = name.section('/', -1).toULongLong();
    return trackName(track) == name ? track : 0;
}

}

}
