// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"
#include "support/pointer.h"
#include "toolkit/skin.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <doctest/doctest.h>

namespace
{

const Text confMissing = "The default mp3 configuration file (conf.mp3) was not found.\r\n"
                         "Without this file you will not be able to change the volume.";

void withoutConf(FakePlatform& platform) { platform.scan.folders["/app/*.*"].pop_back(); }

// What its opens answer, one after the other, until it is taken.
void refuseConf(FakePlatform& platform, const std::vector<std::int16_t>& answers)
{
    platform.onMp3Play = [answers](RecordingMp3Play& engine, const Text& name) {
        if (name == "Mp3Player")
            engine.openResults = {answers.begin(), answers.end()};
    };
}

struct Levels {
    Text what;
    std::int16_t left;
    std::int16_t right;
    std::int32_t volume;
    std::int32_t balance;
    Twips volumeThumb;
    Twips balanceThumb;
};

struct Picture {
    const ctl::Image& image;
    Text name;
    Text toolTip;
    Place place;
};

struct Caption {
    const ctl::Label& label;
    Text name;
    Text caption;
    Place place;
};

void placedAt3000(FakePlatform& platform)
{
    platform.store.values[{"Position StartUp Window", "Left"}] = "3000";
    platform.store.values[{"Position StartUp Window", "Top"}] = "6000";
}

bool operator==(const Place& one, const Place& other)
{
    return one.left == other.left && one.top == other.top && one.width == other.width &&
           one.height == other.height;
}

Place placeOf(const ctl::Control& control)
{
    return {control.Left(), control.Top(), control.Width(), control.Height()};
}

// Everything that a start calls, in order.
Text startCalls(const std::function<void(FakePlatform&)>& prepare)
{
    FakePlatform platform;
    prepare(platform);
    Program program(platform);
    program.startUp();
    return lines(platform.log.all());
}

}

TEST_CASE("The images stand where the face has them, under these tool tips")
{
    Player p([](FakePlatform& platform) { withoutConf(platform); });
    const StartUp& w = p.window;
    const Picture pictures[] = {
        {w.TitleBarImg, "TitleBarImg", "", {0, 0, 6450, 225}},
        {w.imgMenu, "imgMenu", "Velmora Menu", {0, 0, 240, 225}},
        {w.Minimizeimg, "Minimizeimg", "Minimize", {6120, 30, 135, 150}},
        {w.closeVLMimg, "closeVLMimg", "Close Velmora", {6275, 25, 135, 150}},
        {w.Image1, "Image1", "Play", {480, 1200, 360, 330}},
        {w.Image3, "Image3", "Pause", {840, 1200, 360, 330}},
        {w.Image2, "Image2", "Stop", {1200, 1200, 360, 330}},
        {w.vslider_bg, "vslider_bg", "", {360, 1940, 1320, 75}},
        {w.vslider_img2, "vslider_img2", "Volume", {960, 1852, 105, 225}},
        {w.balbar_bg, "balbar_bg", "", {360, 2220, 1320, 75}},
        {w.balbar_img2, "balbar_img2", "", {960, 2150, 105, 225}},
        {w.posbar_bg, "posbar_bg", "", {1920, 2325, 4125, 75}},
        {w.posbar_img2, "posbar_img2", "", {1920, 2250, 105, 225}},
    };
    for (const auto& c : pictures) {
        CAPTURE(c.name);
        CHECK(c.image.Name() == c.name);
        CHECK(c.image.ToolTipText() == c.toolTip);
        CHECK(placeOf(c.image) == c.place);
    }
    CHECK(w.Width() == 6435);
    CHECK(w.Height() == 2985);
}

