// SPDX-License-Identifier: GPL-3.0-or-later
// How the program looks and where its windows appear, before the first one does.
#pragma once

namespace desktop
{

// The command line that the window library gets: the program's name, and which window system to take. X11
// first, also on a Wayland session: the windows there can be placed, and docking needs that. A choice in the
// environment stands. What the user's own command line holds is read by nobody.
class LibraryArguments
{
public:
    explicit LibraryArguments(char* program);

    int& count() { return count_; }
    char** values() { return values_; }

private:
    int count_ = 1;
    char* values_[4] = {};
};

// Where no display answers, the process says so and ends with status 1 instead of running unseen.
void requireDisplay();

// What desktops know the program by: its menu entry, its icon, its windows, its media controls.
inline constexpr const char* applicationId = "org.velmora.Velmora";

// Name, icon, colours and type.
void dressApplication();

// What a desktop asks of all programs' looks. What it does not say is as usual.
struct DesktopWishes {
    bool highContrast = false;
    double typeFactor = 1;

    bool operator==(const DesktopWishes&) const = default;
};

// The colours and the type by those wishes, in windows that show as well.
void dressFor(const DesktopWishes& wishes);

}
