#include "fakes/fake_platform.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

#include <doctest/doctest.h>

TEST_CASE("Without a saved place the main window opens in the middle of the screen")
{
    FakePlatform platform;
    Program program(platform);
    StartUp& window = program.startUp();
    const Extent screen = platform.toolkit().screen();
    CHECK(window.Left() == doctest::Approx((screen.width - window.Width()) / 2).epsilon(0.01));
    CHECK(window.Top() == doctest::Approx((screen.height - window.Height()) / 2).epsilon(0.01));
    CHECK(window.Caption() == "Velmora v2.0");
}
