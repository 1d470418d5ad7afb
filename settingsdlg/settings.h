// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog for all workbench options, one tab a flow. Apply stores a tab's values and hands them on, OK
// does the same and hides the window, Cancel only hides it.
#pragma once

#include "toolkit/buttons.h"
#include "toolkit/file_lists.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"
#include "toolkit/label.h"
#include "toolkit/list_box.h"
#include "toolkit/text_box.h"

#include <array>

class Program;

class Settings final : public Form
{
public:
    explicit Settings(Program& program);

private:
    Drives& drives_;

public:
    static constexpr auto escape = ctl::CommandButton::Keys::escape;

    // clang-format off
    ctl::TabControl SettingsTab{*this, "SettingsTab", {90_tw, 90_tw, 6720_tw, 4890_tw},
                                {"Mp3 Encoder", "Mp3 Decoder", "CD => WAV", "WAV => CD"}};

    ctl::Container& tab0 = SettingsTab.page(0);
    ctl::Frame        frmSetEncBitr {tab0, "frmSetEncBitr", { 120_tw,   90_tw, 2370_tw, 2610_tw}, "Bitrate (kbits/sec)"};
    ctl::OptionButton SetEncBitr1   {frmSetEncBitr, "SetEncBitr1",  {  90_tw,  315_tw, 750_tw, 300_tw}, "320"};
    ctl::OptionButton SetEncBitr2   {frmSetEncBitr, "SetEncBitr2",  {  90_tw,  750_tw, 750_tw, 300_tw}, "256"};
    ctl::OptionButton SetEncBitr3   {frmSetEncBitr, "SetEncBitr3",  {  90_tw, 1185_tw, 750_tw, 300_tw}, "224"};
    ctl::OptionButton SetEncBitr4   {frmSetEncBitr, "SetEncBitr4",  {  90_tw, 1620_tw, 750_tw, 300_tw}, "192"};
    ctl::OptionButton SetEncBitr5   {frmSetEncBitr, "SetEncBitr5",  {  90_tw, 2055_tw, 750_tw, 300_tw}, "160"};
    ctl::OptionButton SetEncBitr6   {frmSetEncBitr, "SetEncBitr6",  { 840_tw,  315_tw, 750_tw, 300_tw}, "128"};
    ctl::OptionButton SetEncBitr7   {frmSetEncBitr, "SetEncBitr7",  { 840_tw,  750_tw, 750_tw, 300_tw}, "112"};
    ctl::OptionButton SetEncBitr8   {frmSetEncBitr, "SetEncBitr8",  { 840_tw, 1185_tw, 750_tw, 300_tw}, "96"};
    ctl::OptionButton SetEncBitr9   {frmSetEncBitr, "SetEncBitr9",  { 840_tw, 1620_tw, 750_tw, 300_tw}, "80"};
    ctl::OptionButton SetEncBitr10  {frmSetEncBitr, "SetEncBitr10", { 840_tw, 2055_tw, 750_tw, 300_tw}, "64"};
    ctl::OptionButton SetEncBitr11  {frmSetEncBitr, "SetEncBitr11", {1590_tw,  315_tw, 750_tw, 300_tw}, "56"};
    ctl::OptionButton SetEncBitr12  {frmSetEncBitr, "SetEncBitr12", {1590_tw,  750_tw, 750_tw, 300_tw}, "48"};
    ctl::OptionButton SetEncBitr13  {frmSetEncBitr, "SetEncBitr13", {1590_tw, 1185_tw, 750_tw, 300_tw}, "40"};
    ctl::OptionButton SetEncBitr14  {frmSetEncBitr, "SetEncBitr14", {1590_tw, 1620_tw, 750_tw, 300_tw}, "32"};
    ctl::Frame        frmSetEncSF   {tab0, "frmSetEncSF",   { 120_tw, 2820_tw, 2370_tw,  870_tw}, "Sample Frequency (kHz)"};
    ctl::OptionButton SetEncSF1     {frmSetEncSF, "SetEncSF1", {  90_tw, 375_tw, 750_tw, 300_tw}, "44"};
    ctl::OptionButton SetEncSF2     {frmSetEncSF, "SetEncSF2", { 840_tw, 375_tw, 750_tw, 300_tw}, "22"};
    ctl::Frame        SetEncSaveDir {tab0, "SetEncSaveDir", {2550_tw,   90_tw, 3990_tw, 3600_tw}, "Where do you want the mp3s to be saved?"};
    ctl::DriveListBox Drive1        {SetEncSaveDir, "Drive1", {120_tw, 330_tw, 3750_tw,  345_tw}, drives_};
    ctl::DirListBox   Dir1          {SetEncSaveDir, "Dir1",   {120_tw, 750_tw, 3750_tw, 2730_tw}};
    ctl::CommandButton SetEncOK     {tab0, "SetEncOK",      {2130_tw, 3900_tw, 1380_tw,  390_tw}, "&OK"};
    ctl::CommandButton SetEncApp    {tab0, "SetEncApp",     {3645_tw, 3900_tw, 1380_tw,  390_tw}, "&Apply"};
    ctl::CommandButton SetEncCan    {tab0, "SetEncCan",     {5160_tw, 3900_tw, 1380_tw,  390_tw}, "&Cancel", escape};

