// SPDX-License-Identifier: GPL-3.0-or-later
// An object of the program on a bus, under a name that others find it by. The bus is met on a thread that is
// left behind when the bus does not answer.
#pragma once

#include "platform/text.h"
#include "platform/thread.h"

#include <QDBusConnection>
#include <QStringList>

#include <memory>
#include <optional>

class QDBusVirtualObject;

namespace desktop
{

struct BusPlace {
    QString connection; // known by this name throughout the process
    QString path;
    QStringList services; // the first that is free
};

// Drops the connection of that name, in no more time than nobody notices.
void leaveBus(const QString& connection);

class BusPresence
{
public:
    // `object` is called, on this thread, for as long as this lives.
    BusPresence(const Text& busAddress, BusPlace place, QDBusVirtualObject& object);
    ~BusPresence(); // never waits longer than nobody notices

    // Once others find the object.
    std::optional<QDBusConnection> bus() const;

private:
    struct BusMeeting;

    std::shared_ptr<BusMeeting> meeting_;
    Thread thread_;
};

}
