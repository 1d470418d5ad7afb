// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/edit_file_info_form.h"

#include "platform/numbers.h"
#include "player/start_up.h"
#include "program.h"
#include "toolkit/spoken_names.h"
#include "toolkit/toolkit.h"

editfileinfoform::editfileinfoform(Program& program) :
    Form(program.platform().toolkit(), "editfileinfoform", Border::dialog, {4500_tw, 2610_tw}),
    program_(program)
{
    setCaption("Edit File Information");
    filelocation.setLocked(true);
    filelocation.setGrey();
    Label1.setAtRight();
    for (auto* box : {&txtTitle, &txtArtist, &txtAlbum, &txtComment})
        box->setMaxLength(30);
    txtYear.setMaxLength(4);
    for (const char* genre : genreRows)
        txtGenre.AddItem(genre);
    // clang-format off
    ctl::setSpokenNames(*this, {
        {filelocation, "File"},
        {txtTitle, "Title"},
        {txtArtist, "Artist"},
        {txtAlbum, "Album"},
        {txtGenre, "Genre"},
        {txtYear, "Year"},
        {txtComment, "Comment"},
    });
    // clang-format on
    Unload.calls(*this, &editfileinfoform::Form_Unload);
    Terminate.calls(*this, &editfileinfoform::Form_Terminate);
    butSave.Click.calls(*this, &editfileinfoform::butSave_Click);
    butCancel.Click.calls(*this, &editfileinfoform::butCancel_Click);
}

void editfileinfoform::Form_Unload() { emptyBoxes(); }

void editfileinfoform::Form_Terminate() { emptyBoxes(); }

void editfileinfoform::emptyBoxes()
{
    for (auto* box : {&txtTitle, &txtArtist, &txtAlbum, &txtYear, &txtComment})
        box->setText("");
}

void editfileinfoform::butCancel_Click() { Hide(); }

void editfileinfoform::butSave_Click()
{
    if (program_.startUp().Mp3Player->IsPlaying() != 0)
        program_.tell("You can't write an ID tag to a file when it's playing!       Please stop it first!");
    else
        save();
    Hide();
}

// An empty year is a 0 and an empty comment one blank, in the boxes first: the tag's own way to say "none".
// The tag is written after the engine has closed the file.
void editfileinfoform::save()
{
    Mp3Play& engine = *program_.startUp().Mp3Player;
    if (txtYear.Text().empty())
        txtYear.setText("0");
    if (txtComment.Text().empty())
        txtComment.setText(" ");
    engine.setTitle(txtTitle.Text());
    engine.setArtist(txtArtist.Text());
    engine.setAlbum(txtAlbum.Text());
    engine.setGenreIndex(roundToInteger16(txtGenre.ListIndex()));
    engine.setYear(toInteger16(txtYear.Text()));
    engine.setComment(txtComment.Text());
    engine.Close();
    engine.WriteTag();
    engine.Stop();
    engine.Close();
}
