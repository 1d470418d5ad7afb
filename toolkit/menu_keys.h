// SPDX-License-Identifier: GPL-3.0-or-later
// F10, the Menu key and Alt alone open the menu of a window that has no menu bar. For the toolkit's own
// sources alone.
#pragma once

class QEvent;
class QKeyEvent;

namespace ctl
{

class MenuKeys
{
public:
    enum class Handling { pass, swallow, open };

    // All that the window hears passes here first.
    Handling saw(const QEvent& event);

private:
    Handling pressed(const QKeyEvent& key);
    Handling released(const QKeyEvent& key);

    bool altAlone_ = false; // Alt is down, and nothing else has happened since
};

}
