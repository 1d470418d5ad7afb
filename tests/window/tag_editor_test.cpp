// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/edit_file_info_form.h"
#include "info/error.h"
#include "platform/failure.h"
#include "support/player.h"
#include "support/widgets.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <doctest/doctest.h>

namespace
{

constexpr std::int32_t editInfo = 5; // its number in the menu

struct Editor : Player {
    editfileinfoform& form = program.editFileInfoForm();

    Editor() { current("/m/a.mp3", kind::mp3); }

    void open() { platform.mainMenu->choose(editInfo); }
    void save() { form.butSave.Click.raise(); }

    // Title, artist, album, year, comment.
    std::array<ctl::TextBox*, 5> boxes()
    {
        return {&form.txtTitle, &form.txtArtist, &form.txtAlbum, &form.txtYear, &form.txtComment};
    }
    void fill(const Text& text)
    {
        for (auto* box : boxes())
            box->setText(text);
    }
    Text contents()
    {
        Text text;
        for (auto* box : boxes())
            text += box->Text() + "|";
        return text + textOf(form.txtGenre.ListIndex());
    }
};

constexpr const char* savedUnchanged = "Mp3Player.Title = \nMp3Player.Artist = \nMp3Player.Album = \n"
                                       "Mp3Player.GenreIndex = 80\nMp3Player.Year = 0\n"
                                       "Mp3Player.Comment =  \nMp3Player.Close\nMp3Player.WriteTag\n"
                                       "Mp3Player.Stop\nMp3Player.Close\n";

const Text refusal =
    "You can't write an ID tag to a file when it's playing!" + Text(7, ' ') + "Please stop it first!";

}

TEST_CASE("The editor's controls stand where its face wants them")
{
    struct Row {
        const ctl::Control& control;
        Twips left, top, width, height; // 0 for what is free
    };
    Editor e;
    const Row rows[] = {
        {e.form.filelocation, 25, 15, 4455, 285},  {e.form.lblTitle, 240, 360, 0, 0},
        {e.form.txtTitle, 840, 360, 3615, 285},    {e.form.lblArits, 240, 720, 0, 0},
        {e.form.txtArtist, 840, 720, 3615, 285},   {e.form.lblAlbum, 240, 1080, 0, 0},
        {e.form.txtAlbum, 840, 1080, 3615, 285},   {e.form.lblGenre, 240, 1440, 0, 0},
        {e.form.txtGenre, 840, 1440, 1815, 315},   {e.form.lblYear, 2760, 1440, 0, 0},
        {e.form.txtYear, 3240, 1440, 1215, 285},   {e.form.Label1, 0, 1800, 0, 0},
        {e.form.txtComment, 840, 1800, 3615, 285}, {e.form.butSave, 1200, 2160, 975, 375},
        {e.form.butCancel, 2400, 2160, 975, 375},
    };
    for (const auto& row : rows) {
        CAPTURE(row.control.Name());
        CHECK(row.control.Left() == row.left);
        CHECK(row.control.Top() == row.top);
        CHECK((row.width == 0 || row.control.Width() == row.width));
        CHECK((row.height == 0 || row.control.Height() == row.height));
    }
}

TEST_CASE("The editor says what its fields are")
{
    Editor e;
    CHECK(e.form.Caption() == "Edit File Information");
    const std::pair<const ctl::Label&, Text> captions[] = {
        {e.form.lblTitle, "Title:"}, {e.form.lblArits, "Artist:"}, {e.form.lblAlbum, "Album:"},
        {e.form.lblGenre, "Genre:"}, {e.form.lblYear, "Year:"},    {e.form.Label1, "Comment:"},
    };
    for (const auto& [label, caption] : captions)
        CHECK(label.Caption() == caption);
    const auto* comment = widgetOf<QLabel>(e.form, "Label1");
    CHECK(comment->alignment().testFlag(Qt::AlignRight)); // it has no room but up to its box
    CHECK(widgetOf<QPushButton>(e.form, "butSave")->text() == "&SAVE");
    CHECK(widgetOf<QPushButton>(e.form, "butCancel")->text() == "&CANCEL");
    CHECK(e.contents() == "|||||-1");
}

