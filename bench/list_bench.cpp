// SPDX-License-Identifier: GPL-3.0-or-later
// Opens a list of so many rows and ticks on it, for a bench: list_bench ROWS. Prints milliseconds: to open
// with the window hidden, with the window shown, for a tick with nothing changed, for a tick that writes the
// list anew.
#include "fakes/fake_platform.h"
#include "files/disk_profile_file.h"
#include "files/disk_text_files.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"
#include "support/temporary_folder.h"

#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <vector>

namespace
{

template <typename Work>
double medianOf(int times, Work&& work)
{
    std::vector<double> took;
    for (int time = 0; time < times; ++time) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - begin;
        took.push_back(passed.count());
    }
    std::sort(took.begin(), took.end());
    return took[took.size() / 2];
}

// Files are real ones; everything else is scripted.
class DiskPlatform final : public FakePlatform
{
public:
    DiskPlatform() { folder = place / "app"; }

    TextFiles& textFiles() override { return textFiles_; }
    ProfileFile& profileFile() override { return profileFile_; }

    TemporaryFolder place;

private:
    files::DiskTextFiles textFiles_{NoPartNotes::instance()};
    files::DiskProfileFile profileFile_{textFiles_};
};

void writeList(const Text& path, int rows)
{
    std::ofstream file(path);
    for (int row = 0; row < rows; ++row)
        file << "/home/user/Music/Some Artist/Some Album (1999)/" << row << " - A Song With a Name.mp3\r\n";
}

double opening(DiskPlatform& platform, PlayListEditor& list)
{
    return medianOf(7, [&] {
        platform.OpenSaveDialogP->choices.push_back({{platform.place / "list.vlp"}, 0});
        list.GoDoOpen();
        QApplication::processEvents(); // the view takes the rows in
    });
}

}

int main(int argc, char** argv)
{
    const int rows = argc == 2 ? std::atoi(argv[1]) : 0;
    if (rows < 1) {
        std::cerr << "list_bench ROWS\n";
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    DiskPlatform platform;
    std::filesystem::create_directory(platform.folder);
    writeList(platform.place / "list.vlp", rows);
    Program program(platform);
    program.startUp();
    PlayListEditor& list = program.playListEditor();

    std::cout << opening(platform, list) << ' ';
    list.Show();
    std::cout << opening(platform, list) << ' ';
    list.Timer1_Timer();
    std::cout << medianOf(1001, [&] { list.Timer1_Timer(); }) << ' ';
    std::cout << medianOf(11, [&] {
        list.PlayListLB.AddItem(list.PlayListLB.List(0));
        list.PlayListLB.RemoveItem(rows);
        list.Timer1_Timer();
    }) << '\n';
    return list.PlayListLB.ListCount() == rows ? 0 : 1;
}
