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
    DiscDesk desk;
    desk.readers = {makeImageDrive(argv[1])};
    const auto reader = desk.reader();
    Heard<ACD> heard{desk.window, *reader};
    for (int track = std::atoi(argv[2]); track <= std::atoi(argv[3]); ++track) {
        heard.done = 0;
        const Text path = Text(argv[4]) + "/Track" + std::to_string(track) + ".wav";
        if (reader->ReadTrack(static_cast<std::int16_t>(track), path) != 0 || !heard.end())
            return 1;
    }
    for (const Text& told : desk.shell.told())
        std::cerr << told << '\n';
    return desk.shell.told().empty() ? 0 : 1;
}
