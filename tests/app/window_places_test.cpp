#include "app/window_places.h"

#include "app/mod_main.h"
#include "support/scripted_desktop.h"

#include <gtest/gtest.h>

using namespace app;

namespace {

using Screens = std::vector<desktop::Monitor>;

Rectangle pixels(int left, int top, int right, int bottom) {
    return {from_pixels(left), from_pixels(top), from_pixels(right), from_pixels(bottom)};
}

struct Window_Places : testing::Test {
    ~Window_Places() override { reset_globals(); }

    void monitors(const Screens& all) {
        support::Scripted_Desktop desktop;
        desktop.screens = all;
        Get_Monitors(desktop);
    }
};

} // namespace

TEST_F(Window_Places, twips_are_rounded_to_the_nearest_pixel) {
    for (const auto& [twips, rounded] :
         {std::pair(7, 0), {8, 1}, {22, 1}, {23, 2}, {-7, 0}, {-8, -1}})
        EXPECT_EQ(to_pixels({twips}), rounded) << twips;
}

TEST_F(Window_Places, the_desktop_spans_all_monitors) {
    monitors({{{0, 0, 1, 1}, {0, 0, 1, 1}}}); // of before
    monitors({{{0, 0, 1920, 1080}, {0, 28, 1920, 1080}},
              {{-1280, 200, 0, 1224}, {-1280, 200, 0, 1224}},
              {{0, -900, 1600, 0}, {0, -900, 1600, 0}}});
    EXPECT_EQ(globals.MonitorCount, 3);
    EXPECT_EQ(globals.VirtualScreen, pixels(-1280, -900, 1920, 1224));
    EXPECT_EQ(globals.MonitorRects.at(1), pixels(-1280, 200, 0, 1224));
    EXPECT_EQ(globals.MonitorAreas.at(0), pixels(0, 28, 1920, 1080));
}

TEST_F(Window_Places, a_window_belongs_to_the_monitor_that_holds_its_centre_and_is_moved_onto_it) {
    monitors({{{0, 0, 1000, 800}, {0, 0, 1000, 800}},
              {{1000, 0, 2000, 600}, {1000, 0, 2000, 600}},
              {{0, -900, 1000, 0}, {0, -900, 1000, 0}}});
    const struct {
        const char* what;
        Rectangle window;
        int monitor;
        Rectangle kept;
    } cases[] = {
        {"inside", pixels(10, 20, 110, 120), 0, pixels(10, 20, 110, 120)},
        {"over the right edge", pixels(850, 0, 1050, 100), 0, pixels(800, 0, 1000, 100)},
        {"over the bottom", pixels(1200, 550, 1300, 640), 1, pixels(1200, 510, 1300, 600)},
        {"over left and top", pixels(-40, -940, 60, -840), 2, pixels(0, -900, 100, -800)},
        {"off all", pixels(5000, 5000, 5100, 5100), 0, pixels(900, 700, 1000, 800)},
        {"too wide: begins at the edge", pixels(950, 0, 2150, 100), 1, pixels(1000, 0, 2200, 100)},
        {"centre between two", pixels(900, 100, 1100, 300), 0, pixels(800, 100, 1000, 300)},
        {"centre right", pixels(1900, 100, 2100, 300), 0, pixels(800, 100, 1000, 300)},
        {"centre above", pixels(1200, -100, 1400, 100), 0, pixels(800, 0, 1000, 200)},
        {"centre below", pixels(1200, 500, 1400, 700), 0, pixels(800, 500, 1000, 700)},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Monitor_Of_Form(c.window), c.monitor) << c.what;
        EXPECT_EQ(Keep_Form_On_Monitor(c.window), c.kept) << c.what;
    }
    monitors({});
    EXPECT_EQ(Keep_Form_On_Monitor(cases[4].window), cases[4].window) << "no monitor is known";
}

TEST_F(Window_Places, the_whole_window_is_seen_with_its_frame_and_beside_the_panels) {
    const desktop::Bounds full_hd{0, 0, 1920, 1080};
    const Screens one{{full_hd, full_hd}};
    const Screens panels{{full_hd, {0, 28, 1920, 1040}}};
    const Screens two{{full_hd, {0, 28, 1920, 1080}},
                      {{1920, 0, 3200, 1024}, {1920, 0, 3200, 1024}}};
    const Screens laptop{{{0, 0, 1280, 720}, {0, 0, 1280, 680}}};
    const Screens tiny{{{0, 0, 1024, 500}, {0, 20, 1024, 500}}};
    const int far = 10'000'000 / 15; // the furthest that is read from the settings
    struct Place {
        int left, top, height, width = 1063;
    };
    const struct {
        const char* what;
        const Screens& screens;
        Place wanted, shown;
    } cases[] = {
        {"left and top of a far place", one, {2000, 2000, 600}, {1920 - 1071, 1080 - 628, 600}},
        {"as far as can be", one, {far, -far, far}, {1920 - 1071, 0, 1080 - 28}},
        {"no height", one, {10, 10, -far}, {10, 10, 504}},
        {"under the upper panel", panels, {0, 0, 600}, {0, 28, 600}},
        {"over the lower panel", panels, {0, 700, 600}, {0, 1040 - 628, 600}},
        {"higher than the panels leave", panels, {0, 50, 1080}, {0, 28, 1012 - 28}},
        {"across two monitors", two, {1500, 100, 700}, {1500, 100, 700}},
        {"across, below the lower of them", two, {1500, 440, 612}, {1920, 1024 - 640, 612}},
        {"wider than the monitor", laptop, {9, 0, 600, 5000}, {0, 0, 600, 1280 - 8}},
        {"no width", laptop, {9, 0, 600, 0}, {9, 0, 600, 300}},
        {"no room at all", tiny, {50, 50, 700}, {0, 20, 504, 1016}},
    };
    const auto in_twips = [](const Place& p) -> Window_Place {
        return {from_pixels(p.height), from_pixels(p.width), from_pixels(p.left),
                from_pixels(p.top)};
    };
    const Frame frame{from_pixels(4), from_pixels(24), from_pixels(4), from_pixels(4)};
    const Inner_Size least{from_pixels(504), from_pixels(300)};
    for (const auto& c : cases) {
        monitors(c.screens);
        const Window_Place shown = in_twips(c.shown);
        EXPECT_EQ(place_on_screen(in_twips(c.wanted), frame, least), shown) << c.what;
        EXPECT_EQ(place_on_screen(shown, frame, least), shown) << c.what << ", again";
    }
    monitors({});
    EXPECT_EQ(place_on_screen(in_twips({-9, -9, 600}), {}, {}), in_twips({-9, -9, 600}));
}
