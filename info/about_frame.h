// SPDX-License-Identifier: GPL-3.0-or-later
// What the program is, its version and its news. Built anew at each opening.
#pragma once

#include "toolkit/buttons.h"
#include "toolkit/form.h"
#include "toolkit/frame.h"
#include "toolkit/image.h"
#include "toolkit/label.h"
#include "toolkit/shape.h"
#include "toolkit/text_box.h"

#include <cstdint>

class Program;

class AboutFrame final : public Form
{
public:
    explicit AboutFrame(Program& program);

    // clang-format off
    ctl::TabControl SSTab1{*this, "SSTab1", {90_tw, 90_tw, 5820_tw, 4320_tw}, {"About", "Updates && Bug Fixes"}};

    ctl::Image picIcon        {SSTab1.page(0), "picIcon",        { 240_tw,  240_tw,  480_tw,  480_tw}};
    ctl::Label lblTitle       {SSTab1.page(0), "lblTitle",       { 960_tw,  210_tw, 4560_tw,  345_tw}, "Application Title"};
    ctl::Label lblVersion     {SSTab1.page(0), "lblVersion",     { 960_tw,  555_tw, 4560_tw,  240_tw}, "Version"};
    ctl::Line  Line1_0        {SSTab1.page(0), "Line1",          { 240_tw,  900_tw, 5280_tw,   15_tw}};
    ctl::Label lblDescription {SSTab1.page(0), "lblDescription", { 240_tw, 1005_tw, 5280_tw, 1365_tw}, description};
    ctl::Line  Line1_1        {SSTab1.page(0), "Line1",          { 240_tw, 2475_tw, 5280_tw,   15_tw}};
    ctl::Label lblDisclaimer  {SSTab1.page(0), "lblDisclaimer",  { 240_tw, 2580_tw, 3480_tw, 1140_tw}, disclaimer};
    ctl::CommandButton cmdOK     {SSTab1.page(0), "cmdOK",      {3960_tw, 2670_tw, 1560_tw, 375_tw}, "OK",
                                  ctl::CommandButton::Keys::enterAndEscape};
    ctl::CommandButton cmdSysInfo{SSTab1.page(0), "cmdSysInfo", {3960_tw, 3135_tw, 1560_tw, 375_tw}, "&System Info..."};

    ctl::TextBox updatesandbugfixes{SSTab1.page(1), "updatesandbugfixes", {120_tw, 120_tw, 5520_tw, 3600_tw}, "",
                                    ctl::TextBox::Lines::several};
    // clang-format on

    void Form_Load();
    void cmdOK_Click();
    void cmdSysInfo_Click();

    void StartSysInfo();
    bool GetKeyValue(std::uint32_t root, const Text& keyName, const Text& valueName, Text& result);

private:
    void closeRequested() override;

    void showUpdates();
    Text systemInformationTool();

    // The run of blanks makes the label wrap.
    static constexpr const char* description =
        "Velmora is a simple program to play and create music files on your PC."
        "                                                         "
        "Velmora can play .wav and .mp3 files, encode and decode mp3 files, copy music from an audio CD to "
        "your "
        "computer and even write your own audio CD's from .wav files (if you have a CD writer)";
    static constexpr const char* disclaimer =
        "Made by the Velmora developers.\nFree software under the GNU GPL, version 3 "
        "or later.\nNews and help: the README beside the program.";

    Program& program_;
};
