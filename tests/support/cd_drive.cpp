// SPDX-License-Identifier: GPL-3.0-or-later
// A CD drive for the program on the desk, which takes its time, with a blank disc in it: cd_drive. Prints the
// folder that it lives in. Each line that it reads closes its tray, which it confirms; it goes when there are
// no more.
#include "tests/support/simulated_drive.h"

#include <iostream>

int main()
{
    SimulatedDrive drive;
    drive.change([](simulated::Drive& state) { state.millisecondsToRead = state.millisecondsToWrite = 2; });
    drive.insertBlank();
    std::cout << std::getenv(simulated::folderVariable) << std::endl;
    for (Text line; std::getline(std::cin, line);) {
        drive.change([](simulated::Drive& state) {
            state.trayIsOpen = false;
            state.hasNewMedium = true;
        });
        std::cout << "closed" << std::endl;
    }
}
