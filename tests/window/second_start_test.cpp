// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/second_start.h"

#include "support/waiting.h"
#include "tests/support/private_bus.h"
#include "toolkit/toolkit.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <QDialog>
#include <doctest/doctest.h>
#include <future>

namespace
{

constexpr const char* path = "/org/velmora/Velmora";
constexpr const char* question = "org.velmora.Velmora.Window";

QString nameOf(pid_t process) { return QString("org.velmora.Velmora.process%1").arg(process); }

// Another copy of the program on the bus, with that answer to whoever starts next.
class FirstCopy final : private QDBusVirtualObject
{
public:
    FirstCopy(const Text& busAddress, pid_t process, bool answers) :
        bus_(QDBusConnection::connectToBus(QString::fromStdString(busAddress), "first")), answers_(answers)
    {
        REQUIRE(bus_.registerVirtualObject(path, this));
        REQUIRE(bus_.registerService(nameOf(process)));
    }
    ~FirstCopy() override { QDBusConnection::disconnectFromBus("first"); }

private:
    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        const bool isKnown = answers_ && message.interface() == question && message.member() == "BringUp";
        return isKnown && bus.send(message.createReply());
    }

    QDBusConnection bus_;
    bool answers_;
};

bool isAnswered(pid_t process, const Text& busAddress)
{
    auto asking = std::async(std::launch::async, desktop::isAnsweredBy, process, busAddress);
    CHECK(waitFor([&] { return asking.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    QDBusConnection::disconnectFromBus("velmora-second-start"); // as the end of its process does
    return asking.get();
}

// This process is the first copy, and somebody starts a second one.
struct Copies {
    PrivateBus bus;
    bool runs = bus.runs();
    Toolkit toolkit{Toolkit::Timers::byHand};
    desktop::SecondStarts starts{bus.address, toolkit.post()};
    QDBusConnection second = QDBusConnection::connectToBus(QString::fromStdString(bus.address), "second");
    int asked = 0;

    Copies()
    {
        REQUIRE(runs);
        starts.Asked.calls([this] { ++asked; });
    }
    ~Copies() { QDBusConnection::disconnectFromBus("second"); }

    // Whether there was an answer; it is on the bus a moment after it began.
    bool asks(const char* member)
    {
        QDBusMessage answer;
        const auto call = QDBusMessage::createMethodCall(nameOf(getpid()), path, question, member);
        CHECK(waitFor([&] {
            const auto pending = second.asyncCall(call);
            waitFor([&] { return pending.isFinished(); });
            answer = pending.reply();
            return answer.errorName() != "org.freedesktop.DBus.Error.ServiceUnknown";
        }));
        return answer.type() == QDBusMessage::ReplyMessage;
    }
};

}

TEST_CASE("A first copy that answers is heard; one that knows no such question, and none, are not")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    constexpr pid_t process = 12345;
    for (const bool answers : {true, false}) {
        CAPTURE(answers);
        const FirstCopy first(bus.address, process, answers);
        CHECK(isAnswered(process, bus.address) == answers);
        CHECK_FALSE(isAnswered(process + 1, bus.address));
    }
    CHECK_FALSE(isAnswered(process, ""));
    CHECK_FALSE(isAnswered(process, "unix:path=/nowhere"));
}

TEST_CASE("Who starts the program again is answered, and its window is asked to come up")
{
    Copies copies;
    CHECK(copies.asks("BringUp"));
    CHECK(waitFor([&] { return copies.asked == 1; }));
    CHECK_FALSE(copies.asks("Something"));
    CHECK(copies.asked == 1);
}

TEST_CASE("While a dialog has the program to itself, that comes up with the windows behind it")
{
    Copies copies;
    QWidget window;
    window.showMinimized();
    QDialog dialog(&window);
    dialog.setModal(true);
    dialog.show();
    CHECK(copies.asks("BringUp"));
    CHECK(waitFor([&] { return !window.isMinimized(); }));
    CHECK(copies.asked == 0);
}