    ctl::Container& tab1 = SettingsTab.page(1);
    ctl::Frame        Frame1        {tab1, "Frame1",        { 120_tw,   90_tw, 6420_tw, 3600_tw}, "Where do you want the .wav files to be saved?"};
    ctl::DriveListBox Drive2        {Frame1, "Drive2",      { 120_tw,  330_tw, 6180_tw,  345_tw}, drives_};
    ctl::DirListBox   Dir2          {Frame1, "Dir2",        { 120_tw,  750_tw, 6180_tw, 2730_tw}};
    ctl::CommandButton SetDecOK     {tab1, "SetDecOK",      {2130_tw, 3900_tw, 1380_tw,  390_tw}, "&OK"};
    ctl::CommandButton SetDecApp    {tab1, "SetDecApp",     {3645_tw, 3900_tw, 1380_tw,  390_tw}, "&Apply"};
    ctl::CommandButton SetDecCan    {tab1, "SetDecCan",     {5160_tw, 3900_tw, 1380_tw,  390_tw}, "&Cancel", escape};

    ctl::Container& tab2 = SettingsTab.page(2);
    ctl::Frame        frmCDDrive    {tab2, "frmCDDrive",    { 120_tw,   90_tw, 6420_tw, 1140_tw}, "Select Your CD Drive"};
    ctl::ListBox      CDDrives      {frmCDDrive, "CDDrives",{ 120_tw,  330_tw, 6180_tw,  720_tw}};
    ctl::Frame        SetCDtoWAVFNB {tab2, "SetCDtoWAVFNB", { 120_tw, 1320_tw, 6420_tw,  780_tw}, "With what should the filenames begin?"};
    ctl::TextBox      SetCDtoWavTB  {SetCDtoWAVFNB, "SetCDtoWavTB", {120_tw, 330_tw, 2970_tw, 330_tw}, "Track"};
    ctl::CheckBox     chkCDDB       {SetCDtoWAVFNB, "chkCDDB", {3210_tw, 330_tw, 3090_tw, 330_tw}, "Get track titles from CDDB",
                                     "Access CDDB to get the song titles.  This requires an active internet connection and only "
                                     "works with your default CD-Drive!"};
    ctl::Frame        SetCDtoWAVSaveDir{tab2, "SetCDtoWAVSaveDir", {120_tw, 2190_tw, 6420_tw, 1500_tw}, "Where do you want the .wav files to be saved?"};
    ctl::DriveListBox Drive3        {SetCDtoWAVSaveDir, "Drive3", { 120_tw, 330_tw, 2970_tw,  345_tw}, drives_};
    ctl::DirListBox   Dir3          {SetCDtoWAVSaveDir, "Dir3",   {3210_tw, 330_tw, 3090_tw, 1050_tw}};
    ctl::CommandButton SetCDtoWAVOK {tab2, "SetCDtoWAVOK",  {2130_tw, 3900_tw, 1380_tw,  390_tw}, "&OK"};
    ctl::CommandButton SetCDtoWAVApp{tab2, "SetCDtoWAVApp", {3645_tw, 3900_tw, 1380_tw,  390_tw}, "&Apply"};
    ctl::CommandButton SetCDtoWAVCan{tab2, "SetCDtoWAVCan", {5160_tw, 3900_tw, 1380_tw,  390_tw}, "&Cancel", escape};