TEST_CASE("A genre's row is its number in the tag, and the last row stands for none")
{
    // clang-format off
    const char* const names[] = {
        "Blues", "Classic Rock", "Country", "Dance", "Disco", "Funk", "Grunge", "Hip-Hop", "Jazz", "Metal",
        "New Age", "Oldies", "Other", "Pop", "R&B", "Rap", "Reggae", "Rock", "Techno", "Industrial",
        "Alternative", "Ska", "Death Metal", "Pranks", "Soundtrack", "Euro-Techno", "Ambient", "Trip-Hop", "Vocal", "Jazz+Funk",
        "Fusion", "Trance", "Classical", "Instrumental", "Acid", "House", "Game", "Sound Clip", "Gospel", "Noise",
        "AlternRock", "Bass", "Soul", "Punk", "Space", "Meditative", "Instrumental Pop", "Instrumental Rock", "Ethnic", "Gothic",
        "Darkwave", "Techno-Industrial", "Electronic", "Pop-Folk", "Eurodance", "Dream", "Southern Rock", "Comedy", "Cult", "Gangsta",
        "Top 40", "Christian Rap", "Pop/Funk", "Jungle", "Native American", "Cabaret", "New Wave", "Psychadelic", "Rave", "Showtunes",
        "Trailer", "Lo-Fi", "Tribal", "Acid Punk", "Acid Jazz", "Polka", "Retro", "Musical", "Rock & Roll", "Hard Rock",
        "Unknown",
    };
    // clang-format on
    Editor e;
    const auto& box = *widgetOf<QComboBox>(e.form, "txtGenre");
    REQUIRE(box.count() == std::size(names));
    for (int row = 0; row < box.count(); ++row) {
        CAPTURE(row);
        CHECK(box.itemText(row).toStdString() == names[row]);
    }
    CHECK_FALSE(box.isEditable());
}

TEST_CASE("The file's path can be read and not be changed")
{
    Editor e;
    e.open();
    auto& line = *widgetOf<QLineEdit>(e.form, "filelocation");
    typeInto(line, "x");
    CHECK(e.form.filelocation.Text() == "/m/a.mp3");
    CHECK(line.isReadOnly());
    CHECK(isGrey(line));
    CHECK_FALSE(isGrey(*widgetOf<QLineEdit>(e.form, "txtTitle")));
}

TEST_CASE("Only as many characters as a field has can be typed")
{
    struct Row {
        const char* name;
        std::size_t characters;
    };
    for (const auto& row : {Row{"txtTitle", 30}, Row{"txtArtist", 30}, Row{"txtAlbum", 30},
                            Row{"txtComment", 30}, Row{"txtYear", 4}}) {
        CAPTURE(row.name);
        Editor e;
        auto& line = *widgetOf<QLineEdit>(e.form, row.name);
        typeInto(line, QString(40, 'x'));
        CHECK(line.text().size() == static_cast<int>(row.characters));
    }
}

TEST_CASE("A value that is longer than its box is shown whole and saved whole")
{
    Editor e;
    const Text longTitle(60, 't');
    e.mp3().title = e.mp3().artist = e.mp3().album = e.mp3().comment = longTitle;
    e.mp3().year = 19999;
    e.open();
    CHECK(widgetOf<QLineEdit>(e.form, "txtTitle")->text().toStdString() == longTitle);
    CHECK(widgetOf<QLineEdit>(e.form, "txtYear")->text() == "19999");
    e.save();
    CHECK(e.mp3().title == longTitle);
    CHECK(e.mp3().artist == longTitle);
    CHECK(e.mp3().album == longTitle);
    CHECK(e.mp3().comment == longTitle);
    CHECK(e.mp3().year == 19999);
}

TEST_CASE("Opening empties the boxes in this order, chooses the genre and fills them again")
{
    Editor e;
    e.fill("old");
    e.mp3().title = "T";
    e.mp3().artist = "A";
    e.mp3().album = "B";
    e.mp3().year = 1;
    e.mp3().comment = "C";
    e.mp3().genreIndex = 3;
    Text heard;
    e.form.filelocation.Change.calls([&] { heard += "file "; });
    for (auto* box : e.boxes())
        box->Change.calls([&heard, box] { heard += Text(box->Name()) + "=" + box->Text() + " "; });
    e.form.txtGenre.Click.calls([&] { heard += "genre "; });
    e.form.Activate.calls([&] {
        CHECK(e.form.Left() == e.window.Left());
        CHECK(e.form.Top() == e.window.Top());
        heard += "shown";
    });
    e.window.setLeft(2400);
    e.window.setTop(900);
    e.open();
    CHECK(heard == "file txtTitle= txtArtist= txtAlbum= txtYear= txtComment= genre "
                   "txtTitle=T txtArtist=A txtAlbum=B txtYear=1 txtComment=C shown");
}

