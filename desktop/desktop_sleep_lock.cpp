// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/desktop_sleep_lock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QVariantMap>

#include <optional>

namespace desktop
{

namespace
{

constexpr int longestWaitMs = 2000;
constexpr uint suspend = 4; // of the portal's flags

// Connections are known by name throughout the process.
class Bus
{
public:
    explicit Bus(const Text& address)
    {
        if (!address.empty())
            QDBusConnection::connectToBus(QString::fromStdString(address), name_);
    }
    ~Bus() { QDBusConnection::disconnectFromBus(name_); }
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    // The first value of the answer.
    QVariant ask(QDBusMessage call, const QVariantList& arguments) const
    {
        call.setArguments(arguments);
        return QDBusConnection(name_).call(call, QDBus::Block, longestWaitMs).arguments().value(0);
    }

private:
    QString name_ = QStringLiteral("velmora-sleep-%1").arg(reinterpret_cast<quintptr>(this));
};

QDBusUnixFileDescriptor loginLock(const Bus& system, const QString& reason)
{
    const auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    return qvariant_cast<QDBusUnixFileDescriptor>(system.ask(
        call, {QStringLiteral("sleep"), QStringLiteral("Velmora"), reason, QStringLiteral("block")}));
}

void askPortal(const Bus& session, const QString& reason)
{
    const auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    session.ask(call, {QString(), suspend, QVariantMap{{QStringLiteral("reason"), reason}}});
}

// Holds until it goes: the login manager waits for the descriptor to be closed, the portal for its caller to
// leave the bus.
class HeldLock
{
public:
    HeldLock(const Text& systemBus, const Text& sessionBus, const Text& reason) :
        login_(loginLock(Bus(systemBus), QString::fromStdString(reason)))
    {
        if (!login_.isValid())
            askPortal(session_.emplace(sessionBus), QString::fromStdString(reason));
    }

private:
    QDBusUnixFileDescriptor login_;
    std::optional<Bus> session_;
};

}

DesktopSleepLock::~DesktopSleepLock()
{
    {
        const std::lock_guard guard(mutex_);
        ending_ = true;
    }
    changed_.notify_one();
    if (asker_.joinable())
        asker_.join();
}

void DesktopSleepLock::begin(const Text& reason)
{
    const std::lock_guard guard(mutex_);
    reason_ = reason;
    ++wanted_;
    if (!asker_.joinable())
        asker_ = std::thread(&DesktopSleepLock::keepStep, this);
    changed_.notify_one();
}

void DesktopSleepLock::end()
{
    const std::lock_guard guard(mutex_);
    --wanted_;
    changed_.notify_one();
}

// One lock serves whatever is wanted at the same time. A desktop that gives none is not asked again before
// everything has ended.
void DesktopSleepLock::keepStep()
{
    std::optional<HeldLock> held;
    std::unique_lock guard(mutex_);
    while (!ending_) {
        const bool isWanted = wanted_ > 0;
        if (isWanted == held.has_value()) {
            changed_.wait(guard);
            continue;
        }
        const Text reason = reason_;
        guard.unlock();
        if (isWanted)
            held.emplace(systemBus_, sessionBus_, reason);
        else
            held.reset();
        guard.lock();
    }
}

}
