// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/second_start.h"

#include "desktop/appearance.h"
#include "desktop/bus_presence.h"
#include "files/errand.h"
#include "platform/post.h"
#include "toolkit/qt_bridge.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QWidget>
#include <thread>

namespace desktop
{

using namespace std::chrono_literals;

namespace
{

using Clock = std::chrono::steady_clock;

constexpr auto patience = 1s;
constexpr auto betweenTries = 20ms;

constexpr const char* connectionName = "velmora-second-start";
constexpr const char* objectPath = "/org/velmora/Velmora";
constexpr const char* interfaceName = "org.velmora.Velmora.Window";
constexpr const char* methodName = "BringUp";

QString serviceName(pid_t process) { return QStringLiteral("%1.process%2").arg(applicationId).arg(process); }

// A box or a dialog has the program to itself: it comes up over the windows that wait behind it.
void bringUp(QWidget& dialog)
{
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isMinimized())
            window->showNormal();
    dialog.raise();
    dialog.activateWindow();
}

// A copy that has only just started is not on the bus yet.
bool asks(const QDBusConnection& bus, pid_t first, Clock::time_point end)
{
    const auto call =
        QDBusMessage::createMethodCall(serviceName(first), objectPath, interfaceName, methodName);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left <= 0ms)
            return false;
        const auto answer = bus.call(call, QDBus::Block, static_cast<int>(left.count()));
        if (answer.type() == QDBusMessage::ReplyMessage)
            return true;
        std::this_thread::sleep_for(betweenTries);
    }
}

}

class SecondStarts::Answerer final : private QDBusVirtualObject
{
public:
    Answerer(const Text& busAddress, Post& post, Event<>& asked) :
        post_(post), asked_(asked),
        presence_(busAddress, {connectionName, objectPath, {serviceName(getpid())}}, *this)
    {
    }

private:
    QString introspect(const QString&) const override { return {}; }

    // Answered on the window thread: a window that hangs has no answer.
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        if (message.interface() != interfaceName || message.member() != methodName)
            return false;
        bus.send(message.createReply());
        post_.post([this] { carryOut(); });
        return true;
    }

    void carryOut()
    {
        if (QWidget* const dialog = QApplication::activeModalWidget())
            bringUp(*dialog);
        else
            asked_.raise();
    }

    Post& post_;
    Event<>& asked_;
    BusPresence presence_; // the last member: it ends first
};

SecondStarts::SecondStarts(const Text& busAddress, Post& post)
{
    if (!busAddress.empty())
        answerer_ = std::make_unique<Answerer>(busAddress, post, Asked);
}

SecondStarts::~SecondStarts() = default;

bool isAnsweredBy(pid_t first, const Text& busAddress)
{
    if (busAddress.empty())
        return false;
    const auto end = Clock::now() + patience;
    files::Errand<bool> asking([first, busAddress, end] {
        const auto bus = QDBusConnection::connectToBus(shown(busAddress), connectionName);
        return bus.isConnected() && asks(bus, first, end);
    });
    return asking.result(patience).value_or(false);
}

}
