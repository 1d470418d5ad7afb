// SPDX-License-Identifier: GPL-3.0-or-later
// The workbench: four tabs, each a batch flow. A flow sets up one file, starts its engine, and pumps window
// events until the engine reports the end of that file. Nothing is locked meanwhile: a second click nests a
// run.
#pragma once

#include "platform/acd.h"
#include "platform/acd_write.h"
#include "platform/cd_base.h"
#include "platform/mp3_enc.h"
#include "platform/mp3_play.h"
#include "toolkit/buttons.h"
#include "toolkit/file_lists.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"
#include "toolkit/label.h"
#include "toolkit/list_box.h"
#include "toolkit/progress_bar.h"
#include "toolkit/text_box.h"

#include <memory>

class Program;

class Mp3Encoder final : public Form
{
public:
    explicit Mp3Encoder(Program& program);

private:
    Drives& drives_;

public:
    static constexpr auto checks = ctl::ListBox::Style::checks;

    // clang-format off
    ctl::TabControl EncDecCDWAVtab{*this, "EncDecCDWAVtab", {90_tw, 90_tw, 7620_tw, 5340_tw},
                                   {"Mp3 Encoder", "Mp3 Decoder", "CD => WAV", "WAV => CD"}};

    ctl::Container& tab0 = EncDecCDWAVtab.page(0);
    ctl::DriveListBox  Drive1         {tab0, "Drive1",          { 120_tw,  180_tw, 3000_tw,  345_tw}, drives_};
    ctl::DirListBox    Dir1           {tab0, "Dir1",            { 120_tw,  600_tw, 3000_tw, 2970_tw}};
    ctl::Frame         frmSelectEncode{tab0, "frmSelectEncode", {3240_tw,   90_tw, 4170_tw, 2955_tw}, "Select .Wav Files To Encode"};
    ctl::FileListBox   File1          {frmSelectEncode, "File1", {120_tw,  300_tw, 3930_tw, 2535_tw}, "*.wav"};
    ctl::CommandButton StartEncoding  {tab0, "StartEncoding",   {3240_tw, 3180_tw, 1290_tw,  390_tw}, "&Encode"};
    ctl::CommandButton EncSettings    {tab0, "EncSettings",     {4680_tw, 3180_tw, 1290_tw,  390_tw}, "&Settings"};
    ctl::CommandButton ExitEnc        {tab0, "ExitEnc",         {6120_tw, 3180_tw, 1290_tw,  390_tw}, "E&xit"};
    ctl::Frame         frmEncNowEnc   {tab0, "frmEncNowEnc",    { 120_tw, 3690_tw, 7290_tw, 1080_tw}, "Now Encoding..."};
    ctl::TextBox       txtEncNowEnc   {frmEncNowEnc, "txtEncNowEnc",   {120_tw, 300_tw, 7050_tw, 315_tw}};
    ctl::ProgressBar   ProgressBarEnc {frmEncNowEnc, "ProgressBarEnc", {120_tw, 690_tw, 7050_tw, 240_tw}};
    ctl::TextBox       filename2      {tab0, "filename2", ctl::hidden};
    ctl::Label         outputdir      {tab0, "outputdir", ctl::hidden}; // of the MP3 files

