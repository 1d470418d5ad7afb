// SPDX-License-Identifier: GPL-3.0-or-later
// What stands on the session bus of a player, by MPRIS 2.2 (freedesktop.org): the two interfaces and their
// properties.
#pragma once

#include "platform/media_remote.h"

#include <QString>
#include <QVariantMap>

namespace desktop::mpris
{
inline constexpr const char* objectPath = "/org/mpris/MediaPlayer2";
inline constexpr const char* root = "org.mpris.MediaPlayer2";
inline constexpr const char* player = "org.mpris.MediaPlayer2.Player";

extern const char* const introspection;

QVariantMap rootProperties();

// Those whose change is told.
QVariantMap changingProperties(const MediaRemote::Shown& now);

QVariantMap playerProperties(const MediaRemote::Shown& now, std::int32_t place);

// The name of a track on the bus, and back; 0 for what is none.
QString trackName(std::uint64_t track);
std::uint64_t trackOf(const QString& name);

inline std::int64_t microseconds(std::int32_t milliseconds) { return std::int64_t{milliseconds} * 1000; }
}
