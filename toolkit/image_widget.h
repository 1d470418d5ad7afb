// The widget behind an image. For the toolkit's own sources alone.
#pragma once

#include "toolkit/image.h"

#include <QWidget>

class QMouseEvent;

namespace ctl
{

class DragOutline;

class ImageWidget final : public QWidget
{
public:
    ImageWidget(Image& image, Image::Use use);

    Image& image() const { return image_; }
    void act();   // what a click does
    void letGo(); // ends a press or a drag without a word

    // The place in which a track takes drops: over the height of a thumb.
    QRect dropZone() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void startDrag(QPoint grip);
    void drop(QPointF inForm);
    bool isLostBy(const QEvent& event) const;
    void endGesture();
    void tellRelease();
    ImageWidget* trackUnder(QPointF inForm) const;

    Image& image_;
    DragOutline* outline_ = nullptr; // while a drag goes on; the window's own
    Qt::MouseButtons down_;          // whose press was told and whose release is owed
    bool hovered_ = false;
};

}
