// SPDX-License-Identifier: GPL-3.0-or-later
// Copies tracks of a disc image to WAV files, for a bench that measures it from outside:
// rip_bench SHEET FIRST LAST FOLDER.
#include "tests/support/disc_desk.h"

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::cerr << "rip_bench SHEET FIRST LAST FOLDER\n";
        return 2;
    }
    PlayedWindow window;
    ToldShell shell;
    RememberedParts parts;
    CountedSleepLock sleepLock;
    const auto devices = std::make_shared<disc::BusyDevices>();
    const std::vector<std::shared_ptr<disc::ReaderDrive>> drives{disc::makeImageDrive(argv[1])};
    const auto table =
        std::make_shared<disc::ReaderTable>(std::vector<disc::ListReaders>{[&] { return drives; }}, devices);
    const auto reader = disc::makeDiscReader(table, devices, window, shell, parts, sleepLock);
    Heard<ACD> heard{window, *reader};
    for (int track = std::atoi(argv[2]); track <= std::atoi(argv[3]); ++track) {
        heard.done = 0;
        const Text path = Text(argv[4]) + "/Track" + std::to_string(track) + ".wav";
        if (reader->ReadTrack(static_cast<std::int16_t>(track), path) != 0 || !heard.end())
            return 1;
    }
    for (const Text& told : shell.told())
        std::cerr << told << '\n';
    return shell.told().empty() ? 0 : 1;
}