TEST_CASE("The labels stand in their rows, under these captions")
{
    Player p;
    const StartUp& w = p.window;
    const Caption captions[] = {
        {w.Label1, "Label1", "0:00", {240, 360, 1575, 615}},
        {w.fileinfofield, "fileinfofield", "File Information", {1875, 240, 4215, 255}},
        {w.lblTitle, "lblTitle", "Title:", {1920, 480, 780, 255}},
        {w.stitle, "stitle", "", {2760, 480, 3255, 255}},
        {w.lblArits, "lblArits", "Artist:", {1920, 720, 780, 255}},
        {w.sartist, "sartist", "", {2760, 720, 3255, 255}},
        {w.lblAlbum, "lblAlbum", "Album:", {1920, 960, 780, 255}},
        {w.salbum, "salbum", "", {2760, 960, 3255, 255}},
        {w.lblGenre, "lblGenre", "Genre:", {1920, 1200, 780, 255}},
        {w.sgenre, "sgenre", "", {2760, 1200, 3255, 255}},
        {w.lblLength, "lblLength", "Length:", {1920, 1440, 780, 255}},
        {w.slength, "slength", "", {2760, 1440, 3255, 255}},
        {w.lblBitrate, "lblBitrate", "Bitrate:", {1920, 1680, 780, 255}},
        {w.sbitrate, "sbitrate", "", {2760, 1680, 495, 255}},
        {w.lblkbps, "lblkbps", "kbps", {3270, 1680, 495, 255}},
        {w.lblSampleFreq, "lblSampleFreq", "Frequency:", {1920, 1920, 780, 255}},
        {w.sfrequency, "sfrequency", "", {2760, 1920, 495, 255}},
        {w.lblkHz, "lblkHz", "kHz", {3270, 1920, 495, 255}},
    };
    for (const auto& c : captions) {
        CAPTURE(c.name);
        CHECK(c.label.Name() == c.name);
        CHECK(c.label.Caption() == c.caption);
        CHECK(placeOf(c.label) == c.place);
    }
    CHECK(w.mp3filename.Name() == Text("mp3filename"));
}

TEST_CASE("Frames go round the information, the time, the transport and the two small bars")
{
    Player p;
    QWidget& page = *p.window.page();
    QImage face(page.size(), QImage::Format_RGB32);
    page.render(&face, {}, {}, QWidget::RenderFlags());
    QImage bare(page.size(), QImage::Format_RGB32);
    QPainter painter(&bare);
    p.platform.toolkit().skin().draw(painter, "StartUp", Skin::ImageState::normal, page.rect());
    painter.end();

    struct Row {
        Text frame;
        QRect rect;
    };
    const Row rows[] = {
        {"Shape1", {125, 16, 281, 131}},
        {"Shape2", {16, 16, 105, 49}},
        {"Shape3", {16, 72, 105, 41}},
        {"Shape4", {16, 120, 105, 42}},
    };
    const auto isFramed = [&](QPoint at) { return face.pixel(at) != bare.pixel(at); };
    for (const auto& row : rows) {
        CAPTURE(row.frame);
        const QRect& rect = row.rect;
        const QPoint middle = rect.center();
        CHECK(isFramed({rect.left(), middle.y()}));
        CHECK(isFramed({rect.right(), middle.y()}));
        CHECK(isFramed({middle.x(), rect.top()}));
        CHECK(isFramed({middle.x(), rect.bottom()}));
        CHECK_FALSE(isFramed({rect.left() - 1, middle.y()}));
        CHECK_FALSE(isFramed({rect.right() + 1, middle.y()}));
        CHECK_FALSE(isFramed({middle.x(), rect.top() - 1}));
        CHECK_FALSE(isFramed({middle.x(), rect.bottom() + 1}));
    }
}

TEST_CASE("The three transport images have a pointer of their own")
{
    Player p;
    const auto pointerOver = [&](const ctl::Image& image) {
        return p.window.page()->findChild<QWidget*>(image.Name())->cursor().shape();
    };
    for (const auto* image : {&p.window.Image1, &p.window.Image2, &p.window.Image3})
        CHECK(pointerOver(*image) == Qt::PointingHandCursor);
    for (const auto* image : {&p.window.imgMenu, &p.window.closeVLMimg, &p.window.Minimizeimg})
        CHECK(pointerOver(*image) == Qt::ArrowCursor);
}

