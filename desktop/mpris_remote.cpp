// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/mpris_remote.h"

#include "desktop/bus_presence.h"
#include "desktop/mpris_interface.h"
#include "platform/numbers.h"
#include "platform/post.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <algorithm>
#include <optional>
#include <unistd.h>
#include <utility>

namespace desktop
{

namespace
{

constexpr int patienceWithBus = 1000; // milliseconds

constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

// A box or a dialog has the program to itself, as it has against the mouse: what began behind a file dialog
// would hold up its answer.
enum class BehindBoxes { waits, runs };

struct BusCommand {
    const char* interface;
    const char* member;
    const char* signature;
    BehindBoxes behindBoxes;
    void (*raise)(const MediaRemote&, const QVariantList&);
};

std::int64_t millisecondsIn(const QVariant& microseconds) { return microseconds.toLongLong() / 1000; }

void seek(const MediaRemote& remote, const QVariantList& arguments)
{
    remote.Seek.raise(millisecondsIn(arguments[0]));
}

// A place before the start is none, however near.
void setPosition(const MediaRemote& remote, const QVariantList& arguments)
{
    if (arguments[1].toLongLong() >= 0)
        remote.SetPosition.raise(mpris::trackOf(arguments[0].value<QDBusObjectPath>().path()),
                                 millisecondsIn(arguments[1]));
}

template <Event<> MediaRemote::*event>
void plainly(const MediaRemote& remote, const QVariantList&)
{
    (remote.*event).raise();
}

using enum BehindBoxes;

// clang-format off
constexpr BusCommand commands[] = {
    {mpris::player, "Play",        "",   waits, plainly<&MediaRemote::Play>},
    {mpris::player, "Pause",       "",   waits, plainly<&MediaRemote::Pause>},
    {mpris::player, "PlayPause",   "",   waits, plainly<&MediaRemote::PlayPause>},
    {mpris::player, "Stop",        "",   waits, plainly<&MediaRemote::Stop>},
    {mpris::player, "Next",        "",   waits, plainly<&MediaRemote::Next>},
    {mpris::player, "Previous",    "",   waits, plainly<&MediaRemote::Previous>},
    {mpris::player, "Seek",        "x",  waits, seek},
    {mpris::player, "SetPosition", "ox", waits, setPosition},
    {mpris::root,   "Raise",       "",   runs,  plainly<&MediaRemote::Raise>},
    {mpris::root,   "Quit",        "",   runs,  plainly<&MediaRemote::Quit>},
};
// clang-format on

// A second copy of the program gets a name of its own.
BusPlace placeOnBus()
{
    const QString service = "org.mpris.MediaPlayer2.velmora";
    return {
        "velmora-remote", mpris::objectPath, {service, QString("%1.instance%2").arg(service).arg(getpid())}};
}

// A caller may leave the interface out.
bool isFor(const QDBusMessage& message, const char* interface)
{
    return message.interface().isEmpty() || message.interface() == interface;
}

const BusCommand* commandOf(const QDBusMessage& message)
{
    for (const auto& command : commands)
        if (message.member() == command.member && isFor(message, command.interface))
            return &command;
    return nullptr;
}

struct PropertyCall {
    const char* member;
    const char* signature;
};

constexpr PropertyCall questions[] = {{"Get", "ss"}, {"GetAll", "s"}, {"Set", "ssv"}};

const PropertyCall* questionOf(const QDBusMessage& message)
{
    for (const auto& question : questions)
        if (message.member() == question.member)
            return &question;
    return nullptr;
}

QDBusMessage refusal(const QDBusMessage& message, QDBusError::ErrorType error, const QString& what)
{
    return message.createErrorReply(error, what);
}

bool hasBox() { return QApplication::activeModalWidget() != nullptr; }

std::int32_t percentOf(double volume)
{
    return volume > 0 ? roundToInteger32(std::min(volume, 1.0) * 100) : 0;
}

class MprisRemote final : public MediaRemote, private QDBusVirtualObject
{
public:
    MprisRemote(const Text& address, Post& post) : address_(address), post_(post) {}

    void show(const Shown& now, std::int32_t place) override
    {
        if (address_.empty())
            return;
        now_ = now;
        place_ = place;
        if (wantedVolume_ && !hasBox())
            post_.post([this] { setWantedVolume(); });
        if (!presence_)
            presence_.emplace(address_, placeOnBus(), static_cast<QDBusVirtualObject&>(*this));
        if (presence_->bus() && told_ != now_)
            tellChange();
    }

    void jumped(std::int32_t place) override
    {
        tell(mpris::player, "Seeked", {static_cast<qlonglong>(mpris::microseconds(place))});
    }

private:
    void tell(const char* interface, const char* signal, const QVariantList& arguments)
    {
        auto message = QDBusMessage::createSignal(mpris::objectPath, interface, signal);
        message.setArguments(arguments);
        if (const auto bus = presence_ ? presence_->bus() : std::nullopt)
            bus->send(message);
    }

