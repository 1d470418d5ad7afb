// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/bus_presence.h"

#include "files/errand.h"
#include "platform/mutex.h"
#include "platform/worker.h"
#include "toolkit/qt_bridge.h"

#include <QDBusVirtualObject>

#include <utility>

namespace desktop
{

// The library holds every caller while it meets a bus, whichever.
void leaveBus(const QString& connection)
{
    files::Errand<bool> leaving([connection] {
        QDBusConnection::disconnectFromBus(connection);
        return true;
    });
    leaving.result(patienceAtEnd);
}

// What the thread holds; any call to the bus may hang it.
struct BusPresence::BusMeeting {
    BusMeeting(const Text& busAddress, BusPlace where, QDBusVirtualObject& whose) :
        address(shown(busAddress)), place(std::move(where)), object(&whose)
    {
    }

    void run()
    {
        auto connection = QDBusConnection::connectToBus(address, place.connection);
        if (!enter(connection))
            return;
        for (const QString& service : place.services)
            if (connection.registerService(service))
                break;
        const Lock lock(mutex);
        if (connection.isConnected())
            bus = connection;
    }

    // False when nobody wants to be there any more.
    bool enter(QDBusConnection& connection)
    {
        const Lock lock(mutex);
        return object && connection.registerVirtualObject(place.path, object);
    }

    void leave()
    {
        const Lock lock(mutex);
        object = nullptr;
        bus = std::nullopt;
    }

    const QString address;
    const BusPlace place;
    Mutex mutex;
    QDBusVirtualObject* object GUARDED_BY(mutex);
    std::optional<QDBusConnection> bus GUARDED_BY(mutex);
};

BusPresence::BusPresence(const Text& busAddress, BusPlace place, QDBusVirtualObject& object) :
    meeting_(std::make_shared<BusMeeting>(busAddress, std::move(place), object)),
    thread_([meeting = meeting_] { meeting->run(); })
{
}

BusPresence::~BusPresence()
{
    meeting_->leave();
    leaveBus(meeting_->place.connection);
}

std::optional<QDBusConnection> BusPresence::bus() const
{
    const Lock lock(meeting_->mutex);
    return meeting_->bus;
}

}
