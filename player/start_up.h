// SPDX-License-Identifier: GPL-3.0-or-later
// The main window: the program starts by loading it and lives as long as it does.
#pragma once

#include "platform/mm_control.h"
#include "platform/mp3_play.h"
#include "platform/open_save_dialog.h"
#include "platform/popup_menu.h"
#include "toolkit/form.h"
#include "toolkit/image.h"
#include "toolkit/interval_timer.h"
#include "toolkit/label.h"
#include "toolkit/shape.h"
#include "toolkit/slider.h"

#include <functional>
#include <memory>
#include <optional>

class Program;
enum class DockSide;

class StartUp final : public Form
{
public:
    explicit StartUp(Program& program);

    using enum ctl::Image::Use;

    // clang-format off
    ctl::Shape  Shape1       {*this, "Shape1",        {1875_tw,  240_tw, 4215_tw, 1960_tw}};
    ctl::Shape  Shape2       {*this, "Shape2",        { 240_tw,  240_tw, 1575_tw,  735_tw}};
    ctl::Shape  Shape3       {*this, "Shape3",        { 240_tw, 1080_tw, 1575_tw,  615_tw}};
    ctl::Shape  Shape4       {*this, "Shape4",        { 240_tw, 1800_tw, 1575_tw,  630_tw}};

    ctl::Image  TitleBarImg  {*this, "TitleBarImg",   {   0_tw,    0_tw, 6450_tw,  225_tw}};
    ctl::Image  imgMenu      {*this, "imgMenu",       {   0_tw,    0_tw,  240_tw,  225_tw}, "Velmora Menu"};
    ctl::Image  Minimizeimg  {*this, "Minimizeimg",   {6120_tw,   30_tw,  135_tw,  150_tw}, "Minimize"};
    ctl::Image  closeVLMimg  {*this, "closeVLMimg",   {6275_tw,   25_tw,  135_tw,  150_tw}, "Close Velmora"};

    ctl::Label  Label1       {*this, "Label1",        { 240_tw,  360_tw, 1575_tw,  615_tw}, "0:00"};
    ctl::Image  Image1       {*this, "Image1",        { 480_tw, 1200_tw,  360_tw,  330_tw}, "Play",  transport};
    ctl::Image  Image3       {*this, "Image3",        { 840_tw, 1200_tw,  360_tw,  330_tw}, "Pause", transport};
    ctl::Image  Image2       {*this, "Image2",        {1200_tw, 1200_tw,  360_tw,  330_tw}, "Stop",  transport};

    ctl::Image  vslider_bg   {*this, "vslider_bg",    { 360_tw, 1940_tw, 1320_tw,   75_tw}, "",       track};
    ctl::Image  vslider_img2 {*this, "vslider_img2",  { 960_tw, 1852_tw,  105_tw,  225_tw}, "Volume", thumb};
    ctl::Image  balbar_bg    {*this, "balbar_bg",     { 360_tw, 2220_tw, 1320_tw,   75_tw}, "",       track};
    ctl::Image  balbar_img2  {*this, "balbar_img2",   { 960_tw, 2150_tw,  105_tw,  225_tw}, "",       thumb};
    ctl::Image  posbar_bg    {*this, "posbar_bg",     {1920_tw, 2325_tw, 4125_tw,   75_tw}, "",       track};
    ctl::Image  posbar_img2  {*this, "posbar_img2",   {1920_tw, 2250_tw,  105_tw,  225_tw}, "",       thumb};

