// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/skin.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <array>

namespace
{

constexpr std::array groups{"normal", "hover", "pressed", "disabled"};

QString fileOf(const QString& name) { return ":/skin/" + name + ".svg"; }

QString groupOf(const QSvgRenderer& art, Skin::State state)
{
    const QString group = groups[static_cast<std::size_t>(state)];
    return art.elementExists(group) ? group : QString(groups.front());
}

}

Skin::Skin() = default;
Skin::~Skin() = default;

bool Skin::has(const char* name) const { return QFile::exists(fileOf(name)); }

void Skin::draw(QPainter& painter, const char* name, State state, const QRect& rect)
{
    if (has(name))
        painter.drawPixmap(rect, picture(name, state, rect.size(), painter.device()->devicePixelRatio()));
}

void Skin::drawFrame(QPainter& painter, const QRect& rect) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 255, 255, 26), 1));
    painter.setBrush(QColor(0, 0, 0, 90));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    painter.restore();
}

QSvgRenderer& Skin::renderer(const QString& name)
{
    auto& art = renderers_[name];
    if (!art)
        art = std::make_shared<QSvgRenderer>(fileOf(name));
    return *art;
}

QPixmap Skin::picture(const QString& name, State state, QSize size, qreal scale)
{
    const QString key =
        QString("%1/%2/%3x%4@%5").arg(name).arg(int(state)).arg(size.width()).arg(size.height()).arg(scale);
    QPixmap& cached = pictures_[key];
    if (!cached.isNull())
        return cached;
    cached = QPixmap(size * scale);
    cached.setDevicePixelRatio(scale);
    cached.fill(Qt::transparent);
    QPainter painter(&cached);
    auto& art = renderer(name);
    art.render(&painter, groupOf(art, state), QRectF(QPointF(), QSizeF(size)));
    return cached;
}
