// How the program looks and where its windows appear, before the first one does.
#pragma once

// X11 first, also on a Wayland session: the windows there can be placed, and docking needs that. The user's
// own choice stands. Without any display the process says so and ends with status 1.
void chooseWindowSystem();

// Name, icon, colours and type.
void dressApplication();
