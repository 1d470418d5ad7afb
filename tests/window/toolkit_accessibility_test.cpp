#include "support/face.h"
#include "support/player.h"
#include "toolkit/toolkit.h"

#include <QAccessible>
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

void press(QAccessibleInterface& interface)
{
    interface.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
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
    press(key);
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
    face.onClick = [] { throw failure(13); };
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
