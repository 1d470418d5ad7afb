// SPDX-License-Identifier: GPL-3.0-or-later
// Ticks a hundred times, for bench/instructions.py to count what that costs: tick_bench rest|playing ROWS.
#include "program.h"
#include "support/real_parts.h"
#include "support/wait_until.h"

#include <QApplication>
#include <cstdlib>
#include <iostream>

// By this name the counting begins and ends.
extern "C" [[gnu::noinline]] void hundredTicks(StartUp& player, PlayListEditor& list)
{
    for (int time = 0; time < 100; ++time)
        tick(player, list);
}

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "tick_bench rest|playing ROWS\n";
        return 2;
    }
    const bool plays = Text(argv[1]) == "playing";
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    RealParts parts;
    Program program(parts);
    StartUp& player = program.startUp();
    PlayListEditor& list = program.playListEditor();
    for (int row = 0; row < std::atoi(argv[2]); ++row)
        list.PlayListLB.AddItem("/music/" + std::to_string(row) + " - A Song With a Name.mp3");
    list.Show();
    player.OpenSaveDialog1->setFilterIndex(2);
    if (plays) {
        const Text song = parts.place / "song.mp3";
        putFile(song, mp3Bytes(noise(10 * 44100)));
        player.Mp3Player->Open(song, "");
        player.Mp3Player->Play();
        waitUntil([&] { return player.Mp3Player->CurrentFrame() > 2; });
    }
    tick(player, list);
    QApplication::processEvents();
    tick(player, list);
    hundredTicks(player, list);
    return plays == (player.Mp3Player->IsPlaying() != 0) ? 0 : 1;
}