TEST_CASE("The hidden sliders keep these ranges")
{
    Player p([](FakePlatform& platform) { withoutConf(platform); });
    CHECK(p.window.volslider.Min() == 0);
    CHECK(p.window.volslider.Max() == 100);
    CHECK(p.window.volslider.ToolTipText() == "Volume");
    CHECK(p.window.balslider.Min() == -100);
    CHECK(p.window.balslider.Max() == 100);
    CHECK(p.window.balslider.ToolTipText() == "Balance");
    CHECK(p.window.pbar.Min() == 0);
    CHECK(p.window.pbar.Max() == 100);
    CHECK(p.window.pbar.ToolTipText().empty());
}

TEST_CASE("After the start there is no file, no pause and nothing open")
{
    Player p;
    StartUp& w = p.window;
    CHECK(w.mp3filename.Caption().empty());
    CHECK(w.paused_flag == 0);
    CHECK_FALSE(w.Image3.Enabled());
    CHECK(w.Image1.Enabled());
    CHECK(w.Image2.Enabled());
    CHECK(w.Label1.Caption() == "0:00");
    CHECK_FALSE(p.mp3().isOpen);
    CHECK(p.dialog().filterIndex == 0);
    CHECK(w.pbar.Value() == 0);
    for (const auto* timer : {&w.Timer, &w.vslider_tim1, &w.balbar_tim1, &w.posbar_tim1})
        CHECK(timer->Enabled());
    CHECK_FALSE(w.dock_top);
    CHECK(w.Caption() == "Velmora v2.0");
    CHECK_FALSE(w.Visible());
    const auto* time = w.page()->findChild<QLabel*>("Label1");
    CHECK(time->font().bold());
    CHECK(time->font().pixelSize() == 32); // 24 points
}

TEST_CASE("The start goes in this order")
{
    CHECK(startCalls(placedAt3000) == "mainMenu.hWndOwner\n"
                                      "mainMenu.Clear\n"
                                      "mainMenu.Store(VLMMenu)\n"
                                      "listMenu.hWndOwner\n"
                                      "listMenu.Clear\n"
                                      "listMenu.Store(PlayListEditorMenu)\n"
                                      "Store.Position PlayList Editor/Left = 3000\n"
                                      "Store.Position PlayList Editor/Top = 8985\n"
                                      "Store.Position PlayList Editor/POS = \n"
                                      "Profile.read PlayList\n"
                                      "Scan.FindFirstFile(/app/*.*)\n"
                                      "Scan.FindClose\n"
                                      "Mp3Player.Open(/app/conf.mp3)\n"
                                      "Mp3Player.RightVolume\n"
                                      "Mp3Player.LeftVolume\n"
                                      "Mp3Player.Close\n");
}

TEST_CASE("A saved place is taken, each coordinate by itself")
{
    FakePlatform screen;
    const Place size = screen.toolkit().screen();
    const auto middle = [](Twips outer, Twips inner) {
        return std::round((outer / 2 - inner / 2) / twipsPerPixel) * twipsPerPixel;
    };
    struct Row {
        Text what;
        Text left;
        Text top;
        Twips stands;
        Twips standsTop;
    };
    const Row rows[] = {
        {"nothing saved", "", "", middle(size.width, 6435), middle(size.height, 2985)},
        {"both saved", "1500", "600", 1500, 600},
        {"Left alone", "1500", "", 1500, middle(size.height, 2985)},
        {"Top alone", "", "600", middle(size.width, 6435), 600},
        {"a nought is a place", "0", "0", 0, 0},
        {"off the screen", "-480000", "480000", -480000, 480000},
        {"a fraction", "1507.5", "592.6", 1515, 600},
    };
    for (const auto& c : rows) {
        CAPTURE(c.what);
        Player p([&](FakePlatform& platform) {
            platform.store.values[{"Position StartUp Window", "Left"}] = c.left;
            platform.store.values[{"Position StartUp Window", "Top"}] = c.top;
        });
        CHECK(p.window.Left() == c.stands);
        CHECK(p.window.Top() == c.standsTop);
    }
}

