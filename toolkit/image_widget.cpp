// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/image_widget.h"

#include "toolkit/focus_mark.h"
#include "toolkit/form_widget.h"
#include "toolkit/key_codes.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/skin.h"
#include "toolkit/slider.h"
#include "toolkit/toolkit.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>
#include <algorithm>

namespace ctl
{

// The outline of a dragged thumb: it follows the pointer while the thumb stands still.
class DragOutline final : public QWidget
{
public:
    DragOutline(ImageWidget& thumb, QPoint grip) : QWidget(thumb.window()), grip_(grip)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(QRect(thumb.mapTo(thumb.window(), QPoint()), thumb.size()));
        show();
    }

    void follow(QPointF inForm) { move(inForm.toPoint() - grip_); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    }

private:
    QPoint grip_;
};

namespace
{

// Pixels: how far above and below a track a drop still counts, so that its zone is as high as a thumb.
constexpr int kindness = 5;

// Pixels of a track, and of 255.
constexpr qreal grooveTop = 1.5;
constexpr qreal grooveBottom = 3.5;
constexpr int groovesLight = 190;

Button buttonOf(const QMouseEvent& event)
{
    if (event.button() == Qt::RightButton)
        return Button::right;
    return event.button() == Qt::MiddleButton ? Button::middle : Button::left;
}

QPoint pixelAt(QPointF place) { return {qFloor(place.x()), qFloor(place.y())}; }

Twips twipsAt(qreal pixels) { return static_cast<Twips>(pixels) * twipsPerPixel; }

// A key of a slider: by how much it moves the value.
struct ClickStep {
    int key;
    std::int32_t by;
};

// clang-format off
constexpr ClickStep steps[] = {
    {Qt::Key_Left, -1}, {Qt::Key_Down, -1}, {Qt::Key_Right, 1}, {Qt::Key_Up, 1},
    {Qt::Key_PageDown, -10}, {Qt::Key_PageUp, 10},
};
// clang-format on

std::int32_t movedBy(int key, const Slider& slider)
{
    if (key == Qt::Key_Home)
        return slider.Min();
    if (key == Qt::Key_End)
        return slider.Max();
    for (const auto& step : steps)
        if (step.key == key)
            return slider.Value() + step.by;
    return slider.Value();
}

bool pressesButtons(int key) { return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter; }

// A window that comes forward again or whose menu closes gives the focus back to who had it.
bool isInterlude(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
}

Qt::CursorShape pointerFor(Image::Use use)
{
    return use == Image::Use::transport ? Qt::PointingHandCursor : Qt::ArrowCursor;
}

}

ImageWidget::ImageWidget(Image& image, Image::Use use) : image_(image) { setCursor(pointerFor(use)); }

void ImageWidget::act()
{
    image_.fromOutside([this] { image_.Click.raise(); });
}

void ImageWidget::takeKeys()
{
    if (image_.acts() || image_.slider())
        setFocusPolicy(Qt::TabFocus);
}

QRect ImageWidget::dropZone() const { return geometry().adjusted(0, -kindness, 0, kindness); }

bool ImageWidget::event(QEvent* event)
{
    if (down_ && isLostBy(*event))
        endGesture();
    return QWidget::event(event);
}

void ImageWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    auto state = Skin::ImageState::normal;
    if (!isEnabled())
        state = Skin::ImageState::disabled;
    else if (down_.testFlag(Qt::LeftButton) || (heldKey_ != 0 && image_.acts()))
        state = Skin::ImageState::pressed;
    else if (hovered_)
        state = Skin::ImageState::hover;
    image_.toolkit().skin().draw(painter, image_.Name(), state, rect());
    if (thumb_)
        paintReach(painter);
}

void ImageWidget::showReachOf(ImageWidget& thumb)
{
    thumb_ = &thumb;
    thumb.track_ = this;
}

void ImageWidget::paintReach(QPainter& painter) const
{
    const Slider& slider = *thumb_->image_.slider();
    const QRectF thumb = thumb_->geometry().translated(-pos());
    const qreal share = qreal(0 - slider.Min()) / (slider.Max() - slider.Min());
    const QPointF zero(thumb.width() / 2 + share * (width() - thumb.width()), grooveTop);
    QColor light = palette().color(QPalette::Link);
    light.setAlpha(groovesLight);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(zero, QPointF(thumb.center().x(), grooveBottom)).normalized(), light);
}

// The clock moves a thumb by a little at a time: what it was and is upon is drawn anyhow.
void ImageWidget::moveEvent(QMoveEvent* event)
{
    if (!track_)
        return;
    const auto [left, right] = std::minmax({event->oldPos().x(), event->pos().x()});
    const int middle = width() / 2 - track_->x();
    track_->update(left + middle - 1, 0, right - left + 3, track_->height());
}

void ImageWidget::mousePressEvent(QMouseEvent* event)
{
    if (outline_)
        return; // a drag has the pointer to itself
    down_.setFlag(event->button());
    update();
    static_cast<FormWidget*>(window())->pressed(mapTo(window(), event->position()).toPoint());
    if (event->button() == Qt::LeftButton && image_.use() == Image::Use::thumb)
        startDrag(event->position().toPoint());
    image_.fromOutside([&] {
        image_.MouseDown.raise(buttonOf(*event), shiftStateOf(*event), twipsAt(event->position().x()),
                               twipsAt(event->position().y()));
    });
}

void ImageWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (outline_)
        outline_->follow(mapTo(window(), event->position()));
}

void ImageWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (!down_.testFlag(event->button()))
        return;
    const bool inside = rect().contains(pixelAt(event->position()));
    if (outline_) {
        endDrag(mapTo(window(), event->position()), inside);
        return;
    }
    down_.setFlag(event->button(), false);
    update();
    image_.fromOutside([&] {
        image_.MouseUp.raise(buttonOf(*event), shiftStateOf(*event), twipsAt(event->position().x()),
                             twipsAt(event->position().y()));
    });
    if (inside && event->button() == Qt::LeftButton)
        act();
}

void ImageWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && outline_)
        endGesture();
    else if (outline_ || !takesKey(*event))
        QWidget::keyPressEvent(event);
}

// A key that is held presses once, and moves a slider on and on.
bool ImageWidget::takesKey(const QKeyEvent& event)
{
    if (image_.slider()) {
        moveSlider(event);
        return keyCodeOf(event) != 0;
    }
    if (!image_.acts() || !pressesButtons(event.key()))
        return false;
    if (event.isAutoRepeat())
        return true;
    heldKey_ = event.key();
    update();
    act();
    return true;
}

void ImageWidget::moveSlider(const QKeyEvent& event)
{
    const auto code = keyCodeOf(event);
    if (code == 0)
        return;
    Slider& slider = *image_.slider();
    heldKey_ = event.key();
    heldCode_ = code;
    image_.fromOutside([&] { slider.KeyDown.raise(code); });
    slider.moveByUser(movedBy(event.key(), slider));
}

void ImageWidget::keyReleaseEvent(QKeyEvent* event)
{
    if (event->isAutoRepeat())
        return;
    if (event->key() == heldKey_)
        letKeyGo();
    else
        QWidget::keyReleaseEvent(event);
}

void ImageWidget::letKeyGo()
{
    if (std::exchange(heldKey_, 0) == 0)
        return;
    update();
    if (auto* slider = image_.slider())
        image_.fromOutside([&] { slider->KeyUp.raise(heldCode_); });
}

void ImageWidget::focusInEvent(QFocusEvent* event)
{
    if (!isInterlude(event->reason()))
        isFocusSeen_ = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (isFocusSeen_)
        (mark_ = new FocusMark(*window()))->setWidget(this);
}

void ImageWidget::focusOutEvent(QFocusEvent*)
{
    delete mark_.data();
    letKeyGo();
}

void ImageWidget::enterEvent(QEnterEvent*)
{
    hovered_ = true;
    update();
}

void ImageWidget::leaveEvent(QEvent*)
{
    hovered_ = false;
    update();
}

void ImageWidget::hideEvent(QHideEvent*)
{
    if (down_)
        endGesture();
    letKeyGo();
}

void ImageWidget::startDrag(QPoint grip)
{
    outline_ = new DragOutline(*this, grip);
    down_ = Qt::LeftButton;
    grabKeyboard();
}

void ImageWidget::letGo()
{
    if (auto* outline = std::exchange(outline_, nullptr)) {
        outline->hide();
        outline->deleteLater(); // a window that hides is just going through its widgets
        releaseKeyboard();
    }
    down_ = {};
    update();
}

void ImageWidget::leave()
{
    letGo();
    heldKey_ = 0;
}

// The thumb's own track hears of the drop while the bar is still in the user's hand; the handler of another
// track may wait for long, and finds it let go.
void ImageWidget::endDrag(QPointF inForm, bool inside)
{
    letGo();
    auto* track = inside ? nullptr : trackUnder(inForm);
    if (track && &track->image() == image_.track()) {
        drop(*track, inForm);
        tellRelease();
        return;
    }
    tellRelease();
    if (track)
        drop(*track, inForm);
}

void ImageWidget::drop(ImageWidget& track, QPointF inForm)
{
    Image& target = track.image();
    const Twips x = twipsAt(inForm.x()) - target.Left();
    const Twips y = twipsAt(inForm.y()) - target.Top();
    image_.fromOutside([&] { target.DragDrop.raise(image_, x, y); });
}

// A click outlives the moment for which another window comes forward. A drag and the other buttons do not
// wait for a release that a modal window may have taken.
bool ImageWidget::isLostBy(const QEvent& event) const
{
    const bool clicks = down_ == Qt::LeftButton && !outline_;
    return event.type() == QEvent::UngrabMouse || (event.type() == QEvent::WindowDeactivate && !clicks);
}

// However it ended, it ends with a release.
void ImageWidget::endGesture()
{
    letGo();
    tellRelease();
}

void ImageWidget::tellRelease()
{
    image_.fromOutside([this] { image_.MouseUp.raise(Button::left, 0, 0, 0); });
}

ImageWidget* ImageWidget::trackUnder(QPointF inForm) const
{
    for (auto* child : window()->children()) {
        auto* other = dynamic_cast<ImageWidget*>(child);
        if (other && other->image().use() == Image::Use::track && other->dropZone().contains(pixelAt(inForm)))
            return other;
    }
    return nullptr;
}

}
