// SPDX-License-Identifier: GPL-3.0-or-later
// Between the program's bytes and twips and the window toolkit's strings and pixels. For platform sources
// alone.
#pragma once

#include "platform/text.h"
#include "platform/twips.h"

#include <QByteArray>
#include <QRect>
#include <QString>
#include <QUrl>

// What the user sees of `text`; bytes that are no UTF-8 show as the replacement character.
inline QString shown(const Text& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline Text bytesOf(const QString& string)
{
    const QByteArray utf8 = string.toUtf8();
    return {utf8.constData(), static_cast<std::size_t>(utf8.size())};
}

// Of a file; its path's own bytes, also where they are no valid text.
inline Text pathOf(const QUrl& url)
{
    const QByteArray path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8());
    return {path.constData(), static_cast<std::size_t>(path.size())};
}

inline QRect pixelRect(const Place& place)
{
    return {pixelsOf(place.left), pixelsOf(place.top), pixelsOf(place.width), pixelsOf(place.height)};
}
