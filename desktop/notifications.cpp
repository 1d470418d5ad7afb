// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/notifications.h"

#include "desktop/appearance.h"
#include "platform/mutex.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include <cstdio>
#include <deque>

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

// What waits to be delivered. The first stays until the service has answered: the program's end may come
// before.
struct Notifications::Outbox {
    struct Notification {
        Text title;
        Text message;

        void say() const { std::fprintf(stderr, "Velmora: %s: %s\n", title.c_str(), message.c_str()); }
    };

    explicit Outbox(const Text& busAddress) : service(busAddress) {}

    void add(Notification one)
    {
        const Lock lock(mutex);
        waiting.push_back(std::move(one));
    }

    void deliverFirst()
    {
        Lock lock(mutex);
        if (waiting.empty())
            return;
        const Notification first = waiting.front();
        lock.unlock();
        const bool isTaken = service.notify(first.title, first.message);
        lock.lock();
        if (waiting.empty())
            return;
        waiting.pop_front();
        if (!isTaken)
            first.say();
    }

    void sayRest()
    {
        const Lock lock(mutex);
        for (const Notification& one : waiting)
            one.say();
        waiting.clear();
    }

    const NotificationService service;
    Mutex mutex;
    std::deque<Notification> waiting GUARDED_BY(mutex);
};

Notifications::Notifications(const Text& busAddress) : outbox_(std::make_shared<Outbox>(busAddress)) {}

Notifications::~Notifications()
{
    if (!worker_.isDoneBy(std::chrono::steady_clock::now() + patienceAtEnd))
        outbox_->sayRest();
}

void Notifications::post(const Text& title, const Text& message)
{
    outbox_->add({title, message});
    worker_.add([outbox = outbox_](const std::stop_token&) { outbox->deliverFirst(); });
}

}
