// SPDX-License-Identifier: GPL-3.0-or-later
// The widget behind an image. For the toolkit's own sources alone.
#pragma once

#include "toolkit/image.h"

#include <QPointer>
#include <QWidget>

class QMouseEvent;
class QPainter;

namespace ctl
{

class DragOutline;
class FocusMark;

class ImageWidget final : public QWidget
{
public:
    ImageWidget(Image& image, Image::Use use);

    Image& image() const { return image_; }
    void act();      // what a click does, and whatever else presses the image
    void takeKeys(); // by Tab, if a key can do anything with it
    void leave();    // ends whatever goes on, without a word

    // The groove of a track is lit as far as its thumb stands from where it stands for 0.
    void showReachOf(ImageWidget& thumb);

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
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

private:
    void paintReach(QPainter& painter) const;
    void startDrag(QPoint grip);
    void letGo();
    void drop(ImageWidget& track, QPointF inForm);
    void endDrag(QPointF inForm, bool inside);
    bool isLostBy(const QEvent& event) const;
    void endGesture();
    void tellRelease();
    ImageWidget* trackUnder(QPointF inForm) const;
    bool takesKey(const QKeyEvent& event);
    void moveSlider(const QKeyEvent& event);
    void letKeyGo();

    Image& image_;
    ImageWidget* thumb_ = nullptr;   // of a track
    ImageWidget* track_ = nullptr;   // of a thumb
    DragOutline* outline_ = nullptr; // while a drag goes on; the window's own
    Qt::MouseButtons down_;          // whose press was told and whose release is owed
    bool hovered_ = false;
    int heldKey_ = 0; // whose release is owed; none: 0
    std::int16_t heldCode_ = 0;
    bool isFocusSeen_ = false; // it came by a key
    QPointer<FocusMark> mark_; // the window's own
};

}
