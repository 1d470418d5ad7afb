// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/disc_program.h"
#include "support/failures.h"
#include "support/list_hand.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <doctest/doctest.h>

namespace
{

std::vector<Text> waves(int count)
{
    std::vector<Text> paths;
    for (int number = 1; number <= count; ++number)
        paths.push_back("/w/" + textOf(number) + ".wav");
    return paths;
}

// The workbench with these files dropped on its list.
struct Writing : DiscProgram {
    explicit Writing(const std::vector<Text>& paths = {}) { drop(paths); }

    void drop(const std::vector<Text>& paths)
    {
        workbench.EncWAVtoCDdragndrop.OLEDragDrop.raise(ctl::DroppedFiles(paths));
    }
    void write() { workbench.EncWAVtoCDWrite.Click.raise(); }
    std::vector<Text> rows() { return rowsOf(workbench.EncWAVtoCDdragndrop); }
};

constexpr const char* unfit = " is not a valid .wav file (44kHz, 16Bit, Stereo)";
constexpr const char* unwritten = "Can\u00B4t handle CD-recorder or unuseable media.";

using Answer = MessageBoxes::Answer;

}

TEST_CASE("At most a hundred files of one drop enter the list, and the item past the last is the normal end")
{
    for (const int count : {0, 1, 2, 99, 100, 101, 150}) {
        CAPTURE(count);
        Writing w;
        CHECK(failureOf([&] { w.drop(waves(count)); }) == 0);
        CHECK(w.rows() == waves(std::min(count, 100)));
        CHECK(w.calls() == "");
        CHECK_FALSE(w.message());
        CHECK(w.platform.boxes.shown.empty());
    }
}

TEST_CASE("A second drop appends behind the first, and the same file can stand twice")
{
    Writing w({"/b.wav", "/a.wav"});
    w.drop({"/c.wav", "/b.wav", "/b.wav"});
    CHECK(w.rows() == std::vector<Text>{"/b.wav", "/a.wav", "/c.wav", "/b.wav", "/b.wav"});
    w.drop(waves(150));
    CHECK(w.rows().size() == 105);
}

TEST_CASE("A drop does not look at its files")
{
    const std::vector<Text> odd{"/", "/music", "/notes.txt", "/gone.wav", "", "/caf\xE9.WAV", "/a\nb.wav"};
    CHECK(Writing(odd).rows() == odd);
}