TEST_CASE("A saved place that is no number is a failure that nothing handles")
{
    struct Row {
        Text left;
        Text top;
        int number;
    };
    for (const auto& c : {Row{"left", "0", 13}, Row{"0", "1,5", 13}, Row{"1e39", "0", 6}}) {
        CAPTURE(c.left);
        FakePlatform platform;
        platform.store.values[{"Position StartUp Window", "Left"}] = c.left;
        platform.store.values[{"Position StartUp Window", "Top"}] = c.top;
        Program program(platform);
        int number = 0;
        guarded([&](const Failure& failure) { number = failure.number; }, [&] { program.startUp(); });
        CHECK(number == c.number);
        CHECK(platform.boxes.shown.empty());
        CHECK(platform.listMenu == nullptr);
    }
}

TEST_CASE("The list is loaded on every start and shows only for YES")
{
    for (const Text shown : {"YES", "", "NO", "yes", "Yes", "YES ", "TRUE"}) {
        CAPTURE(shown);
        Player p([&](FakePlatform& platform) {
            platform.store.values[{"Position PlayList Editor", "SHOWN"}] = shown;
        });
        CHECK(p.platform.listMenu != nullptr);
        CHECK(p.list().Visible() == (shown == "YES"));
    }
}

TEST_CASE("The place is settled before the list is loaded, which stands below it")
{
    Player p([](FakePlatform& platform) {
        platform.store.values[{"Position StartUp Window", "Left"}] = "1500";
        platform.store.values[{"Position StartUp Window", "Top"}] = "600";
    });
    CHECK(p.list().Left() == 1500);
    CHECK(p.list().Top() == 3585);
}

TEST_CASE("Volume and balance are read back from the engine, and the thumbs placed by them")
{
    const Levels levels[] = {
        {"silence", 0, 0, 0, 0, 360, 967.5F},
        {"full", 100, 100, 100, 0, 1575, 967.5F},
        {"the right channel stronger", 50, 80, 65, 30, 1149.75F, 1149.75F},
        {"the left channel stronger", 80, 50, 65, -30, 1149.75F, 785.25F},
        {"a mean of a half goes to the even neighbour below", 40, 41, 40, 1, 846, 973.575F},
        {"a mean of a half goes to the even neighbour above", 41, 42, 42, 1, 870.3F, 973.575F},
        {"all on the right", 0, 100, 50, 100, 967.5F, 1575},
        {"all on the left", 100, 0, 50, -100, 967.5F, 360},
    };
    for (const auto& c : levels) {
        CAPTURE(c.what);
        Player p([&](FakePlatform& platform) {
            platform.onMp3Play = [&](RecordingMp3Play& engine, const Text&) {
                engine.left = c.left;
                engine.right = c.right;
            };
        });
        CHECK(p.window.volslider.Value() == c.volume);
        CHECK(p.window.balslider.Value() == c.balance);
        CHECK(p.window.vslider_img2.Left() == doctest::Approx(c.volumeThumb).epsilon(1e-6));
        CHECK(p.window.balbar_img2.Left() == doctest::Approx(c.balanceThumb).epsilon(1e-6));
    }
}

TEST_CASE("Without conf.mp3 there is one message, and the program starts with the design's numbers")
{
    Player p(withoutConf);
    REQUIRE(p.platform.boxes.shown.size() == 1);
    const auto& box = p.platform.boxes.shown.front();
    CHECK(box.text == confMissing);
    CHECK(box.title == "conf.mp3 not found");
    CHECK(box.icon == MessageBoxes::Icon::exclamation);
    CHECK(box.buttons == MessageBoxes::Buttons::ok);
    CHECK(p.window.volslider.Value() == 50);
    CHECK(p.window.balslider.Value() == 0);
    CHECK(p.window.vslider_img2.Left() == 960);
    CHECK(p.window.balbar_img2.Left() == 960);
    CHECK(p.window.Caption() == "Velmora v2.0");
    CHECK(startCalls(withoutConf).find("Mp3Player.") == Text::npos);
}

