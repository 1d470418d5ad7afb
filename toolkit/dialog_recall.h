// SPDX-License-Identifier: GPL-3.0-or-later
// Brings a minimised dialog back when the keys come to a window that waits behind it, and that answers
// nothing as long as it waits. A dialog asks for no minimise, but not every window manager heeds that. For
// the toolkit's own sources alone.
#pragma once

#include <QAbstractNativeEventFilter>

class QEvent;
class QObject;

class DialogRecall final : private QAbstractNativeEventFilter
{
public:
    explicit DialogRecall(QObject& life);

    // Each event of the program passes here.
    void saw(const QEvent& event);

private:
    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;
    void recall();

    QObject& life_;
    bool hasKeys_ = false; // a window of the program's has, also one whose keys nobody hears of
};
