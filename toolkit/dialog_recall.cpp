// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/dialog_recall.h"

#include "toolkit/come_back.h"
#include "toolkit/later.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <xcb/xcb.h>

DialogRecall::DialogRecall(QObject& life) : life_(life)
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

void DialogRecall::saw(const QEvent& event)
{
    if (event.type() == QEvent::WindowStateChange)
        recall();
}

// The library keeps quiet about the keys of a window that waits behind a dialog: it passes them on to the
// dialog, which hears nothing of that while it is minimised.
bool DialogRecall::nativeEventFilter(const QByteArray& kind, void* message, qintptr*)
{
    if (kind != "xcb_generic_event_t")
        return false;
    constexpr int sentByClient = 0x80;
    const int type = static_cast<const xcb_generic_event_t*>(message)->response_type & ~sentByClient;
    if (type == XCB_FOCUS_IN || type == XCB_FOCUS_OUT)
        hasKeys_ = type == XCB_FOCUS_IN;
    if (type == XCB_FOCUS_IN)
        recall();
    return false;
}

// The word that the dialog is minimised may come before the keys, and behind them.
void DialogRecall::recall()
{
    later(&life_, [this] {
        QWidget* const dialog = QApplication::activeModalWidget();
        if (!hasKeys_ || !dialog || !dialog->isMinimized())
            return;
        for (QWidget* window = dialog; window; window = window->parentWidget())
            comeBack(*window->window());
        dialog->raise();
        dialog->activateWindow();
    });
}
