#include "toolkit/image_widget.h"

#include "toolkit/form_widget.h"
#include "toolkit/key_codes.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/skin.h"
#include "toolkit/toolkit.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>

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

Button buttonOf(const QMouseEvent& event)
{
    if (event.button() == Qt::RightButton)
        return Button::right;
    return event.button() == Qt::MiddleButton ? Button::middle : Button::left;
}

QPoint pixelAt(QPointF place) { return {qFloor(place.x()), qFloor(place.y())}; }

Twips twipsAt(qreal pixels) { return static_cast<Twips>(pixels) * twipsPerPixel; }

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
    auto state = Skin::State::normal;
    if (!isEnabled())
        state = Skin::State::disabled;
    else if (down_.testFlag(Qt::LeftButton))
        state = Skin::State::pressed;
    else if (hovered_)
        state = Skin::State::hover;
    image_.toolkit().skin().draw(painter, image_.Name(), state, rect());
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
        letGo(); // first: the drop's handler may wait for long
        if (!inside)
            drop(mapTo(window(), event->position()));
        tellRelease();
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
    else
        QWidget::keyPressEvent(event);
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

void ImageWidget::drop(QPointF inForm)
{
    auto* track = trackUnder(inForm);
    if (!track)
        return;
    Image& target = track->image();
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
