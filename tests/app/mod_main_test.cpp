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

TEST_F(App, the_desktop_spans_all_monitors) {
    support::Scripted_Desktop desktop;
    desktop.screens = {{{0, 0, 1920, 1080}, {0, 28, 1920, 1080}},
                       {{-1280, 200, 0, 1224}, {-1280, 200, 0, 1224}}};
    Get_Monitors(desktop);
    EXPECT_EQ(globals.MonitorCount, 2);
    EXPECT_EQ(globals.VirtualScreen, pixels(-1280, 0, 1920, 1224));
    EXPECT_EQ(globals.MonitorRects.at(0), pixels(0, 0, 1920, 1080));
    EXPECT_EQ(globals.MonitorRects.at(1), pixels(-1280, 200, 0, 1224));
    EXPECT_EQ(globals.MonitorAreas.at(0), pixels(0, 28, 1920, 1080));
}
