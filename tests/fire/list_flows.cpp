// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fire/flows.h"

#include "desktop/unforced_files.h"
#include "fakes/fake_platform.h"
#include "files/disk_profile_file.h"
#include "files/disk_text_files.h"
#include "files/patient_text_files.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"
#include "support/files.h"

#include <QApplication>
#include <thread>

namespace
{

using namespace std::chrono_literals;

constexpr auto whileDiskTakes = 30ms; // what is forced behind the window's thread

// Lists and their file of settings are real; everything else is scripted.
class ListPlatform final : public FakePlatform
{
public:
    explicit ListPlatform(Ground& ground) :
        own_(std::make_shared<files::DiskTextFiles>(
            *ground.notes, [](const Text&) {}, files::Trust(),
            [&](const Text& path) { desktop::tellUnforced(path, ground.places.application, ground.shell); })),
        texts_(own_), profile_(*own_)
    {
        folder = ground.places.application;
    }

    TextFiles& textFiles() override { return texts_; }
    ProfileFile& profileFile() override { return profile_; }

private:
    std::shared_ptr<files::DiskTextFiles> own_;
    files::PatientTextFiles texts_;
    files::DiskProfileFile profile_;
};

// A start of the program, which reads its list.
struct Lists {
    explicit Lists(Ground& ground) : platform(ground), program(platform)
    {
        program.startUp();
        say("found", std::to_string(list().PlayListLB.ListCount()));
    }

    PlayListEditor& list() { return program.playListEditor(); }

    void add(const Text& row)
    {
        auto& rows = list().PlayListLB;
        if (rows.ListCount() == 0 || rows.List(rows.ListCount() - 1) != row)
            rows.AddItem(row);
    }

    ~Lists() { std::this_thread::sleep_for(whileDiskTakes); }

    int count = 1;
    char name[8] = "fire";
    char* arguments[2] = {name, nullptr};
    QApplication application{count, arguments};
    ListPlatform platform;
    Program program;
};

const Text rows = "/music/one.mp3\r\n/music/two.mp3\r\n";
const Text newRow = "/music/three.mp3";

void furnish(const Places& places, const Text& list, const Text& bytes)
{
    putFile(list, bytes);
    putFile(places.application + "/deflist.vlp", rows);
    putFile(places.application + "/vlmset.ini",
            "[Playlist Editor]\r\nPlayList=" + list + "\r\nFileType=2\r\n");
}

void furnishWorkingList(const Places& places) { furnish(places, places.application + "/deflist.vlp", rows); }

void workingList(Ground& ground)
{
    Lists lists(ground);
    lists.add(newRow);
    lists.list().Timer1_Timer();
}

void furnishSave(const Places& places) { furnish(places, places.music + "/mine.vlp", rows); }

void furnishM3u(const Places& places)
{
    furnish(places, places.music + "/mine.m3u", "#EXTM3U\r\n#EXTINF:0, - \r\n" + rows);
}

void save(Ground& ground)
{
    Lists lists(ground);
    lists.add(newRow);
    lists.list().GoDoSave();
}

}

const Flows listFlows{
    {"list", furnishWorkingList, workingList},
    {"save", furnishSave, save},
    {"m3u", furnishM3u, save},
};