TEST_CASE("The message comes before the main window shows; the list may show already")
{
    FakePlatform platform;
    withoutConf(platform);
    platform.store.values[{"Position PlayList Editor", "SHOWN"}] = "YES";
    Program program(platform);
    bool asked = false;
    platform.boxes.onShow = [&] {
        asked = true;
        CHECK_FALSE(program.startUp().Visible());
        CHECK(program.playListEditor().Visible());
        CHECK(program.startUp().Caption() == "Velmora v2.0");
    };
    program.startUp();
    CHECK(asked);
}

TEST_CASE("conf.mp3 is found whatever its letters' case, and not when it is a plain file")
{
    const auto confAs = [](const FoundFile& entry) {
        return [entry](FakePlatform& platform) { platform.scan.folders["/app/*.*"].back() = entry; };
    };
    CHECK(startCalls(confAs({FoundFile::archive, "CONF.MP3"})).find("Mp3Player.Open") != Text::npos);
    CHECK(startCalls(confAs({FoundFile::plainNormal, "conf.mp3"})).find("Mp3Player.Open") == Text::npos);
}

TEST_CASE("The application folder is taken as the system gives it")
{
    Player p([](FakePlatform& platform) {
        platform.folder = "/";
        platform.scan.folders["//*.*"] = {{FoundFile::archive, "conf.mp3"}};
    });
    CHECK(p.window.conf_path == "//conf.mp3");
}

TEST_CASE("Who starts the program again while its start waits is told what it waits for")
{
    FakePlatform platform;
    refuseConf(platform, std::vector<std::int16_t>(50, 7));
    Program program(platform);
    bool raised = false;
    platform.scriptedPump.steps.assign(1, [&] {
        program.raise();
        raised = true;
    });
    CHECK_THROWS_AS(program.start(), StillWaiting);
    CHECK(raised);
    CHECK(platform.recordingShell.told ==
          std::vector<Text>{
              "Velmora is still starting: /app/conf.mp3 cannot be opened. Velmora waits until it can: "
              "put an undamaged one in its place."});
}

TEST_CASE("A conf.mp3 that cannot be opened keeps the start waiting, with events going on")
{
    FakePlatform platform;
    refuseConf(platform, std::vector<std::int16_t>(50, 7));
    Program program(platform);
    int ticks = 0;
    platform.scriptedPump.steps.assign(4, [&] {
        ++ticks;
        program.startUp().Timer.Timer.raise();
        program.startUp().vslider_tim1.Timer.raise();
    });
    CHECK_THROWS_AS(program.startUp(), StillWaiting);
    CHECK(ticks == 4);
    CHECK(platform.log.count("Mp3Player.Open(/app/conf.mp3)") == 5);
    CHECK(platform.log.count("Store.Position PlayList Editor/SHOWN = NO") == 4);
    CHECK(platform.log.count("Mp3Player.RightVolume") == 0);
}

TEST_CASE("A conf.mp3 that opens at the third try is read then")
{
    FakePlatform platform;
    refuseConf(platform, {1, 1});
    platform.scriptedPump.steps = {{}, {}};
    Program program(platform);
    program.startUp();
    CHECK(lines(platform.log.of("Mp3Player")) ==
          "Mp3Player.Open(/app/conf.mp3)\nMp3Player.Open(/app/conf.mp3)\nMp3Player.Open(/app/conf.mp3)\n"
          "Mp3Player.RightVolume\nMp3Player.LeftVolume\nMp3Player.Close\n");
}

