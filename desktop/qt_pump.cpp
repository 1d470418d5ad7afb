// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_pump.h"

#include <QCoreApplication>
#include <unistd.h>

namespace desktop
{

void QtPump::turn()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtPump::standStill()
{
    for (;;)
        pause();
}

}
