// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/wishes_reader.h"

#include "support/waiting.h"
#include "tests/support/private_bus.h"
#include "toolkit/toolkit.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <doctest/doctest.h>

namespace
{

using Groups = QMap<QString, QVariantMap>;
using desktop::DesktopWishes;

constexpr const char* object = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";
constexpr const char* common = "org.freedesktop.appearance";
constexpr const char* ofOneDesktop = "org.gnome.desktop.a11y.interface";
constexpr const char* usual = "org.gnome.desktop.interface";

// What a person has set, and the desktop's portal that tells it.
class Portal final : private QDBusVirtualObject
{
public:
    explicit Portal(const Text& busAddress) :
        bus_(QDBusConnection::connectToBus(QString::fromStdString(busAddress), "portal"))
    {
        qDBusRegisterMetaType<Groups>();
        REQUIRE(bus_.registerVirtualObject(object, this));
        REQUIRE(bus_.registerService("org.freedesktop.portal.Desktop"));
    }
    ~Portal() override { QDBusConnection::disconnectFromBus("portal"); }

    void tellOfChange(const char* group)
    {
        auto signal = QDBusMessage::createSignal(object, interface, "SettingChanged");
        signal << group << "any" << QVariant::fromValue(QDBusVariant(1));
        CHECK(bus_.send(signal));
    }

    Groups set;
    int asked = 0;

private:
    QString introspect(const QString&) const override { return {}; }

    // Of those groups alone that are asked for.
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        if (message.member() != "ReadAll")
            return false;
        ++asked;
        Groups groups;
        for (const QString& group : message.arguments().value(0).toStringList())
            groups[group] = set[group];
        return bus.send(message.createReply(QVariant::fromValue(groups)));
    }

    QDBusConnection bus_;
};

struct Desktop {
    PrivateBus bus;
    bool runs = bus.runs();
    Toolkit toolkit{Toolkit::Timers::byHand};
    std::vector<DesktopWishes> told;

    // The one before it leaves the bus when its thread gets to it, and would take this one along.
    desktop::WishesReader reader()
    {
        REQUIRE(waitFor([] { return !QDBusConnection("velmora-wishes").isConnected(); }));
        return {bus.address, toolkit.post(), [this](const DesktopWishes& wishes) { told.push_back(wishes); }};
    }
};

}

TEST_CASE("What a person has set on the desktop is told, in the desktops' common words and in those of one")
{
    struct Case {
        const char* what;
        Groups set;
        DesktopWishes wishes;
    };
    const Case cases[] = {
        {"more contrast", {{common, {{"contrast", 1U}}}}, {true, 1}},
        {"more contrast, on one desktop", {{ofOneDesktop, {{"high-contrast", true}}}}, {true, 1}},
        {"larger type", {{usual, {{"text-scaling-factor", 1.5}}}}, {false, 1.5}},
        {"usual contrast",
         {{common, {{"contrast", 0U}}}, {usual, {{"text-scaling-factor", 1.25}}}},
         {false, 1.25}},
        {"a contrast that nobody knows, and type of no size",
         {{common, {{"contrast", 2U}}},
          {ofOneDesktop, {{"high-contrast", true}}},
          {usual, {{"text-scaling-factor", -1.0}}}},
         {true, 1}},
    };
    Desktop desktop;
    REQUIRE(desktop.runs);
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Portal portal(desktop.bus.address);
        portal.set = c.set;
        desktop.told.clear();
        const auto reader = desktop.reader();
        CHECK(waitFor([&] { return !desktop.told.empty(); }));
        CHECK(desktop.told == std::vector<DesktopWishes>{c.wishes});
    }
}

TEST_CASE("A change is asked for once the desktop is quiet, and told if it is one")
{
    Desktop desktop;
    REQUIRE(desktop.runs);
    Portal portal(desktop.bus.address);
    portal.set = {{usual, {{"text-scaling-factor", 2.0}}}};
    const auto reader = desktop.reader();
    REQUIRE(waitFor([&] { return desktop.told.size() == 1; }));
    for (const char* group : {common, ofOneDesktop, usual})
        portal.tellOfChange(group);
    CHECK(waitFor([&] { return portal.asked == 2; }));
    portal.set = {{usual, {{"text-scaling-factor", 1.5}}}};
    portal.tellOfChange(usual);
    CHECK(waitFor([&] { return desktop.told.size() == 2; }));
    CHECK((desktop.told == std::vector<DesktopWishes>{{false, 2}, {false, 1.5}}));
}

TEST_CASE("Who reads the desktop's wishes leaves the bus behind itself, and without a bus asks nobody")
{
    Desktop desktop;
    REQUIRE(desktop.runs);
    Portal portal(desktop.bus.address);
    {
        const auto reader = desktop.reader();
        REQUIRE(waitFor([&] { return portal.asked == 1; }));
        const desktop::WishesReader none("", desktop.toolkit.post(), [](const DesktopWishes&) {});
    }
    CHECK(waitFor([] { return !QDBusConnection("velmora-wishes").isConnected(); }));
    CHECK(desktop.told.empty());
    CHECK(portal.asked == 1);
}
