// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fire/flows.h"

#include "engines/disc/title_cache.h"
#include "tests/support/disc_desk.h"
#include "tests/support/window_thread.h"

namespace
{

constexpr std::int64_t trackBytes = 20 * bytesOfSector;

disc::DiscFolders foldersOf(const Places& places) { return {places.music, places.home}; }

// Reader and writer as the program makes them, where there are no drives.
struct Desk {
    explicit Desk(Ground& ground) : on(ground) {}

    std::unique_ptr<ACD> reader()
    {
        const auto table = std::make_shared<disc::ReaderTable>(
            std::vector<disc::ListReaders>{disc::imagesIn(foldersOf(on.places))}, devices);
        return disc::makeDiscReader(table, devices, window, on.shell, *on.notes, sleepLock);
    }

    std::unique_ptr<ACDWRITE> writer()
    {
        const auto noRecorders = [] { return std::vector<std::shared_ptr<disc::WriterDrive>>(); };
        return disc::makeDiscWriter(noRecorders, disc::makeImageRecorder(foldersOf(on.places), *on.notes),
                                    devices, window, on.shell, sleepLock);
    }

    Ground& on;
    WindowThread window;
    CountedSleepLock sleepLock;
    std::shared_ptr<disc::BusyDevices> devices = std::make_shared<disc::BusyDevices>();
};

// Of two tracks the first has its target already.
void furnishRip(const Places& places)
{
    const Text discs = foldersOf(places).toWrite();
    std::filesystem::create_directory(discs);
    putFile(discs + "/disc.bin", noise(2 * trackBytes));
    putFile(discs + "/disc.cue", sheetOf("disc.bin", {"00:00:00", "00:00:20"}));
    putFile(places.output + "/Track01.wav", "an old track");
}

void rip(Ground& ground)
{
    Desk desk(ground);
    const auto reader = desk.reader();
    reader->Init();
    for (std::int16_t track = 1; track <= reader->TrackCount(); ++track) {
        bool isDone = false;
        reader->Done.calls([&] { isDone = true; });
        reader->ReadTrack(track, ground.places.output + "/Track0" + std::to_string(track) + ".wav");
        desk.window.runUntil([&] { return isDone; });
    }
}

void furnishImage(const Places& places)
{
    for (const char* name : {"/a.wav", "/b.wav"})
        putFile(places.output + name, wavFile(noise(trackBytes, static_cast<std::uint64_t>(name[1]))));
}

void image(Ground& ground)
{
    Desk desk(ground);
    const auto writer = desk.writer();
    writer->Init();
    for (const char* name : {"/a.wav", "/b.wav"})
        writer->AddTrack(ground.places.output + name, 0);
    bool isDone = false;
    writer->Done.calls([&](std::int16_t) { isDone = true; });
    if (writer->CheckMedia() == 0 && writer->Write() == 0)
        desk.window.runUntil([&] { return isDone; });
}

const disc::DiscContents contents{{{true, 0, 1000}, {true, 1000, 2000}}, 3000};

void furnishTitles(const Places& places)
{
    disc::TitleCache(places.cache + "/titles").keep(contents, "an old answer");
}

void titles(Ground& ground)
{
    const disc::TitleCache cache(ground.places.cache + "/titles", ground.notes);
    cache.keep(contents, "a new answer");
}

}

const Flows discFlows{
    {"rip", furnishRip, rip},
    {"image", furnishImage, image},
    {"titles", furnishTitles, titles},
};
