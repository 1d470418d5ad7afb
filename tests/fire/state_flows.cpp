// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fire/flows.h"

#include "desktop/sqlite_store.h"
#include "files/disk_profile_file.h"
#include "files/disk_text_files.h"
#include "tests/support/files.h"
#include "toolkit/kept_pictures.h"

#include <thread>

namespace
{

using namespace std::chrono_literals;

constexpr auto whileDiskTakes = 30ms; // what is forced behind the window's thread

// In the order in which the settings window saves them.
constexpr std::initializer_list<const char*> keys = {"SaveDirectory", "Bitrate", "Sample Frequency",
                                                     "SaveDrive", "Settings Saved"};

// A start of the program on its settings.
struct Store {
    explicit Store(const Places& places) : store(places.config + "/settings.sqlite") {}

    void save(const Text& value)
    {
        for (const char* key : keys)
            store.SaveSetting("Velmora", "Encoder Settings", key, value);
    }

    // What each tick saves while a window is dragged.
    void drag(int from, int to)
    {
        for (int place = from; place < to; ++place)
            store.SaveSetting("Velmora", "General Settings", "Left", std::to_string(place));
    }

    desktop::SqliteStore store;
};

// So that the log is about as long as it becomes before it is forced and cut.
void furnishSettings(const Places& places)
{
    Store settings(places);
    settings.save("old");
    settings.drag(0, 985);
    _exit(0);
}

void settings(Ground& ground)
{
    Store settings(ground.places);
    settings.save("new");
    settings.drag(2000, 2010);
    std::this_thread::sleep_for(whileDiskTakes);
    settings.drag(3000, 3002);
    _exit(0); // the program brings nothing to an end, either
}

Text profileOf(const Places& places) { return places.application + "/vlmset.ini"; }

void furnishProfile(const Places& places)
{
    putFile(profileOf(places),
            "; by hand\r\n[Playlist Editor]\r\nPlayList=old\r\nFileType=1\r\n[Other]\r\nKey=kept\r\n");
}

void profile(Ground& ground)
{
    files::DiskTextFiles texts(*ground.notes);
    files::DiskProfileFile file(texts);
    file.write("Playlist Editor", "PlayList", "new", profileOf(ground.places));
    file.write("Playlist Editor", "FileType", "2", profileOf(ground.places));
    std::this_thread::sleep_for(whileDiskTakes);
}

KeptPictures picturesOf(const Places& places) { return {places.cache + "/skin-1", "this build"}; }

Pictures picturesIn(Qt::GlobalColor colour)
{
    Pictures pictures;
    for (const char* name : {"one", "two"}) {
        QImage picture(20, 10, QImage::Format_ARGB32_Premultiplied);
        picture.fill(colour);
        pictures.insert(name, picture);
    }
    return pictures;
}

void furnishSkin(const Places& places)
{
    picturesOf(places).write(picturesIn(Qt::red), NoPartNotes::instance());
}

void skin(Ground& ground)
{
    const auto kept = picturesOf(ground.places);
    say("found", std::to_string(kept.read().size()));
    kept.write(picturesIn(Qt::green), *ground.notes);
}

}

const Flows stateFlows{
    {"settings", furnishSettings, settings},
    {"ini", furnishProfile, profile},
    {"skin", furnishSkin, skin},
};
