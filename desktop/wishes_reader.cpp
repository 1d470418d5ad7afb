// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/wishes_reader.h"

#include "platform/post.h"
#include "toolkit/qt_bridge.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QVariantMap>
#include <optional>

namespace desktop
{

namespace
{

constexpr int longestWaitMs = 5000;
constexpr const char* connectionName = "velmora-wishes";

using Groups = QMap<QString, QVariantMap>;

// The desktops' common word for it, and that of one of them.
constexpr const char* common = "org.freedesktop.appearance";
constexpr const char* access = "org.gnome.desktop.a11y.interface";
constexpr const char* usual = "org.gnome.desktop.interface";

std::optional<Groups> readAll(const QDBusConnection& bus)
{
    auto call =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.Settings", "ReadAll");
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

std::optional<DesktopWishes> wishesOf(const Text& busAddress)
{
    std::optional<DesktopWishes> wishes;
    {
        const auto bus = QDBusConnection::connectToBus(shown(busAddress), connectionName);
        if (const auto groups = bus.isConnected() ? readAll(bus) : std::nullopt)
            wishes = DesktopWishes{wantsContrast(*groups), typeFactorIn(*groups)};
    }
    QDBusConnection::disconnectFromBus(connectionName);
    return wishes;
}

}

WishesReader::WishesReader(const Text& busAddress, Post& post, std::function<void(const DesktopWishes&)> tell)
{
    if (busAddress.empty())
        return;
    asking_ = Thread([busAddress, &post, tell = std::move(tell)] {
        if (const auto wishes = wishesOf(busAddress))
            post.post([tell, wishes] { tell(*wishes); });
    });
}

WishesReader::~WishesReader() { asking_.join(); }

}
