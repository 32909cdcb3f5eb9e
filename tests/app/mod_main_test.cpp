#include "app/mod_main.h"

#include "support/scripted_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace app;

namespace {

Rectangle pixels(int left, int top, int right, int bottom) {
    return {from_pixels(left), from_pixels(top), from_pixels(right), from_pixels(bottom)};
}

struct App : testing::Test {
    App() { reset_globals(); }
    ~App() override { reset_globals(); }
};

} // namespace

TEST(Key_Names, follow_the_decoders_numbering) {
    const struct {
        int number;
        const char* key;
        const char* output;
    } cases[] = {
        {-1, "", ""},     {0, "F0", "FA0v"},   {1, "F1", "FA0r"},
        {2, "F2", "FA1"}, {22, "F22", "FA21"}, {23, "F23", ""},
        {28, "F28", ""},  {29, "MAN", ""},     {30, "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        EXPECT_EQ(FKey_Name(c.number).toStdString(), c.key);
        EXPECT_EQ(FA_Name(c.number).toStdString(), c.output);
    }
}

TEST(Twips, round_to_the_nearest_pixel) {
    const struct {
        int twips;
        int pixels;
    } cases[] = {{0, 0},  {7, 0},  {8, 1},   {15, 1},      {22, 1},
                 {23, 2}, {-7, 0}, {-8, -1}, {15945, 1063}};
    for (const auto& c : cases) EXPECT_EQ(to_pixels({c.twips}), c.pixels) << c.twips;
}

TEST_F(App, a_window_belongs_to_the_monitor_that_holds_its_centre_strictly) {
    globals.MonitorRects = {pixels(0, 0, 1920, 1080), pixels(1920, 0, 3200, 1024),
                            pixels(0, -900, 1600, 0)};
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

TEST_F(App, a_window_is_moved_onto_its_monitor_and_never_resized) {
    globals.MonitorRects = {pixels(0, 0, 1000, 800), pixels(1000, 0, 2000, 600)};
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
    globals.MonitorRects.clear();
    EXPECT_EQ(Keep_Form_On_Monitor(pixels(-9, -9, 1, 1)), pixels(-9, -9, 1, 1));
}

TEST_F(App, the_desktop_spans_all_monitors) {
    support::Scripted_Desktop desktop;
    desktop.screens = {{0, 0, 1920, 1080}, {-1280, 200, 0, 1224}};
    Get_Monitors(desktop);
    EXPECT_EQ(globals.MonitorCount, 2);
    EXPECT_EQ(globals.VirtualScreen, pixels(-1280, 0, 1920, 1224));
    EXPECT_EQ(globals.MonitorRects.at(1), pixels(-1280, 200, 0, 1224));
}