    ctl::Container& tab1 = EncDecCDWAVtab.page(1);
    ctl::DriveListBox  Drive2         {tab1, "Drive2",          { 120_tw,  180_tw, 3000_tw,  345_tw}, drives_};
    ctl::DirListBox    Dir2           {tab1, "Dir2",            { 120_tw,  600_tw, 3000_tw, 2970_tw}};
    ctl::Frame         Frame1         {tab1, "Frame1",          {3240_tw,   90_tw, 4170_tw, 2955_tw}, "Select .Mp3 Files To Decode"};
    ctl::FileListBox   File2          {Frame1, "File2",         { 120_tw,  300_tw, 3930_tw, 2535_tw}, "*.mp3"};
    ctl::CommandButton Command3       {tab1, "Command3",        {3240_tw, 3180_tw, 1290_tw,  390_tw}, "&Decode"};
    ctl::CommandButton Command2       {tab1, "Command2",        {4680_tw, 3180_tw, 1290_tw,  390_tw}, "&Settings"};
    ctl::CommandButton Command1       {tab1, "Command1",        {6120_tw, 3180_tw, 1290_tw,  390_tw}, "E&xit"};
    ctl::Frame         Frame2         {tab1, "Frame2",          { 120_tw, 3690_tw, 7290_tw, 1080_tw}, "Now Decoding..."};
    ctl::TextBox       txtEncNowDec   {Frame2, "txtEncNowDec",   {120_tw, 300_tw, 7050_tw, 315_tw}};
    ctl::ProgressBar   ProgressBarDec {Frame2, "ProgressBarDec", {120_tw, 690_tw, 7050_tw, 240_tw}};
    ctl::TextBox       filename22     {tab1, "filename22", ctl::hidden, "Text1"};
    ctl::Label         outputdir2     {tab1, "outputdir2", ctl::hidden}; // of the WAV files

    ctl::Container& tab2 = EncDecCDWAVtab.page(2);
    ctl::Frame         Frame3              {tab2, "Frame3",               { 120_tw,   90_tw, 5490_tw, 2955_tw}, "Select CD Tracks"};
    ctl::ListBox       TracksList          {Frame3, "TracksList",         { 120_tw,  300_tw, 5250_tw, 2535_tw}, checks};
    ctl::CommandButton butRefresh          {tab2, "butRefresh",           {5850_tw,  240_tw, 1440_tw,  390_tw}, "REFRESH"};
    ctl::Frame         EncCDtoWAVcommands  {tab2, "EncCDtoWAVcommands",   {5730_tw,  735_tw, 1680_tw, 2310_tw}};
    ctl::CommandButton EncCDtoWAVStart     {EncCDtoWAVcommands, "EncCDtoWAVStart", {120_tw,  240_tw, 1440_tw, 390_tw}, "&START"};
    ctl::CommandButton EncCDtoWAVStop      {EncCDtoWAVcommands, "EncCDtoWAVStop",  {120_tw,  735_tw, 1440_tw, 390_tw}, "S&TOP"};
    ctl::CommandButton EncCDtoWAVSet       {EncCDtoWAVcommands, "EncCDtoWAVSet",   {120_tw, 1230_tw, 1440_tw, 390_tw}, "S&ETTINGS"};
    ctl::CommandButton EncCDtoWAVExit      {EncCDtoWAVcommands, "EncCDtoWAVExit",  {120_tw, 1725_tw, 1440_tw, 390_tw}, "E&XIT"};
    ctl::Frame         frmEncCDtoWAVprogress      {tab2, "frmEncCDtoWAVprogress", {120_tw, 3090_tw, 7290_tw, 1710_tw}, "Progress"};
    ctl::Frame         EncCDtoWAVprogressThisTrack{frmEncCDtoWAVprogress, "EncCDtoWAVprogressThisTrack", {120_tw, 255_tw, 7050_tw, 675_tw}, "This Track"};
    ctl::ProgressBar   ProgressBarCDtoWAVtt{EncCDtoWAVprogressThisTrack, "ProgressBarCDtoWAVtt", {120_tw, 315_tw, 6810_tw, 240_tw}};
    ctl::Frame         EncCDtoWAVProgressAll      {frmEncCDtoWAVprogress, "EncCDtoWAVProgressAll", {120_tw, 960_tw, 7050_tw, 675_tw}, "All Selected Tracks"};
    ctl::ProgressBar   ProgressBarCDtoWAVat{EncCDtoWAVProgressAll, "ProgressBarCDtoWAVat", {120_tw, 315_tw, 6810_tw, 240_tw}};
    ctl::ListBox       TLCDDB              {tab2, "TLCDDB", ctl::hidden};             // one row for each titled track
    ctl::Label         AccessCDDB_OK       {tab2, "AccessCDDB_OK", ctl::hidden, "0"}; // "1": titles name the files
    ctl::Label         CDtoWAVTB           {tab2, "CDtoWAVTB", ctl::hidden};          // what file names begin with
    ctl::Label         CDtoWAVsavedir      {tab2, "CDtoWAVsavedir", ctl::hidden};
    ctl::Label         pc_len              {tab2, "pc_len", ctl::hidden};             // full scale of a bar, as text

