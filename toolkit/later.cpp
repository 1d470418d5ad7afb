// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/later.h"

#include <QMetaObject>
#include <utility>

void later(QObject* context, std::function<void()> call)
{
#ifndef __clang_analyzer__ // it takes what the window library keeps until then for a leak
    QMetaObject::invokeMethod(context, std::move(call), Qt::QueuedConnection);
#endif
}
