// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/notifications.h"

#include "desktop/appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include <cstdio>

namespace desktop
{

namespace
{

constexpr int longestWaitMs = 2000;
constexpr QLatin1String service("org.freedesktop.Notifications");
constexpr QLatin1String object("/org/freedesktop/Notifications");

class NotificationService
{
public:
    explicit NotificationService(const Text& busAddress) : address_(QString::fromStdString(busAddress)) {}
    ~NotificationService() { QDBusConnection::disconnectFromBus(name_); }

    bool notify(const Text& title, const Text& message) const
    {
        return connected() && isTaken(title, message);
    }

private:
    // A connection that was lost is still known by its name, and given out again until it is dropped.
    bool connected() const
    {
        for (int tries = 0; tries < 2 && !address_.isEmpty(); ++tries) {
            if (QDBusConnection::connectToBus(address_, name_).isConnected())
                return true;
            QDBusConnection::disconnectFromBus(name_);
        }
        return false;
    }

    QDBusMessage answer(const QString& method, const QVariantList& arguments) const
    {
        auto call = QDBusMessage::createMethodCall(service, object, service, method);
        call.setArguments(arguments);
        return QDBusConnection(name_).call(call, QDBus::Block, longestWaitMs);
    }

    bool takesMarkup() const
    {
        const auto abilities = answer(QStringLiteral("GetCapabilities"), {}).arguments();
        return abilities.value(0).toStringList().contains(QStringLiteral("body-markup"));
    }

    // Names of files hold `&` and `<`: a server that takes markup would take them for that.
    bool isTaken(const Text& title, const Text& message) const
    {
        const auto plain = QString::fromStdString(message);
        const QString body = takesMarkup() ? plain.toHtmlEscaped() : plain;
        const auto reply = answer(QStringLiteral("Notify"),
                                  {QStringLiteral("Velmora"), 0U, QString(applicationId),
                                   QString::fromStdString(title), body, QStringList(), QVariantMap(), -1});
        return reply.type() == QDBusMessage::ReplyMessage;
    }

    QString address_;
    // Connections are known by name throughout the process.
    QString name_ = QStringLiteral("velmora-notifications-%1").arg(reinterpret_cast<quintptr>(this));
};

}

bool isNotified(const Text& busAddress, const Text& title, const Text& message)
{
    return NotificationService(busAddress).notify(title, message);
}

Notifications::~Notifications()
{
    {
        const std::lock_guard guard(mutex_);
        ending_ = true;
    }
    changed_.notify_one();
    if (deliverer_.joinable())
        deliverer_.join();
}

void Notifications::post(const Text& title, const Text& message)
{
    const std::lock_guard guard(mutex_);
    waiting_.push_back({title, message});
    if (!deliverer_.joinable())
        deliverer_ = std::thread(&Notifications::deliverAll, this);
    changed_.notify_one();
}

bool Notifications::next(Notification& notification)
{
    std::unique_lock guard(mutex_);
    changed_.wait(guard, [this] { return ending_ || !waiting_.empty(); });
    if (waiting_.empty())
        return false;
    notification = std::move(waiting_.front());
    waiting_.pop_front();
    return true;
}

bool Notifications::isEnding()
{
    const std::lock_guard guard(mutex_);
    return ending_;
}

// The program's end waits for a service that does not answer once, not for each notification.
void Notifications::deliverAll()
{
    const NotificationService service(busAddress_);
    bool taken = true;
    for (Notification one; next(one);) {
        taken = (taken || !isEnding()) && service.notify(one.title, one.message);
        if (!taken)
            std::fprintf(stderr, "Velmora: %s: %s\n", one.title.c_str(), one.message.c_str());
    }
}

}
