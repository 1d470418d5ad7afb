// SPDX-License-Identifier: GPL-3.0-or-later
// A desktop's services that keep the system awake, for tests: sleep_service BUS login|portal. Prints "ready",
// then a line for each lock that is asked for and one when it is let go, until it is killed.
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QSocketNotifier>
#include <QVariantMap>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace
{

void print(const QString& line)
{
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

class SleepService : public QDBusVirtualObject
{
public:
    explicit SleepService(const QDBusConnection& bus)
    {
        watcher_.setConnection(bus);
        watcher_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        QObject::connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this,
                         [] { print(QStringLiteral("let go")); });
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() != QLatin1String("Inhibit"))
            return false;
        if (message.signature() == QLatin1String("ssss"))
            return connection.send(message.createReply(loginLock(message.arguments())));
        if (message.signature() == QLatin1String("sua{sv}"))
            return connection.send(message.createReply(portalLock(message)));
        return false;
    }

private:
    // The other end of a pipe, as the login manager gives it: the pipe closes with the lock.
    QVariant loginLock(const QVariantList& arguments)
    {
        print(arguments[0].toString() + '|' + arguments[1].toString() + '|' + arguments[2].toString() + '|' +
              arguments[3].toString());
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            return {};
        auto* const closed = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
        QObject::connect(closed, &QSocketNotifier::activated, closed, [closed] {
            print(QStringLiteral("let go"));
            closed->setEnabled(false);
        });
        QDBusUnixFileDescriptor lock;
        lock.giveFileDescriptor(ends[1]);
        return QVariant::fromValue(lock);
    }

    QVariant portalLock(const QDBusMessage& message)
    {
        QVariantMap options;
        message.arguments()[2].value<QDBusArgument>() >> options;
        print(message.arguments()[1].toString() + '|' + options[QStringLiteral("reason")].toString());
        watcher_.addWatchedService(message.service());
        return QVariant::fromValue(QDBusObjectPath(QStringLiteral("/request")));
    }

    QDBusServiceWatcher watcher_;
};

}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    auto bus = QDBusConnection::connectToBus(application.arguments().value(1), QStringLiteral("service"));
    const bool isLogin = application.arguments().value(2) == QLatin1String("login");
    SleepService service(bus);
    const auto name =
        isLogin ? QStringLiteral("org.freedesktop.login1") : QStringLiteral("org.freedesktop.portal.Desktop");
    const auto object = isLogin ? QStringLiteral("/org/freedesktop/login1")
                                : QStringLiteral("/org/freedesktop/portal/desktop");
    if (!bus.registerVirtualObject(object, &service) || !bus.registerService(name))
        return 1;
    print(QStringLiteral("ready"));
    return application.exec();
}
