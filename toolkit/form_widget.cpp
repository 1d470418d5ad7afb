// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/form_widget.h"

#include "toolkit/come_back.h"
#include "toolkit/flush_windows.h"
#include "toolkit/focus_mark.h"
#include "toolkit/image_widget.h"
#include "toolkit/later.h"
#include "toolkit/reach.h"
#include "toolkit/skin.h"
#include "toolkit/toolkit.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QShortcut>
#include <QWindow>
#include <algorithm>

using namespace std::chrono_literals;

namespace
{

// An answer of the window manager that comes later than this is news, no echo.
constexpr auto echoLimit = 1s;

// For so long after a framed window was shown, a place of the window manager's own choice is put right:
// whoever takes the window by its frame does so without a word to it.
constexpr auto appearing = 500ms;

// A window manager that corrects a place so often means it.
constexpr int patience = 2;

Qt::WindowFlags flagsFor(Form::Border border)
{
    constexpr auto framed = Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    switch (border) {
    case Form::Border::none:
        return Qt::Window | Qt::FramelessWindowHint;
    case Form::Border::dialog:
        return Qt::Dialog | Qt::CustomizeWindowHint | framed;
    default:
        return Qt::Window | framed | Qt::WindowMinimizeButtonHint;
    }
}

bool hasNoButtons(const QEvent& event)
{
    return event.type() == QEvent::MouseMove &&
           static_cast<const QMouseEvent&>(event).buttons() == Qt::NoButton;
}

// A pointer that only passes over a window moves nothing.
bool isTouch(const QEvent& event)
{
    const QEvent::Type type = event.type();
    return type == QEvent::MouseButtonPress || type == QEvent::Wheel || type == QEvent::KeyPress ||
           (type == QEvent::MouseMove && !hasNoButtons(event));
}

// What takes the pointer away from a window that it drags, or the window from it.
bool endsDrag(QEvent::Type type)
{
    return type == QEvent::WindowBlocked || type == QEvent::UngrabMouse || type == QEvent::Hide;
}

bool placesItself() { return QGuiApplication::platformName() != "wayland"; }

}

FormWidget::FormWidget(Form& form, const char* name, Form::Border border, Extent client) : form_(form)
{
    setWindowFlags(flagsFor(border));
    setObjectName(name);
    setFixedSize(pixelsOf(client.width), pixelsOf(client.height));
    setAttribute(Qt::WA_QuitOnClose, false);
    if (border == Form::Border::none)
        return;
    auto* escape = new QShortcut(Qt::Key_Escape, this);
    escape->setAutoRepeat(false);
    connect(escape, &QShortcut::activated, this, &FormWidget::cancel);
}

bool FormWidget::isFramed() const { return !windowFlags().testFlag(Qt::FramelessWindowHint); }

void FormWidget::ignoreKeyAtWork()
{
    isEscapeSpent_ = true;
    later(this, [this] { isEscapeSpent_ = false; });
}

// The button of the tab that is in sight; any, where only another tab has one.
void FormWidget::cancel()
{
    if (isEscapeSpent_)
        return;
    const auto seen = std::find_if(cancelButtons_.begin(), cancelButtons_.end(),
                                   [](const auto* button) { return button->isVisible(); });
    if (seen != cancelButtons_.end())
        (*seen)->click();
    else if (!cancelButtons_.empty())
        cancelButtons_.front()->click();
    else
        close();
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
    askedAt_ = Clock::now();
    asked_ = place_;
    // Where the library takes the window to be already, because it heard of an older move just now, it asks
    // for nothing: that is done when the last echo tells of another place.
    if (pos() != place_)
        ownMoves_.push_back({place_, askedAt_});
    moving_ = true;
    move(place_);
    moving_ = false;
    if (!isFramed())
        standFlush(*this);
}

void FormWidget::setState(Form::State state)
{
    state_ = state;
    if (!isVisible())
        return;
    if (state == Form::minimized)
        setWindowState(windowState() | Qt::WindowMinimized);
    else
        comeBack(*this);
}

void FormWidget::present()
{
    if (!isVisible())
        appear();
    else if (state_ == Form::minimized)
        setState(Form::normal);
    raise();
    activateWindow();
}

// The window is placed once more after it is shown: a window manager may have put it somewhere of its own
// choice. Where the program has none, it is welcome to.
void FormWidget::appear()
{
    shownAt_ = Clock::now();
    touched_ = false;
    corrected_ = {};
    state_ = Form::normal;
    if (isPlaced_)
        move(place_);
    setWindowState(Qt::WindowNoState);
    prepareKeys();
    show();
    if (isPlaced_)
        carryOut();
}

