// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/about_frame.h"
#include "info/edit_file_info_form.h"
#include "info/error.h"
#include "settingsdlg/settings.h"
#include "support/face.h"
#include "support/player.h"
#include "toolkit/toolkit.h"
#include "workbench/mp3_encoder.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QDialog>
#include <QTabBar>
#include <QTabWidget>
#include <doctest/doctest.h>

namespace
{

QAccessibleInterface& heard(Form& form, const ctl::Control& control)
{
    auto* widget = form.page()->findChild<QWidget*>(control.Name());
    auto* interface = QAccessible::queryAccessibleInterface(widget);
    REQUIRE(interface != nullptr);
    return *interface;
}

QStringList actionsOf(QAccessibleInterface& interface) { return interface.actionInterface()->actionNames(); }

// The caller has its answer before the press acts.
void press(QAccessibleInterface& interface)
{
    interface.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCoreApplication::processEvents();
}

int focusedRows(QAccessibleInterface& list)
{
    int focused = 0;
    for (int row = 0; row < list.tableInterface()->rowCount(); ++row)
        focused += list.tableInterface()->cellAt(row, 0)->state().focused;
    return focused;
}

struct Row {
    const ctl::Image& image;
    Text name;
};

}

TEST_CASE("An image that acts is a button with its tool tip's name; its press clicks")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    auto& key = heard(face, face.key);
    CHECK(key.role() == QAccessible::Button);
    CHECK(key.text(QAccessible::Name) == "Press me");
    CHECK(actionsOf(key) == QStringList{QAccessibleActionInterface::pressAction()});
    key.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    CHECK(face.told().empty());
    QCoreApplication::processEvents();
    CHECK(face.told() == "key click\n");
}

TEST_CASE("A name follows the tool tip")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.key.setToolTipText("Play");
    CHECK(heard(face, face.key).text(QAccessible::Name) == "Play");
}

TEST_CASE("A thumb is a slider, a picture without a click is a picture, and neither can be pressed")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    auto& thumb = heard(face, face.thumb);
    CHECK(thumb.role() == QAccessible::Slider);
    CHECK(thumb.text(QAccessible::Name) == "Thumb");
    auto& picture = heard(face, face.picture);
    CHECK(picture.role() == QAccessible::Graphic);
    CHECK(actionsOf(picture).isEmpty());
    press(picture);
    CHECK(face.told().empty());
}

TEST_CASE("A disabled image cannot be pressed")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.key.setEnabled(false);
    auto& key = heard(face, face.key);
    CHECK(key.state().disabled);
    press(key);
    CHECK(face.told().empty());
}

TEST_CASE("An unknown action does nothing")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    heard(face, face.key).actionInterface()->doAction("Fly");
    CHECK(face.told().empty());
}

TEST_CASE("The failure of a pressed image is met where all failures are that nobody handles")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    int number = 0;
    toolkit.unhandled = [&](const Failure& failure) { number = failure.number; };
    face.onClick = [] { throw Failure(Trouble::typeMismatch); };
    press(heard(face, face.key));
    CHECK(number == 13);
}

TEST_CASE("Every image of the main window that acts can be reached by its name")
{
    Player player;
    StartUp& window = player.window;
    const Row rows[] = {
        {window.imgMenu, "Velmora Menu"},
        {window.Minimizeimg, "Minimize"},
        {window.closeVLMimg, "Close Velmora"},
        {window.Image1, "Play"},
        {window.Image3, "Pause"},
        {window.Image2, "Stop"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.name);
        auto& interface = heard(window, row.image);
        CHECK(interface.role() == QAccessible::Button);
        CHECK(interface.text(QAccessible::Name).toStdString() == row.name);
    }
    CHECK(heard(window, window.vslider_img2).role() == QAccessible::Slider);
    press(heard(window, window.Image3));
    CHECK(window.paused_flag == 0);
    window.Image3.setEnabled(true);
    press(heard(window, window.Image3));
    CHECK(window.paused_flag == 1);
}

TEST_CASE("A press on an image that a box stands before, or that was disabled meanwhile, does nothing")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    {
        QDialog box;
        box.setModal(true);
        box.show();
        press(heard(face, face.key));
    }
    heard(face, face.key).actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    face.key.setEnabled(false);
    QCoreApplication::processEvents();
    CHECK(face.told().empty());
}

