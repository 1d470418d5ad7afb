// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/desktop_sleep_lock.h"

#include "platform/mutex.h"
#include "platform/out_of_memory.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QVariantMap>

#include <atomic>
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

// One lock serves whatever is wanted at the same time. A desktop that gives none is not asked again before
// everything has ended.
struct DesktopSleepLock::Asker {
    Asker(Text system, Text session) : systemBus(std::move(system)), sessionBus(std::move(session)) {}

    void keepStep()
    {
        if (wanted == 0)
            held.reset();
        else if (!held)
            held.emplace(systemBus, sessionBus, reasonNow());
    }

    Text reasonNow()
    {
        const Lock lock(mutex);
        return reason;
    }

    const Text systemBus;
    const Text sessionBus;
    std::atomic<int> wanted = 0;
    Mutex mutex;
    Text reason GUARDED_BY(mutex);
    std::optional<HeldLock> held; // the worker's own
};

DesktopSleepLock::DesktopSleepLock(const Text& systemBus, const Text& sessionBus) :
    asker_(std::make_shared<Asker>(systemBus, sessionBus))
{
}

DesktopSleepLock::~DesktopSleepLock() = default;

void DesktopSleepLock::begin(const Text& reason)
{
    persisting([&] {
        const Lock lock(asker_->mutex);
        asker_->reason = reason;
    });
    ++asker_->wanted;
    keepStep();
}

void DesktopSleepLock::end()
{
    --asker_->wanted;
    keepStep();
}

// A lock that nobody lets go would keep the system awake for ever.
void DesktopSleepLock::keepStep()
{
    persisting([this] { worker_.add([asker = asker_](const std::stop_token&) { asker->keepStep(); }); });
}

}
