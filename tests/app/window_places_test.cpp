#include "app/window_places.h"

#include "app/mod_main.h"
#include "support/scripted_desktop.h"

#include <gtest/gtest.h>

using namespace app;

namespace {

using Bounds = desktop::Bounds;

constexpr Bounds full_hd{0, 0, 1920, 1080};

Rectangle pixels(int left, int top, int right, int bottom) {
    return {from_pixels(left), from_pixels(top), from_pixels(right), from_pixels(bottom)};
}

struct Window_Places : testing::Test {
    Window_Places() { reset_globals(); }
    ~Window_Places() override { reset_globals(); }

    void monitors(std::vector<Bounds> all) {
        support::Scripted_Desktop desktop;
        desktop.screens.clear();
        for (const Bounds& bounds : all) desktop.screens.push_back({bounds, bounds});
        Get_Monitors(desktop);
    }
};

} // namespace

TEST_F(Window_Places, a_window_belongs_to_the_monitor_that_holds_its_centre_strictly) {
    monitors({full_hd, {1920, 0, 3200, 1024}, {0, -900, 1600, 0}});
    const struct {
        const char* name;
        Rectangle window;
        int monitor;
    } cases[] = {
        {"inside the first", pixels(100, 100, 300, 300), 0},
        {"inside the second", pixels(2000, 100, 2200, 300), 1},
        {"above, at negative height", pixels(100, -500, 300, -300), 2},
        {"centre on the edge between two", pixels(1820, 100, 2020, 300), 0},
        {"centre on the right edge of the second", pixels(3100, 100, 3300, 300), 0},
        {"centre on the top edge of the second", pixels(2000, -100, 2200, 100), 0},
        {"centre on the bottom edge of the second", pixels(2000, 924, 2200, 1124), 0},
        {"off every monitor", pixels(9000, 9000, 9200, 9200), 0},
    };
    for (const auto& c : cases) EXPECT_EQ(Monitor_Of_Form(c.window), c.monitor) << c.name;
}

TEST_F(Window_Places, a_window_is_moved_onto_its_monitor_and_never_resized) {
    monitors({{0, 0, 1000, 800}, {1000, 0, 2000, 600}});
    const struct {
        const char* name;
        Rectangle window;
        Rectangle kept;
    } cases[] = {
        {"inside stays", pixels(10, 20, 110, 120), pixels(10, 20, 110, 120)},
        {"over the right edge", pixels(850, 0, 1050, 100), pixels(800, 0, 1000, 100)},
        {"over the bottom of the second", pixels(1200, 550, 1300, 640),
         pixels(1200, 510, 1300, 600)},
        {"over the left and top edge", pixels(-40, -30, 60, 70), pixels(0, 0, 100, 100)},
        {"off every monitor: onto the first", pixels(5000, 5000, 5100, 5100),
         pixels(900, 700, 1000, 800)},
        {"wider than the monitor: begins at its edge", pixels(-50, 0, 1150, 100),
         pixels(0, 0, 1200, 100)},
    };
    for (const auto& c : cases) EXPECT_EQ(Keep_Form_On_Monitor(c.window), c.kept) << c.name;
    monitors({});
    EXPECT_EQ(Keep_Form_On_Monitor(pixels(-9, -9, 1, 1)), pixels(-9, -9, 1, 1));
}

TEST_F(Window_Places, the_whole_window_is_seen_with_its_frame_and_beside_the_panels) {
    using Screens = std::vector<desktop::Monitor>;
    const Screens one{{full_hd, full_hd}};
    const Screens panels{{full_hd, {0, 28, 1920, 1040}}};
    const Screens two{{full_hd, {0, 28, 1920, 1080}},
                      {{1920, 0, 3200, 1024}, {1920, 0, 3200, 1024}}};
    const Screens laptop{{{0, 0, 1280, 720}, {0, 0, 1280, 680}}};
    const Screens tiny{{{0, 0, 1024, 500}, {0, 20, 1024, 500}}};
    const int far = 10'000'000 / 15; // the furthest that is read from the settings
    const struct {
        const char* what;
        const Screens& screens;
        int left, top, height;
        int left_then, top_then, height_then;
        int width = 1063, width_then = 1063;
    } cases[] = {
        {"inside", one, 100, 200, 600, 100, 200, 600},
        {"left and top of a far place", one, 2000, 2000, 600, 1920 - 1071, 1080 - 628, 600},
        {"negative", one, -5, -7, 600, 0, 0, 600},
        {"as far as can be", one, far, -far, far, 1920 - 1071, 0, 1080 - 28},
        {"no height", one, 10, 10, -far, 10, 10, 504},
        {"under the upper panel", panels, 0, 0, 600, 0, 28, 600},
        {"over the lower panel", panels, 0, 700, 600, 0, 1040 - 628, 600},
        {"higher than the panels leave", panels, 0, 50, 1080, 0, 28, 1012 - 28},
        {"on the second monitor", two, 2000, 100, 700, 2000, 100, 700},
        {"across two monitors", two, 1500, 100, 700, 1500, 100, 700},
        {"across, below the lower of them", two, 1500, 440, 612, 1920, 1024 - 640, 612},
        {"a first start on a small screen", laptop, 108, 0, 720, 108, 0, 680 - 28},
        {"wider than the monitor", laptop, 9, 0, 600, 0, 0, 600, 5000, 1280 - 8},
        {"no width", laptop, 9, 0, 600, 9, 0, 600, 0, 300},
        {"no room at all", tiny, 50, 50, 700, 0, 20, 504, 1063, 1016},
    };
    const Frame frame{from_pixels(4), from_pixels(24), from_pixels(4), from_pixels(4)};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        support::Scripted_Desktop desktop;
        desktop.screens = c.screens;
        Get_Monitors(desktop);
        const Window_Place wanted{from_pixels(c.height), from_pixels(c.width), from_pixels(c.left),
                                  from_pixels(c.top)};
        const Inner_Size least{from_pixels(504), from_pixels(300)};
        const Window_Place place = place_on_screen(wanted, frame, least);
        EXPECT_EQ(to_pixels(place.left), c.left_then);
        EXPECT_EQ(to_pixels(place.top), c.top_then);
        EXPECT_EQ(to_pixels(place.height), c.height_then);
        EXPECT_EQ(to_pixels(place.width), c.width_then);
        EXPECT_EQ(place_on_screen(place, frame, least), place) << "again";
    }
    reset_globals();
    const Window_Place wanted{{9000}, {15945}, {-9}, {-9}};
    EXPECT_EQ(place_on_screen(wanted, {}, {}), wanted) << "no monitor is known";
}
