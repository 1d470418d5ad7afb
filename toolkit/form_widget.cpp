#include "toolkit/form_widget.h"

#include "toolkit/skin.h"
#include "toolkit/toolkit.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

using namespace std::chrono_literals;

namespace
{

// An answer of the window manager that comes later than this is news, no echo.
constexpr auto echoLimit = 1s;

// For so long after a window was shown, a place of the window manager's own choice is put right.
constexpr auto appearing = 500ms;

Qt::WindowFlags flagsFor(Form::Border border)
{
    if (border == Form::Border::none)
        return Qt::Window | Qt::FramelessWindowHint;
    return Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
           Qt::WindowMinimizeButtonHint;
}

bool placesItself() { return QGuiApplication::platformName() != "wayland"; }

}

FormWidget::FormWidget(Form& form, const char* name, Form::Border border, Extent client) : form_(form)
{
    setWindowFlags(flagsFor(border));
    setObjectName(name);
    setFixedSize(pixelsOf(client.width), pixelsOf(client.height));
    setAttribute(Qt::WA_QuitOnClose, false);
}

void FormWidget::setPlace(QPoint place)
{
    isPlaced_ = true;
    if (std::exchange(place_, place) != place && isVisible())
        carryOut();
}

void FormWidget::carryOut()
{
    forgetOldMoves();
    ownMoves_.push_back({place_, Clock::now()});
    moving_ = true;
    move(place_);
    moving_ = false;
}

void FormWidget::setState(Form::State state)
{
    state_ = state;
    if (!isVisible())
        return;
    const auto rest = windowState() & ~Qt::WindowMinimized;
    setWindowState(state == Form::minimized ? rest | Qt::WindowMinimized : rest);
}

void FormWidget::present()
{
    if (!isVisible())
        appear();
    raise();
    activateWindow();
}

// The window is placed once more after it is shown: a window manager may have put it somewhere of its own
// choice. Where the program has none, it is welcome to.
void FormWidget::appear()
{
    shownAt_ = Clock::now();
    if (isPlaced_)
        move(place_);
    setWindowState(state_ == Form::minimized ? Qt::WindowMinimized : Qt::WindowNoState);
    show();
    if (isPlaced_)
        carryOut();
}

// The window moves itself: some window managers send no positions during a move of their own, and the docked
// window follows live. The pointer's global place counts, so that a window that snaps away does not feed back
// into the drag. Where the pointer is by now does not: a quick hand is ahead of a busy program.
void FormWidget::follow()
{
    if (QGuiApplication::mouseButtons() == Qt::NoButton)
        return;
    if (!placesItself()) {
        windowHandle()->startSystemMove();
        return;
    }
    grip_ = pressed_;
    grabMouse();
}

// A dialog or another program in front takes nothing from the window: it goes on where it was left.
bool FormWidget::event(QEvent* event)
{
    auto& toolkit = form_.toolkit();
    if (event->type() == QEvent::WindowActivate)
        toolkit.outermost([&] { toolkit.activated(form_); });
    return QWidget::event(event);
}

void FormWidget::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange)
        state_ = isMinimized() ? Form::minimized : Form::normal;
    QWidget::changeEvent(event);
}

void FormWidget::closeEvent(QCloseEvent* event)
{
    event->ignore();
    form_.toolkit().outermost([&] { form_.closeRequested(); });
}

void FormWidget::moveEvent(QMoveEvent*)
{
    if (moving_ || !isVisible() || isMinimized() || isEcho(pos()))
        return;
    settle(pos());
}

void FormWidget::forgetOldMoves()
{
    while (!ownMoves_.empty() && Clock::now() - ownMoves_.front().at > echoLimit)
        ownMoves_.pop_front();
}

bool FormWidget::isEcho(QPoint place)
{
    forgetOldMoves();
    for (std::size_t i = 0; i < ownMoves_.size(); ++i) {
        if (ownMoves_[i].place != place)
            continue;
        ownMoves_.erase(ownMoves_.begin(), ownMoves_.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        if (ownMoves_.empty() && place != place_)
            carryOut();
        return true;
    }
    return false;
}

// A place that nobody here asked for: a choice of the window manager's while the window appears, the user's
// afterwards. Where no window learns its place, what it hears of one is made up, and the one it has is kept.
void FormWidget::settle(QPoint place)
{
    if (!placesItself())
        return;
    if (isPlaced_ && Clock::now() - shownAt_ < appearing)
        carryOut();
    else
        place_ = place;
}

// It comes back where it was seen last.
void FormWidget::hideEvent(QHideEvent*) { isPlaced_ = true; }

void FormWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    Skin& skin = form_.toolkit().skin();
    skin.draw(painter, form_.Name(), Skin::State::normal, rect());
    for (const auto& frame : frames_)
        skin.drawFrame(painter, frame);
}

void FormWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (grip_)
        setPlace(event->globalPosition().toPoint() - *grip_);
}

void FormWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->buttons() != Qt::NoButton || !grip_)
        return;
    grip_.reset();
    releaseMouse();
}