TEST_CASE("Each opening puts the editor over the main window again")
{
    Editor e;
    for (const Twips place : {300.0F, 1500.0F, 4500.0F}) {
        e.window.setLeft(place);
        e.window.setTop(place + 150);
        e.open();
        CHECK(e.form.Left() == place);
        CHECK(e.form.Top() == place + 150);
        e.form.setLeft(0);
    }
}

TEST_CASE("A playing file can be opened in the editor")
{
    Editor e;
    e.mp3().isPlaying = [] { return std::int16_t{1}; };
    e.open();
    CHECK(e.form.Visible());
    CHECK_FALSE(e.program.error().Visible());
}

TEST_CASE("Save sets the six fields in order, closes, writes, stops and closes again")
{
    Editor e;
    e.mp3().isPlaying = [&] {
        CHECK(e.platform.log.all().empty());
        return std::int16_t{0};
    };
    e.open();
    e.form.txtTitle.setText("A title");
    e.form.txtArtist.setText("An artist");
    e.form.txtAlbum.setText("");
    e.form.txtGenre.setListIndex(17);
    e.form.txtYear.setText("1999");
    e.form.txtComment.setText("A comment");
    e.save();
    CHECK(e.calls() == "Mp3Player.Title = A title\nMp3Player.Artist = An artist\nMp3Player.Album = \n"
                       "Mp3Player.GenreIndex = 17\nMp3Player.Year = 1999\nMp3Player.Comment = A comment\n"
                       "Mp3Player.Close\nMp3Player.WriteTag\nMp3Player.Stop\nMp3Player.Close\n");
    CHECK_FALSE(e.form.Visible());
    CHECK_FALSE(e.program.error().Visible());
}

TEST_CASE("A file without a tag shows Unknown, and saving it writes that genre, not none")
{
    Editor e;
    e.open();
    CHECK(e.contents() == "|||||80");
    e.save();
    CHECK(e.calls() == savedUnchanged);
    CHECK(e.mp3().genreIndex == 80);
}

TEST_CASE("Every genre goes through the editor as it came")
{
    Editor e;
    for (std::int16_t genre = 0; genre <= 80; ++genre) {
        CAPTURE(genre);
        e.mp3().genreIndex = genre;
        e.open();
        e.save();
        CHECK(e.mp3().genreIndex == genre);
    }
}

TEST_CASE("Empty boxes hold 0 and a blank before the tag is set, until the next opening")
{
    Editor e;
    e.open();
    e.mp3().onCall = [&](const Text& call) {
        if (!call.starts_with("Title"))
            return;
        CHECK(e.form.txtYear.Text() == "0");
        CHECK(e.form.txtComment.Text() == " ");
    };
    e.save();
    CHECK(e.contents() == "|||0| |80");
    CHECK(e.mp3().year == 0);
    CHECK(e.mp3().comment == " ");
    e.open();
    CHECK(e.contents() == "|||||80");
}

TEST_CASE("Boxes that are not empty are saved as they are")
{
    Editor e;
    e.open();
    e.form.txtYear.setText("0");
    e.form.txtComment.setText("  ");
    e.form.txtTitle.setText(" ");
    e.save();
    CHECK(e.contents() == " |||0|  |80");
    CHECK(e.mp3().comment == "  ");
    CHECK(e.mp3().title == " ");
}

TEST_CASE("A year is any text that is a small integer")
{
    struct Row {
        Text text;
        std::int16_t year;
    };
    for (const auto& row :
         {Row{"1999", 1999}, Row{" 7 ", 7}, Row{"-5", -5}, Row{"+5", 5}, Row{"1e3", 1000}, Row{"0.5", 0},
          Row{"1.5", 2}, Row{"2.5", 2}, Row{".6", 1}, Row{"32767", 32767}, Row{"-32768", -32768}}) {
        CAPTURE(row.text);
        Editor e;
        e.open();
        e.form.txtYear.setText(row.text);
        e.save();
        CHECK(e.mp3().year == row.year);
    }
}