    ctl::Container& tab3 = SettingsTab.page(3);
    ctl::Frame        frmWAVtoCDcddrives{tab3, "frmWAVtoCDcddrives", {120_tw, 90_tw, 3210_tw, 1650_tw}, "CD Drives"};
    ctl::ListBox      SetWAVtoCDcddrives{frmWAVtoCDcddrives, "SetWAVtoCDcddrives", {120_tw, 330_tw, 2970_tw, 1200_tw}};
    ctl::Frame        frmWAVtoCDdetectedcdwriter{tab3, "frmWAVtoCDdetectedcdwriter", {120_tw, 1830_tw, 3210_tw, 1860_tw}, "Detected CD Writer"};
    ctl::TextBox      SetWAVtoCDcdwriter{frmWAVtoCDdetectedcdwriter, "SetWAVtoCDcdwriter", {120_tw, 330_tw, 2970_tw, 330_tw}};
    ctl::Label        lblSetWAVtoCDcdwritertype{frmWAVtoCDdetectedcdwriter, "lblSetWAVtoCDcdwritertype", {120_tw, 810_tw, 1530_tw, 330_tw}, "CD Writer Type:"};
    ctl::TextBox      SetWAVtoCDwritertype{frmWAVtoCDdetectedcdwriter, "SetWAVtoCDwritertype", {1740_tw, 810_tw, 1350_tw, 330_tw}};
    ctl::CommandButton SetWAVtoCDcdwrSetwrtype{frmWAVtoCDdetectedcdwriter, "SetWAVtoCDcdwrSetwrtype", {120_tw, 1320_tw, 2970_tw, 390_tw}, "Set CD Writer Type"};
    ctl::Frame        frmWAVtoCDwritespeed{tab3, "frmWAVtoCDwritespeed", {3480_tw, 90_tw, 3060_tw, 1650_tw}, "Write Speed"};
    ctl::OptionButton SetWAVtoCDSpeed1x {frmWAVtoCDwritespeed, "SetWAVtoCDSpeed1x",  { 180_tw,  330_tw, 840_tw, 300_tw}, "1 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed2x {frmWAVtoCDwritespeed, "SetWAVtoCDSpeed2x",  { 180_tw,  720_tw, 840_tw, 300_tw}, "2 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed4x {frmWAVtoCDwritespeed, "SetWAVtoCDSpeed4x",  { 180_tw, 1110_tw, 840_tw, 300_tw}, "4 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed6x {frmWAVtoCDwritespeed, "SetWAVtoCDSpeed6x",  {1110_tw,  330_tw, 840_tw, 300_tw}, "6 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed8x {frmWAVtoCDwritespeed, "SetWAVtoCDSpeed8x",  {1110_tw,  720_tw, 840_tw, 300_tw}, "8 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed10x{frmWAVtoCDwritespeed, "SetWAVtoCDSpeed10x", {1110_tw, 1110_tw, 840_tw, 300_tw}, "10 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed12x{frmWAVtoCDwritespeed, "SetWAVtoCDSpeed12x", {2040_tw,  330_tw, 840_tw, 300_tw}, "12 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed14x{frmWAVtoCDwritespeed, "SetWAVtoCDSpeed14x", {2040_tw,  720_tw, 840_tw, 300_tw}, "14 \u00D7"};
    ctl::OptionButton SetWAVtoCDSpeed16x{frmWAVtoCDwritespeed, "SetWAVtoCDSpeed16x", {2040_tw, 1110_tw, 840_tw, 300_tw}, "16 \u00D7"};
    ctl::Frame        Frame10       {tab3, "Frame10",       {3480_tw, 1830_tw, 3060_tw, 1860_tw}, "Options"};
    ctl::CheckBox     SetWAVtoCDclosedisc{Frame10, "SetWAVtoCDclosedisc", {180_tw, 360_tw, 2700_tw, 330_tw}, "Close Disc",
                                     "Close the CD after the tracks have been written to it.  No more tracks can be added later!"};
    ctl::CheckBox     SetWAVtoCDtestmode {Frame10, "SetWAVtoCDtestmode",  {180_tw, 810_tw, 2700_tw, 330_tw}, "Simulate Writing",
                                     "Just simulate the writing process, don't actually write the CD."};
    ctl::CheckBox     SetWAVtoCDautoeject{Frame10, "SetWAVtoCDautoeject", {180_tw, 1260_tw, 2700_tw, 330_tw}, "Auto Eject",
                                     "Automatically eject the CD after all tracks have been written."};
    ctl::CommandButton SetWAVtoCDOK {tab3, "SetWAVtoCDOK",  {2130_tw, 3900_tw, 1380_tw,  390_tw}, "&OK"};
    ctl::CommandButton SetWAVtoCDApp{tab3, "SetWAVtoCDApp", {3645_tw, 3900_tw, 1380_tw,  390_tw}, "&Apply"};
    ctl::CommandButton SetWAVtoCDCan{tab3, "SetWAVtoCDCan", {5160_tw, 3900_tw, 1380_tw,  390_tw}, "&Cancel", escape};
    // clang-format on

    struct BitrateButton {
        ctl::OptionButton& button;
        std::int32_t bitsPerSecond;
    };
    const std::array<BitrateButton, 14> bitrateButtons = {{
        {SetEncBitr1, 320000},
        {SetEncBitr2, 256000},
        {SetEncBitr3, 224000},
        {SetEncBitr4, 192000},
        {SetEncBitr5, 160000},
        {SetEncBitr6, 128000},
        {SetEncBitr7, 112000},
        {SetEncBitr8, 96000},
        {SetEncBitr9, 80000},
        {SetEncBitr10, 64000},
        {SetEncBitr11, 56000},
        {SetEncBitr12, 48000},
        {SetEncBitr13, 40000},
        {SetEncBitr14, 32000},
    }};

    struct SpeedButton {
        ctl::OptionButton& button;
        std::int16_t factor;
    };
    const std::array<SpeedButton, 9> speedButtons = {{
        {SetWAVtoCDSpeed1x, 1},
        {SetWAVtoCDSpeed2x, 2},
        {SetWAVtoCDSpeed4x, 4},
        {SetWAVtoCDSpeed6x, 6},
        {SetWAVtoCDSpeed8x, 8},
        {SetWAVtoCDSpeed10x, 10},
        {SetWAVtoCDSpeed12x, 12},
        {SetWAVtoCDSpeed14x, 14},
        {SetWAVtoCDSpeed16x, 16},
    }};

    Text bitrateText;
    bool halfSampleRate = false;
    Text sampleFrequencyText;
    std::int16_t listIndex = 0; // the counter of the routines that list drives and tracks
    std::int16_t writeSpeed = 0;
    std::int16_t selectedWriter = 0; // from 0
    std::int16_t writerType = 0;

    ctl::CommandButton& applyButton(int tab);

    // The dialog (settings.cpp)
    void Form_Load();

    // Encoder and decoder (encoder_tab.cpp, decoder_tab.cpp)
    void SetEncSF1_Click();
    void SetEncSF2_Click();
    void Drive1_Change();
    void Dir1_Change();
    void SetEncOK_Click();
    void SetEncApp_Click();
    void SetEncCan_Click();
    void Drive2_Change();
    void Dir2_Change();
    void SetDecOK_Click();
    void SetDecApp_Click();
    void SetDecCan_Click();

    // CD to WAV (cd_to_wav_tab.cpp)
    void init();
    void get_tracks_fsd();
    void CDDrives_Click();
    void chkCDDB_Click();
    void SetCDtoWavTB_Change();
    void Drive3_Change();
    void Dir3_Change();
    void SetCDtoWAVOK_Click();
    void SetCDtoWAVApp_Click();
    void SetCDtoWAVCan_Click();

    // WAV to CD (wav_to_cd_tab.cpp)
    void start_up();
    void SetWAVtoCDcddrives_DblClick();
    void SetWAVtoCDcdwriter_Change();
    void SetWAVtoCDwritertype_Change();
    void SetWAVtoCDcdwrSetwrtype_Click();
    void SetWAVtoCDclosedisc_Click();
    void SetWAVtoCDtestmode_Click();
    void SetWAVtoCDautoeject_Click();
    void SetWAVtoCDOK_Click();
    void SetWAVtoCDApp_Click();
    void SetWAVtoCDCan_Click();

private:
    void wire();
    void wireEncoderTab();
    void wireDecoderTab();
    void wireCdToWavTab();
    void wireWavToCdTab();

    void storeEncoderTab();
    void storeDecoderTab();
    void storeCdToWavTab();
    void storeWavToCdTab();

    void listTracks();
    Text titleOf(std::int16_t track);
    bool hasWriter();
    void listWriters();
    void detectWriter();
    bool takeWriter(std::int16_t drive);

    Program& program_;
};
