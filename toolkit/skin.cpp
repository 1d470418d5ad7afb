// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/skin.h"

#include "platform/paths.h"
#include "toolkit/tone.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <array>
#include <cmath>

namespace
{

constexpr std::chrono::seconds whileToSettle{2};

constexpr int iconSides[] = {16, 32, 64, 128}; // pixels

constexpr std::array groups{"normal", "hover", "pressed", "disabled"};

QString fileOf(const QString& name) { return ":/skin/" + name + ".svg"; }

QString groupOf(const QSvgRenderer& art, Skin::ImageState state)
{
    const QString group = groups[static_cast<std::size_t>(state)];
    return art.elementExists(group) ? group : QString(groups.front());
}

constexpr QColor shadow(0, 0, 0, 90); // over what a frame holds
constexpr int rim = 4;                // pixels

void paintFrame(QPainter& painter, const QRect& rect)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 255, 255, lineStrength()), 1));
    painter.setBrush(shadow);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), rim, rim);
    painter.restore();
}

}

Skin::Skin()
{
    settled_.setSingleShot(true);
    settled_.setInterval(whileToSettle);
    QObject::connect(&settled_, &QTimer::timeout, [this] { write(); });
}

Skin::~Skin() = default;

void Skin::keepIn(const Text& folder, const Text& build, std::shared_ptr<PartNotes> notes)
{
    folder_ = folder;
    build_ = build;
    notes_ = std::move(notes);
}

void Skin::draw(QPainter& painter, const char* name, ImageState state, const QRect& rect)
{
    const QPixmap& shown = picture(name, state, rect.size(), painter.device()->devicePixelRatio());
    if (!shown.isNull())
        painter.drawPixmap(rect, shown);
}

QIcon Skin::icon(const char* name)
{
    QIcon icon;
    for (const int side : iconSides)
        icon.addPixmap(picture(name, ImageState::normal, {side, side}, 1));
    return icon;
}

// Only the rim has curves, and a label that changes, over it or within, must not cost them again: the toolkit
// wakes threads of its own for them.
void Skin::drawFrame(QPainter& painter, const QRect& rect, const QRegion& changed)
{
    const QRect part = (changed & rect).boundingRect();
    if (part.isEmpty())
        return;
    const qreal scale = painter.device()->devicePixelRatio();
    const QRect within = rect.adjusted(rim, rim, -rim, -rim);
    if (within.adjusted(1, 1, -1, -1).contains(part))
        painter.fillRect(within, shadow);
    else if (scale != std::floor(scale))
        paintFrame(painter, rect);
    else
        painter.drawPixmap(rect.topLeft(), frame(rect.size(), scale));
}

const QPixmap& Skin::frame(QSize size, qreal scale)
{
    QPixmap& known = pictures_[{"frame", ImageState::normal, size.width(), size.height(), scale, tone()}];
    if (known.isNull()) {
        known = QPixmap(size * scale);
        known.setDevicePixelRatio(scale);
        known.fill(Qt::transparent);
        QPainter painter(&known);
        paintFrame(painter, QRect(QPoint(), size));
    }
    return known;
}

QSvgRenderer& Skin::renderer(const QString& name)
{
    auto& art = renderers_[name];
    if (!art)
        art = std::make_shared<QSvgRenderer>(fileOf(name));
    return *art;
}

Skin::Kept& Skin::kept(qreal scale)
{
    const auto known = kept_.find(scale);
    if (known != kept_.end())
        return known->second;
    const QString name = QString("skin-%1").arg(scale);
    Kept kept{{folder_.empty() ? "" : joined(folder_, name.toStdString()), build_}, {}};
    if (!folder_.empty())
        kept.pictures = kept.file.read();
    return kept_.emplace(scale, std::move(kept)).first->second;
}

void Skin::write()
{
    if (writing_ && !writing_->hasEnded())
        return settled_.start();
    for (auto& [scale, kept] : kept_)
        if (!std::exchange(kept.isWritten, true)) {
            writing_.emplace([copy = kept, notes = notes_] { copy.file.write(copy.pictures, *notes); },
                             [] {});
            return settled_.start(); // for the next scale, if there is one
        }
}

// It is drawn many times a second.
const QPixmap& Skin::picture(const char* name, ImageState state, QSize size, qreal scale)
{
    const auto [known, isNew] =
        pictures_.try_emplace({name, state, size.width(), size.height(), scale, tone()});
    if (isNew && QFile::exists(fileOf(name)))
        known->second = pictureOf(known->first);
    return known->second;
}

QPixmap Skin::pictureOf(const Motif& motif)
{
    Kept& all = kept(motif.scale);
    QImage& picture = all.pictures[keyOf(motif)];
    if (picture.isNull()) {
        picture = painted(motif);
        all.isWritten = folder_.empty();
        if (!all.isWritten)
            settled_.start();
    }
    QPixmap shown = QPixmap::fromImage(picture, Qt::NoFormatConversion);
    shown.setDevicePixelRatio(motif.scale);
    return shown;
}

// As it is kept from run to run.
QString Skin::keyOf(const Motif& motif)
{
    return QString("%1/%2%6/%3x%4@%5")
        .arg(motif.name.c_str())
        .arg(int(motif.state))
        .arg(motif.width)
        .arg(motif.height)
        .arg(motif.scale)
        .arg(motif.tone == DesktopTone::usual ? "" : "+");
}

QImage Skin::painted(const Motif& motif)
{
    QImage picture(motif.size() * motif.scale, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(motif.scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    auto& art = renderer(motif.name.c_str());
    art.render(&painter, groupOf(art, motif.state), QRectF(QPointF(), QSizeF(motif.size())));
    painter.end();
    bringIntoTone(picture);
    return picture;
}
