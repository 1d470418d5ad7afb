// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/wishes_reader.h"

#include "desktop/bus_presence.h"
#include "platform/mutex.h"
#include "platform/post.h"
#include "toolkit/qt_bridge.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QVariantMap>

#include <chrono>
#include <optional>
#include <utility>

namespace desktop
{

namespace
{

using namespace std::chrono_literals;

constexpr int longestWaitMs = 5000;
constexpr auto quietAfterChange = 100ms;
constexpr const char* connectionName = "velmora-wishes";

constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* object = "/org/freedesktop/portal/desktop";
constexpr const char* settings = "org.freedesktop.portal.Settings";

using Groups = QMap<QString, QVariantMap>;

// The desktops' common word for it, and that of one of them.
constexpr const char* common = "org.freedesktop.appearance";
constexpr const char* access = "org.gnome.desktop.a11y.interface";
constexpr const char* usual = "org.gnome.desktop.interface";

std::optional<Groups> readAll(const QDBusConnection& bus)
{
    auto call = QDBusMessage::createMethodCall(service, object, settings, "ReadAll");
    call << QStringList{common, access, usual};
    const auto answer = bus.call(call, QDBus::Block, longestWaitMs);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != "a{sa{sv}}")
        return std::nullopt;
    return qdbus_cast<Groups>(answer.arguments().front());
}

// 1 asks for more contrast; anything else is no wish.
bool wantsContrast(const Groups& groups)
{
    return groups[common]["contrast"].toUInt() == 1 || groups[access]["high-contrast"].toBool();
}

double typeFactorIn(const Groups& groups)
{
    const double factor = groups[usual]["text-scaling-factor"].toDouble();
    return factor > 0 ? factor : 1;
}

}

// What the thread holds; any call to the bus may hang it.
struct WishesReader::Portal {
    Portal(const Text& busAddress, Post& whose, QTimer& wakes,
           std::function<void(const DesktopWishes&)> whom) :
        address(shown(busAddress)),
        tell(std::move(whom)), post(&whose), changed(&wakes)
    {
    }

    // Whoever tells of a change, it is the portal that is asked: names are given to others in time.
    void meet()
    {
        auto bus = QDBusConnection::connectToBus(address, connectionName);
        const Lock lock(mutex);
        if (changed)
            for (const char* group : {common, access, usual})
                bus.connect({}, object, settings, "SettingChanged", {group}, {}, changed, SLOT(start()));
    }

    void ask()
    {
        const QDBusConnection bus(connectionName);
        const auto groups = bus.isConnected() ? readAll(bus) : std::nullopt;
        if (!groups)
            return;
        const DesktopWishes wishes{wantsContrast(*groups), typeFactorIn(*groups)};
        if (std::exchange(known, wishes) == wishes)
            return;
        const Lock lock(mutex);
        if (post)
            post->post([whom = tell, wishes] { whom(wishes); });
    }

    void leave()
    {
        const Lock lock(mutex);
        post = nullptr;
        changed = nullptr;
    }

    const QString address;
    const std::function<void(const DesktopWishes&)> tell;
    DesktopWishes known; // the thread's own
    Mutex mutex;
    Post* post GUARDED_BY(mutex);
    QTimer* changed GUARDED_BY(mutex);
};

WishesReader::WishesReader(const Text& busAddress, Post& post, std::function<void(const DesktopWishes&)> tell)
{
    if (busAddress.empty())
        return;
    changed_.setSingleShot(true);
    changed_.setInterval(quietAfterChange);
    QObject::connect(&changed_, &QTimer::timeout, [this] { ask(); });
    portal_ = std::make_shared<Portal>(busAddress, post, changed_, std::move(tell));
    worker_.add([portal = portal_](const std::stop_token&) { portal->meet(); });
    ask();
}

void WishesReader::ask()
{
    worker_.add([portal = portal_](const std::stop_token&) { portal->ask(); });
}

WishesReader::~WishesReader()
{
    if (!portal_)
        return;
    portal_->leave();
    leaveBus(connectionName);
}

}