TEST_CASE("A window is a window with its title, and what only adorns it is not there")
{
    Player player;
    player.window.Show();
    auto& window = *QAccessible::queryAccessibleInterface(player.window.page());
    CHECK(window.role() == QAccessible::Window);
    CHECK(window.text(QAccessible::Name).toStdString() == player.window.Caption());
    CHECK(heard(player.window, player.window.TitleBarImg).state().invisible);
    CHECK_FALSE(heard(player.window, player.window.Image1).state().invisible);
    CHECK_FALSE(heard(player.window, player.window.posbar_img2).state().invisible);
}

TEST_CASE("The bars keep their names while their tool tips tell the value")
{
    Player player;
    player.window.vslider_tim1_Timer();
    player.window.balbar_tim1_Timer();
    CHECK(heard(player.window, player.window.vslider_img2).text(QAccessible::Name) == "Volume");
    CHECK(heard(player.window, player.window.balbar_img2).text(QAccessible::Name) == "Balance");
    CHECK(heard(player.window, player.window.posbar_img2).text(QAccessible::Name) == "Position");
}

TEST_CASE("Every control that takes keys has a name")
{
    Player player;
    Program& program = player.program;
    for (Form* form : std::initializer_list<Form*>{&player.window, &player.list(), &program.mp3Encoder(),
                                                   &program.settings(), &program.editFileInfoForm(),
                                                   &program.aboutFrame(), &program.error()})
        for (auto* widget : form->page()->findChildren<QWidget*>()) {
            const Text name = widget->objectName().toStdString();
            if (name.empty() || name.starts_with("qt_") || widget->focusPolicy() == Qt::NoFocus)
                continue;
            CAPTURE(form->Name());
            CAPTURE(name);
            CHECK(QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name) != "");
        }
}

TEST_CASE("A frame has its own name within another one")
{
    Player player;
    auto& workbench = player.program.mp3Encoder();
    CHECK(heard(workbench, workbench.frmEncCDtoWAVprogress).text(QAccessible::Name) == "Progress");
    CHECK(heard(workbench, workbench.EncCDtoWAVprogressThisTrack).text(QAccessible::Name) == "This Track");
}

TEST_CASE("A row selected by assistive technology is the list's selection")
{
    Player player;
    auto& list = player.list().PlayListLB;
    for (const char* row : {"/a.mp3", "/b.mp3", "/c.mp3"})
        list.AddItem(row);
    int clicks = 0;
    list.Click.calls([&] { ++clicks; });
    auto* table = heard(player.list(), list).tableInterface();
    REQUIRE(table != nullptr);
    table->selectRow(1);
    CHECK(clicks == 0); // the caller is answered first
    QCoreApplication::processEvents();
    CHECK(list.ListIndex() == 1);
    CHECK(clicks == 1);
    table->selectRow(2);
    table->selectRow(0);
    QCoreApplication::processEvents();
    CHECK(list.ListIndex() == 0);
    CHECK(clicks == 2);
    list.setListIndex(2);
    list.RemoveItem(0);
    QCoreApplication::processEvents();
    CHECK(list.ListIndex() == 1);
}

TEST_CASE("A bar is a slider: its value can be read and set as the user moves it")
{
    Player player;
    auto* volume = heard(player.window, player.window.vslider_img2).valueInterface();
    REQUIRE(volume != nullptr);
    CHECK(volume->minimumValue() == 0);
    CHECK(volume->maximumValue() == 100);
    CHECK(volume->minimumStepSize() == 1);
    volume->setCurrentValue(37.4);
    CHECK(player.platform.log.count("Mp3Player.SetVolume(37, 37)") == 0); // the caller is answered first
    QCoreApplication::processEvents();
    CHECK(player.platform.log.count("Mp3Player.SetVolume(37, 37)") == 1);
    CHECK(volume->currentValue() == 37);
    for (const double far : {1e30, -1e30}) {
        volume->setCurrentValue(far);
        QCoreApplication::processEvents();
        CHECK(volume->currentValue() == (far > 0 ? 100 : 0));
    }
    auto* balance = heard(player.window, player.window.balbar_img2).valueInterface();
    CHECK(balance->minimumValue() == -100);
    CHECK(heard(player.window, player.window.posbar_img2).valueInterface() != nullptr);
    CHECK(heard(player.window, player.window.Image1).valueInterface() == nullptr);
}