TEST_CASE("Any other year is a failure that nobody handles, in the middle of the fields")
{
    struct Row {
        Text text;
        int failure;
    };
    for (const auto& row : {Row{"abcd", 13}, Row{"    ", 13}, Row{"19 9", 13}, Row{"1,99", 13},
                            Row{"'99", 13}, Row{"9e9", 6}, Row{"32768", 6}}) {
        CAPTURE(row.text);
        Editor e;
        int unhandled = 0;
        e.platform.toolkit().unhandled = [&](const Failure& failure) { unhandled = failure.number; };
        e.open();
        e.form.txtYear.setText(row.text);
        widgetOf<QPushButton>(e.form, "butSave")->click();
        CHECK(unhandled == row.failure);
        CHECK(e.calls() == "Mp3Player.Title = \nMp3Player.Artist = \nMp3Player.Album = \n"
                           "Mp3Player.GenreIndex = 80\n");
        CHECK(e.form.Visible());
        CHECK(e.platform.boxes.shown.empty());
    }
}

TEST_CASE("While the file plays, Save is refused, touches nothing and hides the editor all the same")
{
    for (const std::int16_t playing : {1, -1, 2}) {
        CAPTURE(playing);
        Editor e;
        e.open();
        e.fill("new");
        e.form.txtYear.setText("");
        e.form.txtComment.setText("");
        e.mp3().isPlaying = [=] { return playing; };
        e.save();
        CHECK(e.calls().empty());
        CHECK(e.contents() == "new|new|new|||80");
        CHECK(e.program.error().theerror.Caption() == refusal);
        CHECK(e.program.error().Visible());
        CHECK_FALSE(e.form.Visible());
    }
}

TEST_CASE("The moment of the click decides: a file started behind the editor refuses, a stopped one saves")
{
    Editor e;
    e.open();
    std::int16_t playing = 1;
    e.mp3().isPlaying = [&] { return playing; };
    e.save();
    CHECK(e.calls().empty());
    e.open();
    playing = 0;
    e.save();
    CHECK(e.calls() == savedUnchanged);
}

TEST_CASE("The tag goes to whatever file the engine has, whatever the editor shows")
{
    Editor e;
    e.open();
    e.window.mp3filename.setCaption("/m/other.mp3");
    e.save();
    CHECK(e.calls() == savedUnchanged);
    CHECK(e.form.filelocation.Text() == "/m/a.mp3");
}

TEST_CASE("A save leaves the main window's labels and its current file as they are")
{
    Editor e;
    e.window.stitle.setCaption("old title");
    e.open();
    e.form.txtTitle.setText("new title");
    e.save();
    CHECK(e.window.stitle.Caption() == "old title");
    CHECK(e.window.mp3filename.Caption() == "/m/a.mp3");
    CHECK(e.dialog().filterIndex == kind::mp3);
}

TEST_CASE("After a save without a change the editor shows the tag of before, the genre as it was written")
{
    Editor e;
    e.mp3().title = "T";
    e.mp3().year = 1;
    e.mp3().comment = "C";
    e.open();
    const Text before = e.contents();
    e.save();
    e.open();
    CHECK(e.contents() == before);
}

TEST_CASE("Cancel and the window manager's close hide the editor and keep what was typed")
{
    for (const bool byButton : {true, false}) {
        CAPTURE(byButton);
        Editor e;
        e.open();
        e.fill("typed");
        if (byButton)
            e.form.butCancel.Click.raise();
        else
            e.form.page()->window()->close();
        CHECK_FALSE(e.form.Visible());
        CHECK(e.contents() == "typed|typed|typed|typed|typed|80");
        CHECK(e.calls().empty());
        CHECK(&e.program.editFileInfoForm() == &e.form);
        e.open();
        CHECK(e.contents() == "|||||80");
    }
}

TEST_CASE("Unloading and terminating each empty the five boxes, in order")
{
    for (const bool unload : {true, false}) {
        CAPTURE(unload);
        Editor e;
        e.open();
        e.fill("x");
        Text heard;
        for (auto* box : e.boxes())
            box->Change.calls([&heard, box] { heard += Text(box->Name()) + " "; });
        (unload ? e.form.Unload : e.form.Terminate).raise();
        CHECK(heard == "txtTitle txtArtist txtAlbum txtYear txtComment ");
        CHECK(e.contents() == "|||||80");
        CHECK(e.form.filelocation.Text() == "/m/a.mp3");
    }
}
