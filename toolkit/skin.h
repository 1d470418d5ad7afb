// SPDX-License-Identifier: GPL-3.0-or-later
// The artwork of the program: one vector picture a name, a group in it for each state. For platform sources
// alone.
#pragma once

#include "files/errand.h"
#include "toolkit/kept_pictures.h"
#include "toolkit/tone.h"

#include <QIcon>
#include <QPixmap>
#include <QTimer>
#include <map>
#include <memory>
#include <optional>

class QPainter;
class QRect;
class QRegion;
class QSvgRenderer;

class Skin
{
public:
    enum class ImageState { normal, hover, pressed, disabled };

    Skin();
    ~Skin();

    // From now on what was painted is kept in `folder`, and what an earlier run of the same `build` kept
    // there is not painted again.
    void keepIn(const Text& folder, const Text& build, std::shared_ptr<PartNotes> notes);

    // Draws nothing for a name without artwork. A state that the artwork lacks looks as the normal one.
    void draw(QPainter& painter, const char* name, ImageState state, const QRect& rect);

    // In the sizes that window managers ask for.
    QIcon icon(const char* name);

    // The rectangle that frames a group of controls; of it, what has changed.
    void drawFrame(QPainter& painter, const QRect& rect, const QRegion& changed);

private:
    struct Kept {
        KeptPictures file;
        Pictures pictures;
        bool isWritten = true;
    };

    // What a picture shows: two of the same show the same.
    struct Motif {
        Text name;
        ImageState state;
        int width; // logical pixels
        int height;
        qreal scale;
        DesktopTone tone;
        // The analyser takes the 0 that it is compared with for a pointer.
        auto operator<=>(const Motif&) const = default; // NOLINT(modernize-use-nullptr)
        QSize size() const { return {width, height}; }
    };

    QSvgRenderer& renderer(const QString& name);
    const QPixmap& picture(const char* name, ImageState state, QSize size, qreal scale);
    QPixmap pictureOf(const Motif& motif);
    static QString keyOf(const Motif& motif);
    const QPixmap& frame(QSize size, qreal scale);
    QImage painted(const Motif& motif);
    Kept& kept(qreal scale);
    void write();

    std::map<Motif, QPixmap> pictures_; // a null one where there is no artwork
    QHash<QString, std::shared_ptr<QSvgRenderer>> renderers_;

    Text folder_; // "" without one
    Text build_;
    std::shared_ptr<PartNotes> notes_;
    std::map<qreal, Kept> kept_;
    QTimer settled_; // a while after the last picture that is not on the disk yet
    std::optional<files::ErrandThread> writing_;
};