TEST_CASE("A drop-down list has its name, and its choice as its value")
{
    Player player;
    auto& settings = player.program.settings();
    auto& drives = heard(settings, settings.Drive1);
    CHECK(drives.role() == QAccessible::ComboBox);
    CHECK(drives.text(QAccessible::Name) == "Drive for the MP3 files");
    CHECK(drives.text(QAccessible::Value).toStdString().starts_with(settings.Drive1.Drive()));
    REQUIRE(drives.childCount() == 1);
    CHECK(drives.indexOfChild(drives.child(0)) == 0);
    auto& tags = player.program.editFileInfoForm();
    CHECK(heard(tags, tags.txtGenre).text(QAccessible::Name) == "Genre");
}

TEST_CASE("A row of a list has the focus only while its list has it")
{
    Player player;
    auto& window = player.list();
    for (const char* row : {"/a.mp3", "/b.mp3", "/c.mp3"})
        window.PlayListLB.AddItem(row);
    window.PlayListLB.setListIndex(1);
    window.Show();
    auto& list = heard(window, window.PlayListLB);
    auto* view = window.page()->findChild<QAbstractItemView*>("PlayListLB");
    window.page()->activateWindow();
    QCoreApplication::processEvents();
    view->setFocus();
    REQUIRE(view->hasFocus());
    CHECK(focusedRows(list) == 1);
    CHECK(list.tableInterface()->cellAt(1, 0)->state().focused);
    view->clearFocus();
    CHECK(focusedRows(list) == 0);
    window.PlayListLB.setListIndex(2);
    CHECK(focusedRows(list) == 0);
    CHECK(list.tableInterface()->cellAt(2, 0)->state().selected);
    view->setFocus();
    CHECK(list.tableInterface()->cellAt(2, 0)->state().focused);
    CHECK(window.PlayListLB.ListIndex() == 2);
}

TEST_CASE("A row of a directory list has the focus only while its list has it, and gets it back")
{
    Player player;
    auto& workbench = player.program.mp3Encoder();
    workbench.Show();
    workbench.page()->activateWindow();
    QCoreApplication::processEvents();
    auto& list = heard(workbench, workbench.Dir1);
    auto* view = workbench.page()->findChild<QAbstractItemView*>("Dir1");
    view->setFocus();
    REQUIRE(view->hasFocus());
    CHECK(focusedRows(list) == 1);
    const int row = view->currentIndex().row();
    view->clearFocus();
    CHECK(focusedRows(list) == 0);
    view->setFocus();
    CHECK(view->currentIndex().row() == row);
    CHECK(view->selectionModel()->isSelected(view->currentIndex()));
}

TEST_CASE("Tabs have a name of their own, and not that of the tab in front")
{
    Player player;
    auto& settings = player.program.settings();
    settings.Show();
    auto* bar = settings.page()->findChild<QTabWidget*>("SettingsTab")->tabBar();
    auto* tabs = QAccessible::queryAccessibleInterface(bar);
    REQUIRE(tabs != nullptr);
    CHECK(tabs->role() == QAccessible::PageTabList);
    REQUIRE(tabs->childCount() == 4);
    for (int front = 0; front < 4; ++front) {
        settings.SettingsTab.setTab(front);
        CHECK(tabs->text(QAccessible::Name) == "Settings");
        for (int index = 0; index < 4; ++index) {
            auto* tab = tabs->child(index);
            CHECK(tab->role() == QAccessible::PageTab);
            CHECK(tab->text(QAccessible::Name) == bar->tabText(index));
            CHECK(tab->state().selected == (index == front));
            CHECK(tabs->indexOfChild(tab) == index);
            CHECK(tabs->childAt(tab->rect().center().x(), tab->rect().center().y()) == tab);
            CHECK(tab->parent() == tabs);
        }
    }
    auto& about = player.program.aboutFrame();
    auto* news = QAccessible::queryAccessibleInterface(about.page()->findChild<QTabBar*>())->child(1);
    CHECK(news->text(QAccessible::Name) == "Updates & Bug Fixes");
    press(*news);
    CHECK(about.SSTab1.Tab() == 1);
}
