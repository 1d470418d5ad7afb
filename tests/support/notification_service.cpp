// SPDX-License-Identifier: GPL-3.0-or-later
// A desktop's notification service for tests: notification_service BUS [ABILITY...]. Prints "ready", then a
// line for each notification, until it is killed.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <cstdio>

namespace
{

void print(const QString& line)
{
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

class NotificationService : public QDBusVirtualObject
{
public:
    explicit NotificationService(QStringList abilities) : abilities_(std::move(abilities)) {}

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        const auto arguments = message.arguments();
        if (message.member() == QLatin1String("GetCapabilities"))
            return connection.send(message.createReply(abilities_));
        if (message.member() != QLatin1String("Notify") ||
            message.signature() != QLatin1String("susssasa{sv}i"))
            return false;
        print(arguments[0].toString() + '|' + arguments[3].toString() + '|' + arguments[4].toString());
        return connection.send(message.createReply(1U));
    }

private:
    QStringList abilities_;
};

}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    auto bus = QDBusConnection::connectToBus(application.arguments().value(1), QStringLiteral("service"));
    NotificationService service(application.arguments().mid(2));
    if (!bus.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), &service) ||
        !bus.registerService(QStringLiteral("org.freedesktop.Notifications")))
        return 1;
    print(QStringLiteral("ready"));
    return application.exec();
}