// The pictures know by now what they do. Until a key moves it, the focus is a list's or the window's own: no
// picture waits for a Space that nobody meant for it.
void FormWidget::prepareKeys()
{
    if (isFramed() || focusWidget())
        return;
    for (auto* child : children())
        if (auto* image = dynamic_cast<ctl::ImageWidget*>(child))
            image->takeKeys();
    ctl::setReadingOrder(*this);
    auto* list = findChild<QAbstractItemView*>(QString(), Qt::FindDirectChildrenOnly);
    (list ? list : static_cast<QWidget*>(this))->setFocus();
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
    corrected_ = {};
    grabMouse();
}

// Between whole scales the library asks for a size in steps of two pixels, and a window manager that counts
// them from nothing would take one from an odd side.
void FormWidget::keepSize() { windowHandle()->setBaseSize(size()); }

// A dialog or another program in front takes nothing from the window: it goes on where it was left.
bool FormWidget::event(QEvent* event)
{
    auto& toolkit = form_.toolkit();
    if (grip_ && endsDrag(event->type()))
        letGo();
    if (event->type() == QEvent::WindowActivate)
        toolkit.outermost([&] { toolkit.activated(form_); });
    if (event->type() == QEvent::WinIdChange && windowHandle())
        keepSize();
    return QWidget::event(event);
}

// All that the window hears, before its widgets do.
bool FormWidget::eventFilter(QObject*, QEvent* event)
{
    touched_ = touched_ || isTouch(*event);
    if (grip_ && hasNoButtons(*event))
        letGo(); // the release went elsewhere
    if (event->type() == QEvent::MouseButtonPress && passOn(static_cast<const QMouseEvent&>(*event)))
        return true;
    if (!menuImage_)
        return false;
    const auto answer = menuKeys_.saw(*event);
    if (answer == ctl::MenuKeys::Handling::open)
        form_.toolkit().outermost([this] { menuImage_->Click.raise(); });
    return answer != ctl::MenuKeys::Handling::pass;
}

// Until a busy program has heard of the end of a drag, the screen gives it every press for the window that
// was dragged; a quick hand has moved on to another one by then.
bool FormWidget::passOn(const QMouseEvent& press)
{
    if (grip_ || press.buttons() != press.button() || QRectF(rect()).contains(press.position()))
        return false;
    QWindow* meant = QGuiApplication::topLevelAt(press.globalPosition().toPoint());
    if (!meant || meant == windowHandle())
        return false;
    QMouseEvent passed(press.type(), meant->mapFromGlobal(press.globalPosition()), press.globalPosition(),
                       press.button(), press.buttons(), press.modifiers());
    passed.setTimestamp(press.timestamp());
    QCoreApplication::sendEvent(meant, &passed);
    return true;
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

// A place that nobody here asked for: a choice of the window manager's as long as the user has not touched
// the window, the user's afterwards. Where no window learns its place, what it hears of one is made up, and
// the one it has is kept.
void FormWidget::settle(QPoint place)
{
    if (!placesItself())
        return;
    if (isPlaced_ && !grip_)
        noteCorrection();
    if (isPlaced_ && !isUsersMove() && !isKeptFrom(place_))
        carryOut();
    else
        place_ = place;
}

bool FormWidget::isUsersMove() const
{
    return touched_ || (isFramed() && Clock::now() - shownAt_ >= appearing);
}

void FormWidget::noteCorrection()
{
    if (Clock::now() - askedAt_ > echoLimit)
        return;
    if (corrected_.place != place_)
        corrected_ = {place_, 0};
    ++corrected_.times;
}

bool FormWidget::isKeptFrom(QPoint place) const
{
    return corrected_.place == place && corrected_.times >= patience && !isLetStand();
}

// What the window manager had against one place is over once it left the window at another that was asked
// for.
bool FormWidget::isLetStand() const
{
    return asked_ == place_ && place_ != corrected_.place && Clock::now() - askedAt_ > echoLimit;
}

void FormWidget::bringWithinReach()
{
    QList<QRect> screens;
    for (const auto* screen : QGuiApplication::screens())
        screens << screen->availableGeometry();
    setPlace(withinReach({place_, frameSize()}, screens));
}

void FormWidget::showEvent(QShowEvent*) { windowHandle()->installEventFilter(this); }

// It comes back where it was seen last.
void FormWidget::hideEvent(QHideEvent*) { isPlaced_ = true; }

void FormWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    Skin& skin = form_.toolkit().skin();
    skin.draw(painter, form_.Name(), Skin::ImageState::normal, rect());
    for (const auto& frame : frames_)
        skin.drawFrame(painter, frame, event->region());
}

void FormWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (grip_)
        setPlace(event->globalPosition().toPoint() - *grip_);
}

void FormWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton && grip_)
        letGo();
}

void FormWidget::letGo()
{
    grip_.reset();
    releaseMouse();
}
