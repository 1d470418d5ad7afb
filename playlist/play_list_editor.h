// SPDX-License-Identifier: GPL-3.0-or-later
// The playlist window. Its list box is the list: a row is a file's path. Loaded at the program's start, shown
// or not.
#pragma once

#include "platform/complaint.h"
#include "platform/mp3_play.h"
#include "platform/open_save_dialog.h"
#include "platform/popup_menu.h"
#include "toolkit/form.h"
#include "toolkit/image.h"
#include "toolkit/interval_timer.h"
#include "toolkit/label.h"
#include "toolkit/list_box.h"
#include "toolkit/text_box.h"

#include <memory>
#include <optional>
#include <vector>

class Program;
class TextOutput;

class PlayListEditor final : public Form
{
public:
    explicit PlayListEditor(Program& program);

    using enum ctl::Image::Use;

    // clang-format off
    ctl::Image   PLETitleBarImg  {*this, "PLETitleBarImg",   {   0_tw,    0_tw, 6450_tw,  225_tw}};
    ctl::Image   imgMenu         {*this, "imgMenu",          {   0_tw,    0_tw,  240_tw,  225_tw}, "Playlist Editor Menu"};
    ctl::Image   closeVLMimg     {*this, "closeVLMimg",      {6275_tw,   25_tw,  135_tw,  150_tw}, "Close Playlist Editor"};
    ctl::TextBox PlayListFileName{*this, "PlayListFileName", { 240_tw,  320_tw, 5775_tw,  285_tw}};
    ctl::ListBox PlayListLB      {*this, "PlayListLB",       { 240_tw,  650_tw, 5775_tw, 1815_tw}};
    ctl::Image   moveitemupimg   {*this, "moveitemupimg",    {6120_tw,  650_tw,  330_tw,  360_tw}, "Move Up [U]",   transport};
    ctl::Image   moveitemdownimg {*this, "moveitemdownimg",  {6120_tw, 2105_tw,  330_tw,  360_tw}, "Move Down [D]", transport};
    ctl::Image   Previmg1        {*this, "Previmg1",         {1920_tw, 2610_tw,  630_tw,  330_tw}, "Previous", transport};
    ctl::Image   Playimg1        {*this, "Playimg1",         {2760_tw, 2610_tw,  360_tw,  330_tw}, "Play",     transport};
    ctl::Image   Stopimg1        {*this, "Stopimg1",         {3240_tw, 2610_tw,  360_tw,  330_tw}, "Stop",     transport};
    ctl::Image   Nextimg1        {*this, "Nextimg1",         {3840_tw, 2610_tw,  630_tw,  330_tw}, "Next",     transport};
    ctl::Label   labtemp1        {*this, "labtemp1", ctl::hidden, "0"}; // "1" ends a run of the list
    ctl::IntervalTimer Timer1    {*this, "Timer1", std::chrono::milliseconds(1)};
    // clang-format on

    const std::unique_ptr<Mp3Play> Mp3Player2; // reads lengths and tags for M3U lists
    const std::unique_ptr<OpenSaveDialog> OpenSaveDialogP;
    std::unique_ptr<PopupMenu> cP;

    bool NamedListActive = false; // the rows are those of the file named in `PlayListFileName`
    std::int32_t PlayIndex = 0;   // the row that a run started last; no edit of the list moves it
    std::int32_t RunIndex = 0;    // the row that the run is on; all nested runs share it
    Text AppFolder;               // with a separator at its end
    Text DefaultListPath;         // the working copy
    Text ListFileText;            // the list file read last
    std::optional<std::vector<Text>> SplitResult; // its lines; none at all for an empty text
    std::optional<std::vector<Text>> ListLines;   // those that the reader walks, which become rows

    // The window and its list (play_list_editor.cpp)
    void Form_Load();
    void Form_Activate();
    void Form_Deactivate();
    void PLETitleBarImg_MouseDown(ctl::Button button, std::int16_t shift, Twips x, Twips y);
    void closeVLMimg_Click();
    void Timer1_Timer();
    void moveitemupimg_Click();
    void moveitemdownimg_Click();
    void PlayListLB_KeyDown(std::int16_t keyCode, std::int16_t shift);
    void removeSelected();

    // The menu (play_list_menu.cpp)
    void CreateMenus();
    void imgMenu_Click();
    void cP_Click(std::int32_t& item);

    // List files (list_files.cpp)
    void SplitListText(const Text& text, const Text& delimiter);
    void SetProperties1();
    void SetProperties2();
    void SetProperties3();
    void GoDoNew();
    void GoDoOpen();
    void GoDoClose();
    void GoDoSave();
    void GoDoSaveAs();
    void GoDoAddSongs();

    // Playing the list (sequencing.cpp)
    void go_play_the_list(std::int32_t start);
    void stop_pl_first();
    void GoDoStop();
    void GoDoNext();
    void startFromFirst();
    void stopAndPrevious();
    void GoDoPlayFromSelected();
    void GoDoPlaySelected();
    void Stopimg1_Click();
    void Nextimg1_Click();
    void Previmg1_Click();
    void Playimg1_Click();
    void PlayListLB_DblClick();

private:
    void wire();

    void setFolders();
    Text storedList() const;
    void loadStoredList();
    void writeWorkingCopy();
    void keepLastRows();
    void moveRow(std::int32_t insertAt, std::int32_t selectAt);

    void readListFile(const Text& path);
    void addRows(std::vector<Text> lines);
    void saveDirectly(const Text& name);
    void saveThroughDialog();
    void addRows();
    Text m3uInformation(std::int32_t row);

    void startRow(std::int32_t row);
    void playAlone(const Text& path, std::int16_t kind);
    void waitForEnd();

    Program& program_;
    Complaint workingCopyTrouble_{"The list at work cannot be kept"};
};