    ctl::Container& tab3 = EncDecCDWAVtab.page(3);
    ctl::Frame         frmEncWAVtoCDdragndrop{tab3, "frmEncWAVtoCDdragndrop", {120_tw, 90_tw, 7290_tw, 3330_tw},
                                              "Drag And Drop Wave-Files Here (44KHz, 16bit, Stereo)"};
    ctl::ListBox       EncWAVtoCDdragndrop {frmEncWAVtoCDdragndrop, "EncWAVtoCDdragndrop", {120_tw, 300_tw, 7050_tw, 2910_tw}};
    ctl::CommandButton EncWAVtoCDWrite     {tab3, "EncWAVtoCDWrite",      {1560_tw, 3630_tw, 1290_tw,  390_tw}, "&Write CD"};
    ctl::CommandButton EncWAVtoCDsettings  {tab3, "EncWAVtoCDsettings",   {3120_tw, 3630_tw, 1290_tw,  390_tw}, "&Settings"};
    ctl::CommandButton EncWAVtoCDExit      {tab3, "EncWAVtoCDExit",       {4680_tw, 3630_tw, 1290_tw,  390_tw}, "E&xit"};
    ctl::ProgressBar   ProgressBarWAVtoCD  {tab3, "ProgressBarWAVtoCD",   { 120_tw, 4290_tw, 7290_tw,  300_tw}};
    // clang-format on

    const std::unique_ptr<Mp3Enc> Mp3Encoder1;
    const std::unique_ptr<Mp3Play> Mp3Decoder;
    const std::unique_ptr<ACD> CDtoWAV;
    const std::unique_ptr<CdBase> CdBase1;
    const std::unique_ptr<ACDWRITE> CDWriter;

    Text encodeInputPath;
    std::int16_t encodeFinished = 0;
    Text encodePosition;
    Text decodeInputPath;
    std::int16_t decodeFinished = 0;
    Text decodePosition;
    bool trackReadFinished = false;
    std::int32_t tracksSelectedCount = 0;
    std::int32_t tracksStartedCount = 0; // the running one included
    Text firstTrackLine;
    std::int16_t writeListIndex = 0;
    Text writeFailureText;

    // The frame (mp3_encoder.cpp)
    void Form_Load();
    void Drive1_Change();
    void Dir1_Change();
    void Drive2_Change();
    void Dir2_Change();
    void EncSettings_Click();
    void Command2_Click();
    void EncCDtoWAVSet_Click();
    void EncWAVtoCDsettings_Click();
    void ExitEnc_Click();
    void Command1_Click();
    void EncCDtoWAVExit_Click();
    void EncWAVtoCDExit_Click();

    // WAV to MP3 (encoding.cpp)
    void StartEncoding_Click();
    void Mp3Encoder1_Progress(std::int32_t position);
    void Mp3Encoder1_Done();

    // MP3 to WAV (decoding.cpp)
    void Command3_Click();
    void Mp3Decoder_Progress(std::int32_t position);
    void Mp3Decoder_Done();

    // CD to WAV (ripping.cpp)
    void butRefresh_Click();
    void EncCDtoWAVStart_Click();
    void EncCDtoWAVStop_Click();
    void CDtoWAV_Progress(std::int32_t position);
    void CDtoWAV_Done();
    Text trackLineOf(const Text& name, std::int16_t track);

    // WAV to CD (writing.cpp)
    void EncWAVtoCDdragndrop_OLEDragDrop(const ctl::DroppedFiles& files);
    void EncWAVtoCDWrite_Click();
    void CDWriter_Progress(std::int16_t percent);
    void CDWriter_Done(std::int16_t unused);

private:
    void wire();
    void openSettings(int tab);
    void encode(const Text& file);
    void decode(const Text& file);
    void readTrack(std::int16_t track, const Text& path);
    Text trackFileName(std::int32_t row) const;
    bool acceptRows();
    bool discIsIn();

    Program& program_;
};
