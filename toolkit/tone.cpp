// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/tone.h"

#include <QColor>
#include <QImage>
#include <algorithm>

namespace
{

DesktopTone current = DesktopTone::usual;

// What is dark becomes nearly black, what is light nearly white; the accent keeps its colour.
QRgb strengthened(QRgb pixel)
{
    constexpr float middle = 0.32F;
    constexpr float strength = 2.4F;
    float hue = 0;
    float saturation = 0;
    float lightness = 0;
    float alpha = 0;
    const QColor colour = QColor::fromRgba(qUnpremultiply(pixel));
    colour.getHslF(&hue, &saturation, &lightness, &alpha);
    if (saturation > 0.5F)
        return pixel;
    const float wanted = std::clamp(middle + (lightness - middle) * strength, 0.0F, 1.0F);
    return qPremultiply(QColor::fromHslF(std::max(hue, 0.0F), saturation, wanted, alpha).rgba());
}

}

DesktopTone tone() { return current; }

void setTone(DesktopTone tone) { current = tone; }

int lineStrength() { return current == DesktopTone::usual ? 26 : 190; }

void bringIntoTone(QImage& picture)
{
    if (current == DesktopTone::usual)
        return;
    picture.convertTo(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        std::transform(line, line + picture.width(), line, strengthened);
    }
}