    ctl::Label  fileinfofield{*this, "fileinfofield", {1875_tw,  240_tw, 4215_tw,  255_tw}, "File Information"};
    ctl::Label  lblTitle     {*this, "lblTitle",      {1920_tw,  480_tw,  780_tw,  255_tw}, "Title:"};
    ctl::Label  stitle       {*this, "stitle",        {2760_tw,  480_tw, 3255_tw,  255_tw}};
    ctl::Label  lblArits     {*this, "lblArits",      {1920_tw,  720_tw,  780_tw,  255_tw}, "Artist:"};
    ctl::Label  sartist      {*this, "sartist",       {2760_tw,  720_tw, 3255_tw,  255_tw}};
    ctl::Label  lblAlbum     {*this, "lblAlbum",      {1920_tw,  960_tw,  780_tw,  255_tw}, "Album:"};
    ctl::Label  salbum       {*this, "salbum",        {2760_tw,  960_tw, 3255_tw,  255_tw}};
    ctl::Label  lblGenre     {*this, "lblGenre",      {1920_tw, 1200_tw,  780_tw,  255_tw}, "Genre:"};
    ctl::Label  sgenre       {*this, "sgenre",        {2760_tw, 1200_tw, 3255_tw,  255_tw}};
    ctl::Label  lblLength    {*this, "lblLength",     {1920_tw, 1440_tw,  780_tw,  255_tw}, "Length:"};
    ctl::Label  slength      {*this, "slength",       {2760_tw, 1440_tw, 3255_tw,  255_tw}};
    ctl::Label  lblBitrate   {*this, "lblBitrate",    {1920_tw, 1680_tw,  780_tw,  255_tw}, "Bitrate:"};
    ctl::Label  sbitrate     {*this, "sbitrate",      {2760_tw, 1680_tw,  495_tw,  255_tw}};
    ctl::Label  lblkbps      {*this, "lblkbps",       {3270_tw, 1680_tw,  495_tw,  255_tw}, "kbps"};
    ctl::Label  lblSampleFreq{*this, "lblSampleFreq", {1920_tw, 1920_tw,  780_tw,  255_tw}, "Frequency:"};
    ctl::Label  sfrequency   {*this, "sfrequency",    {2760_tw, 1920_tw,  495_tw,  255_tw}};
    ctl::Label  lblkHz       {*this, "lblkHz",        {3270_tw, 1920_tw,  495_tw,  255_tw}, "kHz"};

    ctl::Label  mp3filename  {*this, "mp3filename", ctl::hidden}; // the path of the current file
    ctl::Slider volslider    {*this, "volslider",    0, 100, 50, "Volume"};
    ctl::Slider balslider    {*this, "balslider", -100, 100,  0, "Balance"};
    ctl::Slider pbar         {*this, "pbar",         0, 100,  0};

    ctl::IntervalTimer Timer       {*this, "Timer",        std::chrono::milliseconds(1)};
    ctl::IntervalTimer vslider_tim1{*this, "vslider_tim1", std::chrono::milliseconds(1)};
    ctl::IntervalTimer balbar_tim1 {*this, "balbar_tim1",  std::chrono::milliseconds(1)};
    ctl::IntervalTimer posbar_tim1 {*this, "posbar_tim1",  std::chrono::milliseconds(1)};
    // clang-format on

    const std::unique_ptr<Mp3Play> Mp3Player;
    const std::unique_ptr<MMControl> MMControl1;
    const std::unique_ptr<OpenSaveDialog> OpenSaveDialog1; // its filter index is the kind of the current file
    std::unique_ptr<PopupMenu> cP;

    // Times are decimal text.
    std::int16_t paused_flag = 0;
    Text total_min, total_sec;
    Text elapsed_min, elapsed_sec, elapsed_ms, total_ms;
    bool window_active = false; // the main window may lead the playlist window
    Text conf_path;
    std::int32_t slider_step = 0; // twips

    // Where the playlist window is docked; at most one is true. `dock_side` is what the store hears of it.
    bool dock_bottom = false, dock_top = false, dock_left = false, dock_right = false;
    Text dock_side;

    // Both windows, where no pointer can reach them. A docked list stays beside the main window.
    void comeWithinReach();

    // Life of the window (start_up.cpp)
    void Form_Load();
    void Form_Activate();
    void Form_Deactivate();
    void Form_Unload();
    void Form_Terminate();
    void TitleBarImg_MouseDown(ctl::Button button, std::int16_t shift, Twips x, Twips y);
    void Minimizeimg_Click();
    void closeVLMimg_Click();
    void form_active_ok_sub();