TEST_CASE("The close image ends the program at once, also while a file plays")
{
    Player p;
    p.current("/m/a.mp3", kind::mp3);
    p.window.closeVLMimg.Click.raise();
    CHECK(p.platform.ends == 1);
    CHECK(p.calls().empty());
}

TEST_CASE("Any other way of closing stops and closes both engines first, once")
{
    Player p;
    p.window.Show();
    p.calls();
    p.window.page()->close();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMMControl1.Close\n");
    CHECK(p.window.Visible()); // to the very end of the program
    CHECK(p.platform.ends == 1);
}

TEST_CASE("Unload and Terminate do the same three steps and end the program")
{
    Player p;
    p.window.Unload.raise();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMMControl1.Close\n");
    CHECK(p.platform.ends == 1);
    p.window.Terminate.raise();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMMControl1.Close\n");
    CHECK(p.platform.ends == 2);
}

TEST_CASE("Nothing is stored when the program ends")
{
    Player p;
    p.window.Unload.raise();
    p.window.closeVLMimg_Click();
    CHECK(p.platform.log.of("Store").empty());
}

TEST_CASE("Any button on the title bar drags the window")
{
    for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        Player p;
        p.window.setLeft(1500);
        p.window.setTop(1500);
        p.window.Show();
        QApplication::processEvents();
        Pointer pointer(p.window);
        QCursor::setPos(300, 105);
        pointer.to({200, 5}).press(button).to({230, 25});
        CHECK(p.window.Left() == 1950);
        CHECK(p.window.Top() == 1800);
        pointer.release(button).to({100, 100});
        CHECK(p.window.Left() == 1950);
        CHECK(p.platform.log.of("Store").empty());
    }
}

TEST_CASE("The images over the title bar take their own clicks")
{
    Player p;
    p.window.Show();
    p.calls();
    Pointer pointer(p.window);
    pointer.click(p.window.imgMenu);
    CHECK(p.calls().starts_with("mainMenu.Restore(VLMMenu)\n"));
    pointer.click(p.window.closeVLMimg);
    CHECK(p.platform.ends == 1);
    pointer.click(p.window.Minimizeimg);
    CHECK(p.window.WindowState() == Form::minimized);
}

TEST_CASE("Pause cannot be clicked before the first Play")
{
    Player p;
    p.window.Show();
    p.calls();
    Pointer pointer(p.window);
    pointer.click(p.window.Image3);
    CHECK(p.calls().empty());
    CHECK(p.window.paused_flag == 0);
    p.current("/m/a.mp3", kind::mp3);
    pointer.click(p.window.Image1);
    pointer.click(p.window.Image3);
    CHECK(p.calls().ends_with("Mp3Player.Play\nMp3Player.Pause\n"));
}

TEST_CASE("A window is made at its first touch and kept")
{
    Player p;
    CHECK(&p.program.startUp() == &p.window);
    CHECK(&p.program.playListEditor() == &p.program.playListEditor());
    p.program.playListEditor().Hide();
    p.calls();
    p.program.playListEditor().Show();
    CHECK(p.calls().find("listMenu.Clear") == Text::npos);
}

TEST_CASE("Two programs live side by side")
{
    Player one;
    Player other;
    one.choose("/m/1.mp3", kind::mp3);
    one.window.Image1_Click();
    CHECK(other.window.mp3filename.Caption().empty());
    CHECK(other.calls().empty());
    other.choose("/m/2.wav", kind::wav);
    other.window.Image1_Click();
    CHECK(one.window.mp3filename.Caption() == "/m/1.mp3");
    CHECK(one.stored("General Settings", "FileType") == "2");
    CHECK(other.stored("General Settings", "FileType") == "1");
    one.window.Show();
    other.window.Show();
    one.calls();
    other.calls();
    Pointer(one.window).click(one.window.Image3);
    CHECK(one.calls() == "Mp3Player.Pause\n");
    CHECK(other.calls().empty());
}
