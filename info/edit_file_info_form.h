// SPDX-License-Identifier: GPL-3.0-or-later
// The tag editor: shows and changes the tag of the MP3 file that the main window has loaded. It holds no tag
// of its own; the main menu fills it, its Save goes through the main window's engine.
#pragma once

#include "info/genre_rows.h"
#include "toolkit/buttons.h"
#include "toolkit/combo_box.h"
#include "toolkit/form.h"
#include "toolkit/label.h"
#include "toolkit/text_box.h"

class Program;

class editfileinfoform final : public Form
{
public:
    explicit editfileinfoform(Program& program);

    // clang-format off
    ctl::TextBox  filelocation{*this, "filelocation", {  25_tw,   15_tw, 4455_tw, 285_tw}};
    ctl::Label    lblTitle    {*this, "lblTitle",     { 240_tw,  360_tw,  585_tw, 285_tw}, "Title:"};
    ctl::TextBox  txtTitle    {*this, "txtTitle",     { 840_tw,  360_tw, 3615_tw, 285_tw}};
    ctl::Label    lblArits    {*this, "lblArits",     { 240_tw,  720_tw,  585_tw, 285_tw}, "Artist:"};
    ctl::TextBox  txtArtist   {*this, "txtArtist",    { 840_tw,  720_tw, 3615_tw, 285_tw}};
    ctl::Label    lblAlbum    {*this, "lblAlbum",     { 240_tw, 1080_tw,  585_tw, 285_tw}, "Album:"};
    ctl::TextBox  txtAlbum    {*this, "txtAlbum",     { 840_tw, 1080_tw, 3615_tw, 285_tw}};
    ctl::Label    lblGenre    {*this, "lblGenre",     { 240_tw, 1440_tw,  585_tw, 315_tw}, "Genre:"};
    ctl::ComboBox txtGenre    {*this, "txtGenre",     { 840_tw, 1440_tw, 1815_tw, 315_tw}};
    ctl::Label    lblYear     {*this, "lblYear",      {2760_tw, 1440_tw,  465_tw, 315_tw}, "Year:"};
    ctl::TextBox  txtYear     {*this, "txtYear",      {3240_tw, 1440_tw, 1215_tw, 285_tw}};
    ctl::Label    Label1      {*this, "Label1",       {   0_tw, 1800_tw,  825_tw, 285_tw}, "Comment:"};
    ctl::TextBox  txtComment  {*this, "txtComment",   { 840_tw, 1800_tw, 3615_tw, 285_tw}};
    ctl::CommandButton butSave  {*this, "butSave",    {1200_tw, 2160_tw,  975_tw, 375_tw}, "&SAVE"};
    ctl::CommandButton butCancel{*this, "butCancel",  {2400_tw, 2160_tw,  975_tw, 375_tw}, "&CANCEL",
                                ctl::CommandButton::Keys::escape};
    // clang-format on

    void Form_Unload();
    void Form_Terminate();
    void butSave_Click();
    void butCancel_Click();

private:
    void emptyBoxes();
    void save();

    Program& program_;
};