TEST_CASE("What another program would rather move is copied: its files stay where they are")
{
    Writing w;
    w.workbench.EncDecCDWAVtab.setTab(3);
    w.workbench.Show();
    QCoreApplication::processEvents();
    QMimeData data;
    QList<QUrl> urls;
    for (const auto& path : waves(150))
        urls.push_back(QUrl::fromLocalFile(QString::fromStdString(path)));
    data.setUrls(urls);
    QWidget* list = ListHand(w.workbench, w.workbench.EncWAVtoCDdragndrop).view().viewport();
    const auto offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(list, &enter);
    QDropEvent event({5, 5}, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(list, &event);
    CHECK(event.isAccepted());
    CHECK(event.dropAction() == Qt::CopyAction);
    CHECK(w.rows() == waves(100));
}

TEST_CASE("An empty list is told, and nothing is done")
{
    Writing w;
    w.write();
    CHECK(w.message() == "You must at least drag and drop one file into the box to write to the CD!");
    CHECK(w.calls() == "");
    CHECK(w.workbench.writeFailureText == "");
}

TEST_CASE("All rows are handed over in order, the disc is checked, the writing starts, and the click returns")
{
    Writing w({"/b.wav", "/a.wav", "/b.wav"});
    w.write();
    CHECK(w.calls() == "CDWriter.AddTrack(/b.wav, 0)\nCDWriter.AddTrack(/a.wav, 0)\n"
                       "CDWriter.AddTrack(/b.wav, 0)\nCDWriter.CheckMedia\nCDWriter.Write\n");
    CHECK_FALSE(w.message());
    CHECK(w.platform.boxes.shown.empty());
    CHECK(w.workbench.writeFailureText == unwritten);
    CHECK(w.workbench.EncWAVtoCDWrite.Enabled());
    CHECK(w.rows().size() == 3);
}

TEST_CASE("The first unfit row stops the check: it is told and selected, and the writer forgets its tracks")
{
    for (const int unfitRow : {0, 1, 2}) {
        CAPTURE(unfitRow);
        Writing w(waves(3));
        const Text path = w.rows()[static_cast<std::size_t>(unfitRow)];
        w.writer().refused = {path, "/w/3.wav"};
        Text wanted;
        for (int row = 0; row <= unfitRow; ++row)
            wanted += "CDWriter.AddTrack(/w/" + textOf(row + 1) + ".wav, 0)\n";
        w.write();
        CHECK(w.calls() == wanted + "CDWriter.ClearTracks\n");
        CHECK(w.message() == path + unfit);
        CHECK(w.workbench.EncWAVtoCDdragndrop.ListIndex() == unfitRow);
        CHECK(w.rows() == waves(3));
        CHECK(w.workbench.writeFailureText == "");
    }
}

TEST_CASE(
    "An unfit row: the words and the selection stand before the tracks are cleared, the window shows after")
{
    Writing w(waves(2));
    w.writer().refused = {"/w/2.wav"};
    bool cleared = false;
    w.platform.log.onCall = [&](const Text& call) {
        if (call != "CDWriter.ClearTracks")
            return;
        cleared = true;
        CHECK(w.program.error().theerror.Caption() == "/w/2.wav" + Text(unfit));
        CHECK(w.workbench.EncWAVtoCDdragndrop.Selected(1));
        CHECK_FALSE(w.program.error().Visible());
    };
    w.write();
    CHECK(cleared);
    CHECK(w.message());
}

TEST_CASE("An unfit row stays, so that every later click stops at it again")
{
    Writing w({"/a.wav", "/notes.txt"});
    w.writer().refused = {"/notes.txt"};
    for (int click = 0; click < 3; ++click) {
        w.write();
        CHECK(w.calls() ==
              "CDWriter.AddTrack(/a.wav, 0)\nCDWriter.AddTrack(/notes.txt, 0)\nCDWriter.ClearTracks\n");
        CHECK(w.message() == "/notes.txt" + Text(unfit));
        w.program.error().okbutton_Click();
    }
    w.drop({"/b.wav"});
    w.write();
    CHECK(w.platform.log.count("CDWriter.AddTrack(/b.wav, 0)") == 0);
}

TEST_CASE("Without a disc the box comes back until there is one")
{
    Writing w(waves(1));
    w.writer().mediaResults = {1, -1, 5, 0};
    w.platform.boxes.onShow = [&] {
        CHECK(w.workbench.writeFailureText == unwritten);
        CHECK(w.platform.log.count("CDWriter.Write") == 0);
    };
    w.write();
    CHECK(w.calls() == "CDWriter.AddTrack(/w/1.wav, 0)\n"
                       "CDWriter.CheckMedia\nMessageBox.No CD-R Found\n"
                       "CDWriter.CheckMedia\nMessageBox.No CD-R Found\n"
                       "CDWriter.CheckMedia\nMessageBox.No CD-R Found\n"
                       "CDWriter.CheckMedia\nCDWriter.Write\n");
    const auto& box = w.platform.boxes.shown.front();
    CHECK(box.text == "Please insert a CD-R!");
    CHECK(box.title == "No CD-R Found");
    CHECK(box.icon == MessageBoxes::Icon::none);
    CHECK(box.buttons == MessageBoxes::Buttons::okCancel);
}

TEST_CASE("Cancel ends the click, whichever box it answers, and the tracks stay with the writer")
{
    for (const std::size_t boxes : {1, 4}) {
        CAPTURE(boxes);
        Writing w(waves(1));
        w.writer().mediaResults.assign(9, 1);
        w.platform.boxes.answers.assign(boxes - 1, Answer::ok);
        w.platform.boxes.answers.push_back(Answer::cancel);
        w.write();
        CHECK(w.platform.boxes.shown.size() == boxes);
        CHECK(w.platform.log.count("CDWriter.Write") == 0);
        CHECK(w.platform.log.count("CDWriter.ClearTracks") == 0);
        CHECK_FALSE(w.message());
    }
}

TEST_CASE("A writing that does not start is told, and the tracks stay with the writer")
{
    for (const std::int16_t result : {1, -1}) {
        CAPTURE(result);
        Writing w(waves(1));
        w.writer().writeResult = result;
        w.write();
        CHECK(w.message() == "Can\u00B4t write audio track(s)!");
        CHECK(w.calls() == "CDWriter.AddTrack(/w/1.wav, 0)\nCDWriter.CheckMedia\nCDWriter.Write\n");
    }
}

TEST_CASE("After Cancel, a refused start or a finished disc the next click appends every row again")
{
    const std::function<void(Writing&)> firstClicks[] = {
        [](Writing& w) {
            w.writer().mediaResults = {1};
            w.platform.boxes.answers = {Answer::cancel};
            w.write();
        },
        [](Writing& w) {
            w.writer().writeResult = 1;
            w.write();
            w.writer().writeResult = 0;
        },
        [](Writing& w) {
            w.write();
            w.writer().Done.raise(0);
        },
        [](Writing& w) { w.write(); }, // which still runs
    };
    for (const auto& firstClick : firstClicks) {
        Writing w(waves(2));
        firstClick(w);
        w.platform.log.clear();
        w.write();
        CHECK(w.calls() == "CDWriter.AddTrack(/w/1.wav, 0)\nCDWriter.AddTrack(/w/2.wav, 0)\n"
                           "CDWriter.CheckMedia\nCDWriter.Write\n");
    }
}

TEST_CASE("The bar follows the per cent of the writing, and stays within its scale")
{
    Writing w;
    for (const std::int16_t percent : {0, 1, 50, 99, 100}) {
        w.writer().Progress.raise(percent);
        CHECK(w.workbench.ProgressBarWAVtoCD.Value() == percent);
    }
    w.writer().Progress.raise(101);
    CHECK(w.workbench.ProgressBarWAVtoCD.Value() == 100);
    w.writer().Progress.raise(-1);
    CHECK(w.workbench.ProgressBarWAVtoCD.Value() == 0);
}

TEST_CASE("The end puts the bar back before its box opens, whatever it says, and also after a simulation")
{
    for (const bool simulates : {false, true})
        for (const std::int16_t word : {0, 1, -1}) {
            CAPTURE(simulates);
            CAPTURE(word);
            Writing w(waves(1));
            w.settings.SetWAVtoCDtestmode.setValue(simulates ? 1 : 0);
            w.settings.SetWAVtoCDApp.Click.raise();
            w.write();
            w.writer().Progress.raise(100);
            float atTheBox = -1;
            w.platform.boxes.onShow = [&] { atTheBox = w.workbench.ProgressBarWAVtoCD.Value(); };
            w.writer().Done.raise(word);
            CHECK(atTheBox == 0);
            REQUIRE(w.platform.boxes.shown.size() == 1);
            const auto& box = w.platform.boxes.shown.front();
            CHECK(box.text == "CD created!");
            CHECK(box.title == "CD created!");
            CHECK(box.icon == MessageBoxes::Icon::none);
            CHECK(box.buttons == MessageBoxes::Buttons::ok);
            CHECK_FALSE(w.message());
        }
}

TEST_CASE("Files can be dropped while a disc is written; they wait for the next click")
{
    Writing w(waves(1));
    w.write();
    w.platform.log.clear();
    w.drop({"/late.wav"});
    CHECK(w.rows().size() == 2);
    CHECK(w.calls() == "");
}

TEST_CASE("The list outlives the hidden window, a new opening and a finished disc")
{
    Writing w(waves(3));
    w.workbench.Show();
    w.workbench.EncWAVtoCDExit.Click.raise();
    CHECK_FALSE(w.workbench.Visible());
    w.platform.mainMenu->choose(17);
    w.write();
    w.writer().Done.raise(0);
    w.workbench.EncWAVtoCDsettings.Click.raise();
    CHECK(w.rows() == waves(3));
}

TEST_CASE("The list for files says what it is for")
{
    Writing w;
    CHECK(w.workbench.EncWAVtoCDdragndrop.ToolTipText() ==
          "Drag And Drop Wave-Files Here (44KHz, 16bit, Stereo)");
}