    void tellChange()
    {
        QVariantMap changes = mpris::changingProperties(now_);
        const QVariantMap before = told_ ? mpris::changingProperties(*told_) : QVariantMap();
        for (auto entry = before.begin(); entry != before.end(); ++entry)
            if (changes[entry.key()] == entry.value())
                changes.remove(entry.key());
        told_ = now_;
        if (!changes.isEmpty())
            tell(propertiesInterface, "PropertiesChanged", {mpris::player, changes, QStringList()});
    }

    QString introspect(const QString& path) const override
    {
        return path == mpris::objectPath ? mpris::introspection : QString();
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        Asked.raise();
        const QString interface = message.interface();
        if (interface == propertiesInterface)
            return bus.send(answerAboutProperties(message));
        if (const auto* command = commandOf(message))
            return answersAndCarriesOut(*command, message, bus);
        if (isFor(message, mpris::root) || isFor(message, mpris::player))
            return bus.send(refusal(message, QDBusError::UnknownMethod, message.member()));
        if (interface.startsWith("org.freedesktop.DBus."))
            return false; // the library's own to answer
        return bus.send(refusal(message, QDBusError::UnknownInterface, interface));
    }

    bool answersAndCarriesOut(const BusCommand& command, const QDBusMessage& message,
                              const QDBusConnection& bus)
    {
        const QDBusMessage answer = answerTo(command, message);
        const bool isSent = bus.send(answer);
        if (answer.type() == QDBusMessage::ErrorMessage)
            return isSent;
        if (message.member() == "Quit")
            carryOutBehindAnswers(command, bus);
        else
            carryOut(command, message.arguments());
        return isSent;
    }

    QDBusMessage answerTo(const BusCommand& command, const QDBusMessage& message) const
    {
        if (message.signature() != command.signature)
            return refusal(message, QDBusError::InvalidArgs, message.signature());
        if (message.member() == "PlayPause" && now_.path.empty())
            return refusal(message, QDBusError::Failed, "No file is open");
        return message.createReply();
    }

    void carryOut(const BusCommand& command, const QVariantList& arguments)
    {
        post_.post([this, command, arguments] {
            if (command.behindBoxes == runs || !hasBox())
                command.raise(*this, arguments);
        });
    }

    // The process that ends takes along what has not left it yet: the bus is asked something behind the
    // answer.
    void carryOutBehindAnswers(const BusCommand& command, const QDBusConnection& bus)
    {
        const auto ping = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                         "org.freedesktop.DBus.Peer", "Ping");
        const auto* answered = new QDBusPendingCallWatcher(bus.asyncCall(ping, patienceWithBus), this);
        connect(answered, &QDBusPendingCallWatcher::finished, this, [this, command](auto* watcher) {
            watcher->deleteLater();
            carryOut(command, {});
        });
    }

    QDBusMessage answerAboutProperties(const QDBusMessage& message)
    {
        const auto* question = questionOf(message);
        if (!question)
            return refusal(message, QDBusError::UnknownMethod, message.member());
        if (message.signature() != question->signature)
            return refusal(message, QDBusError::InvalidArgs, message.signature());
        const QString interface = message.arguments()[0].toString();
        if (interface != mpris::root && interface != mpris::player)
            return refusal(message, QDBusError::UnknownInterface, interface);
        const QVariantMap all =
            interface == mpris::root ? mpris::rootProperties() : mpris::playerProperties(now_, place_);
        if (question->member == Text("GetAll"))
            return message.createReply(QVariant(all));
        const QString name = message.arguments()[1].toString();
        if (!all.contains(name))
            return refusal(message, QDBusError::UnknownProperty, name);
        if (question->member == Text("Set"))
            return answerToSetting(name, message);
        return message.createReply(QVariant::fromValue(QDBusVariant(all[name])));
    }

    QDBusMessage answerToSetting(const QString& name, const QDBusMessage& message)
    {
        if (name != "Volume" && name != "Rate")
            return refusal(message, QDBusError::PropertyReadOnly, name);
        const QVariant value = message.arguments()[2].value<QDBusVariant>().variant();
        if (value.typeId() != QMetaType::Double)
            return refusal(message, QDBusError::InvalidArgs, name);
        const double wanted = value.toDouble();
        if (name == "Volume")
            post_.post([this, wanted] {
                wantedVolume_ = percentOf(wanted);
                setWantedVolume();
            });
        if (name == "Rate" && wanted == 0) // no speed but one is had, and none at all is a pause
            post_.post([this] {
                if (!hasBox())
                    Pause.raise();
            });
        return message.createReply();
    }

    // Behind a box it has time: setting it may look for a file to play, and ask once more where there is
    // none.
    void setWantedVolume()
    {
        if (wantedVolume_ && !hasBox())
            SetVolume.raise(*std::exchange(wantedVolume_, std::nullopt));
    }

    const Text address_;
    Post& post_;
    Shown now_;
    std::int32_t place_ = 0; // milliseconds
    std::optional<Shown> told_;
    std::optional<std::int32_t> wantedVolume_; // percent
    std::optional<BusPresence> presence_;      // the last member: it ends first
};

}

std::unique_ptr<MediaRemote> makeMprisRemote(const Text& busAddress, Post& post)
{
    return std::make_unique<MprisRemote>(busAddress, post);
}

}
