// SPDX-License-Identifier: GPL-3.0-or-later
// What is done behind the events that have come already. For the toolkit's own sources.
#pragma once

#include <functional>

class QObject;

// Runs `call` on the thread of `context`, and never once that has gone. From any thread.
void later(QObject* context, std::function<void()> call);
