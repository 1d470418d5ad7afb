// SPDX-License-Identifier: GPL-3.0-or-later
// The artwork of the program: one vector picture a name, a group in it for each state. For platform sources
// alone.
#pragma once

#include <QHash>
#include <QPixmap>
#include <QString>
#include <memory>

class QPainter;
class QRect;
class QSvgRenderer;

class Skin
{
public:
    enum class State { normal, hover, pressed, disabled };

    Skin();
    ~Skin();

    bool has(const char* name) const;

    // Draws nothing for a name without artwork. A state that the artwork lacks looks as the normal one.
    void draw(QPainter& painter, const char* name, State state, const QRect& rect);

    // The rectangle that frames a group of controls.
    void drawFrame(QPainter& painter, const QRect& rect) const;

private:
    QSvgRenderer& renderer(const QString& name);
    QPixmap picture(const QString& name, State state, QSize size, qreal scale);

    QHash<QString, QPixmap> pictures_;
    QHash<QString, std::shared_ptr<QSvgRenderer>> renderers_;
};