    // Utilities (utilities.cpp)
    static Text StripTerminator(const Text& text);
    bool FileOrDirExists(const Text& name, const Text& folder);
    bool AddToINI(const Text& section, const Text& key, const Text& value, const Text& file);
    Text GetFromINI(const Text& section, const Text& key, const Text& fallback, const Text& file);

    // Transport (transport.cpp)
    void Image1_Click(); // Play
    void Image2_Click(); // Stop
    void Image3_Click(); // Pause
    void playfunction1();
    void retryingOpen(); // of the current file; comes back when the MP3 engine has it open

    // The playback clock (playback_clock.cpp)
    void Timer_Timer();

    // The main menu (main_menu.cpp)
    void CreateMenus();
    void imgMenu_Click();
    void cP_Click(std::int32_t& item);

    // The stored settings (config/settings_loaders.cpp)
    void get_all_settings();
    void GetEncoderSettings();
    void GetDecoderSettings();
    void GetCDtoWAVSettings();
    void GetWAVtoCDSettings();

    // Docking (config/window_docking.cpp)
    void get_reg_settings_plse();
    void get_plss_pos_pi();

    // Volume and balance (sliders/volume_and_balance.cpp)
    void re_set_volume();
    void vslider_bg_DragDrop(ctl::Image& source, Twips X, Twips Y);
    void vslider_bg_MouseDown(ctl::Button button, std::int16_t shift, Twips X, Twips Y);
    void balbar_bg_DragDrop(ctl::Image& source, Twips X, Twips Y);
    void balbar_bg_MouseDown(ctl::Button button, std::int16_t shift, Twips X, Twips Y);
    void vslider_tim1_Timer();
    void balbar_tim1_Timer();
    void volslider_Scroll();
    void balslider_Scroll();

    // The position bar (sliders/position_bar.cpp)
    void posbar_tim1_Timer();
    void posbar_bg_DragDrop(ctl::Image& source, Twips X, Twips Y);
    void posbar_img2_MouseDown(ctl::Button button, std::int16_t shift, Twips X, Twips Y);
    void posbar_img2_MouseUp(ctl::Button button, std::int16_t shift, Twips X, Twips Y);
    void pbar_MouseDown();
    void pbar_MouseUp();
    void pbar_KeyDown(std::int16_t keyCode);
    void pbar_KeyUp(std::int16_t keyCode);
    void pbar_Scroll();

private:
    void setTones();
    void setKeys();
    void wire();
    void closeRequested() override { Unload.raise(); }

    void placeFromStore();
    void readLevels();
    void closeEnginesAndEnd();

    void prepareOpenDialog();
    void takeStoredFileType();
    void playChosenFile();
    void playKnownFile();
    void playWav();
    void startMp3Row();
    void showFileInformation();
    void showFileInformationSkipping(); // where failures are skipped: each label by itself
    void showWavLengthSkipping();       // likewise

    void readPosition();
    void savePlace();

    void dockPlayListEditor();
    void dockAt(DockSide side);
    void setDocked(std::optional<DockSide> side);
    void follow();
    void saveListPlace();

    struct MenuItem;
    static const MenuItem menu[];
    void openFile();
    void takeMp3File();
    void takeWavFile();
    void editTag();
    void openWorkbench(int tab);
    void openSettings(int tab);
    void openSettingsAsTheyStand();

    bool noMp3Current() const;
    void showVolumeToolTip();
    void withOpenEngine(const std::function<void()>& call);
    void apply_balance();
    void seek_to_bar_value();
    void resumeClock();

    void loadAllSettings();
    bool defaultDirectoryExists(const char* whatIsStored);
    void setEncoderDefaults();
    void setDecoderDefaults();
    void setCdToWavDefaults();
    void setWavToCdDefaults();

    Program& program_;
    bool loadingSettings_ = false;
    bool settingsLoaded_ = false;
};
