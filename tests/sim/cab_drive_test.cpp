#include "sim/cab_drive.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace sim;

namespace {

constexpr int lowest = std::numeric_limits<std::int16_t>::min();
constexpr int highest = std::numeric_limits<std::int16_t>::max();

struct Drive_Test : testing::Test {
    void ticks(int count) {
        for (int i = 0; i < count; ++i) drive.tick();
    }
    std::int16_t& wert(Wert which) { return decoder.Werte[which]; }

    Simulated_Decoder decoder;
    int coupled = 30;
    Cab_Drive drive{decoder, [this](int cv) { return cv == 310 ? coupled : 3; }};
};

} // namespace

TEST(Cab_Typing, reads_the_number_at_the_beginning_as_basic_does) {
    const struct {
        const char* text;
        double value;
    } typed[] = {{"", 0},
                 {"abc", 0},
                 {" 12x", 12},
                 {"1 2 3", 123},
                 {"\t7", 7},
                 {"-3", -3},
                 {"+4", 4},
                 {"2.5", 2.5},
                 {".5", 0.5},
                 {".", 0},
                 {"1e2", 100},
                 {"1d2", 100},
                 {"1e", 1},
                 {"&H1f", 31},
                 {"&o17", 15},
                 {"&HFG", 15},
                 {"&", 0},
                 {"--1", 0},
                 {"inf", 0},
                 {"nan", 0},
                 {"1e999", INFINITY},
                 {"&H123456789", 4294967295.0},
                 {"1 (Ein/Rechts)", 1}};
    for (const auto& each : typed)
        EXPECT_EQ(Val(QString::fromLatin1(each.text)), each.value) << each.text;

    const struct {
        const char* text;
        int value, rate; ///< -1: none
    } used[] = {{"", 0, -1},        {"abc", 0, 1},      {"0", 0, 1},      {"-1", -1, 1},
                {"255", 255, 255},  {"256", -1, 255},   {"300", -1, 255}, {"2.5", 2, 2},
                {"3.5", 4, 4},      {"255.4", -1, 255}, {" 12x", 12, 12}, {"99999999999", -1, 255},
                {"1e999", -1, 255}, {"-1e999", -1, 1}};
    for (const auto& each : used) {
        EXPECT_EQ(typed_value(QString::fromLatin1(each.text)).value_or(-1), each.value)
            << each.text;
        EXPECT_EQ(typed_rate(QString::fromLatin1(each.text)).value_or(-1), each.rate) << each.text;
    }
}

TEST(Cab_Keys, have_slots_of_their_own) {
    const int keys[][2] = {{0, 28}, {1, 0}, {28, 27}, {29, 256}, {-1, 256}, {256, 256}};
    for (const auto& [key, slot] : keys) {
        EXPECT_EQ(KeyToSlot(key), static_cast<std::size_t>(slot));
        EXPECT_EQ(SlotToKey(slot), slot == 256 ? 256 : key);
    }
    EXPECT_EQ(SlotToKey(29), 256);
    EXPECT_EQ(SlotToKey(-1), 256);
}

TEST_F(Drive_Test, speed_and_direction_come_from_cab_consist_and_script) {
    using D = Simulated_Decoder;
    const struct {
        const char* what;
        std::function<void(D&)> script;
        int value, cab_speed;
        bool reverse;
        int speed, direction; ///< of a decoder that moves in that direction already
        int shown;
    } cases[] = {
        {"cab", [](D&) {}, 0, 200, false, 200, 0, 98},
        {"cab, reverse", [](D&) {}, 0, 255, true, 255, 1, 126},
        {"consist", [](D& d) { d.Werte[consist_inverse] = 1; }, 0, 9, false, 9, 1, 4},
        {"consist, reverse", [](D& d) { d.Werte[consist_inverse] = 1; }, 0, 9, true, 9, 0, 4},
        {"consist neither", [](D& d) { d.Werte[consist_inverse] = 2; }, 0, 9, false, 9, 0, 4},
        {"set", [](D& d) { d.DriveSetSpeed = true; }, 40, 200, false, 40, 0, 19},
        {"limit", [](D& d) { d.DriveLimitSpeed = true; }, 40, 200, false, 40, 0, 19},
        {"below the limit", [](D& d) { d.DriveLimitSpeed = true; }, 40, 39, false, 39, 0, 19},
        {"scale, half to even below", [](D& d) { d.DriveScaleSpeed = true; }, 128, 5, false, 2, 0,
         0},
        {"scale, half to even above", [](D& d) { d.DriveScaleSpeed = true; }, 128, 7, false, 4, 0,
         1},
        {"scale", [](D& d) { d.DriveScaleSpeed = true; }, 255, 255, false, 254, 0, 125},
        {"scale, largest", [](D& d) { d.DriveScaleSpeed = true; }, highest, 255, false, 32639, 0,
         16127},
        {"scale, least", [](D& d) { d.DriveScaleSpeed = true; }, lowest, 255, false, -32640, 0,
         -16128},
        {"stop", [](D& d) { d.DriveStop = d.DriveSetSpeed = true; }, 40, 200, false, 0, 0, 0},
    };
    for (const auto& each : cases) {
        decoder = {};
        drive.reset();
        each.script(decoder);
        decoder.DriveSpeedValue = static_cast<std::int16_t>(each.value);
        wert(direction) = static_cast<std::int16_t>(each.direction);
        if (each.reverse) drive.press_direction();
        drive.choose_speed(each.cab_speed);
        EXPECT_EQ(decoder.EffectiveSpeed, each.speed) << each.what;
        EXPECT_EQ(decoder.EffectiveDirection, each.direction) << each.what;
        EXPECT_EQ(drive.shown_speed(), each.shown) << each.what;
        EXPECT_EQ(wert(target_drive_step), each.cab_speed) << each.what;
        EXPECT_EQ(wert(target_direction), each.reverse ? 1 : 0) << each.what;
    }
    const int modes[][3] = {{0, 0, 1}, {1, 1, 0}, {2, 0, 0}, {3, 1, 1}, {4, 1, 0}, {-1, 1, 0}};
    for (const auto& [mode, forward, reverse] : modes) { // in an inverse consist
        decoder = {};
        drive.reset();
        wert(consist_inverse) = 1;
        decoder.DriveSetDirection = true;
        decoder.DriveDirectionMode = mode;
        for (const int expected : {forward, reverse}) {
            drive.UpdateDrive();
            EXPECT_EQ(decoder.EffectiveDirection, expected) << mode;
            drive.press_direction();
        }
    }
}

TEST_F(Drive_Test, ramp_goes_step_by_step_and_turns_only_at_standstill) {
    drive.choose_speed(3);
    ticks(2);
    EXPECT_EQ(wert(drive_step), 2);
    EXPECT_EQ(wert(acceleration), 1);
    decoder.DriveHoldAccel = true;
    ticks(3);
    EXPECT_EQ(wert(drive_step), 2) << "may not rise";
    drive.press_direction();
    EXPECT_EQ(decoder.EffectiveSpeed, 0);
    drive.tick();
    EXPECT_EQ(wert(drive_step), 1) << "but fall";
    EXPECT_EQ(wert(direction), 0);
    decoder.DriveHoldAccel = false;
    drive.tick();
    EXPECT_EQ(wert(direction), 1);
    ticks(5);
    EXPECT_EQ(wert(drive_step), 3);
    drive.choose_speed(1);
    drive.tick();
    EXPECT_EQ(wert(deceleration), 1);
    EXPECT_EQ(wert(acceleration), 0);

    for (const int now : {lowest, highest}) { // what a script has put there
        wert(drive_step) = static_cast<std::int16_t>(now);
        wert(target_drive_step) = static_cast<std::int16_t>(-1 - now);
        drive.tick();
        EXPECT_EQ(wert(drive_step), now + (now < 0 ? 1 : -1));
        EXPECT_EQ(wert(now < 0 ? acceleration : deceleration), highest);
    }
}

TEST_F(Drive_Test, stop_holds_whatever_the_cab_says) {
    drive.press_direction();
    drive.choose_speed(100);
    ticks(50);
    drive.press_stop();
    for (const Wert each : {drive_step, target_drive_step, direction, target_direction})
        EXPECT_EQ(wert(each), 0);
    EXPECT_EQ(drive.CabSpeed(), 0);
    EXPECT_EQ(decoder.EffectiveSpeed, 0);
    EXPECT_EQ(decoder.EffectiveDirection, 0);
    drive.choose_speed(100);
    ticks(9);
    EXPECT_EQ(wert(drive_step), 0);
    wert(drive_step) = 7;
    drive.UpdateDrive();
    EXPECT_EQ(wert(drive_step), 0) << "at once";
    drive.press_stop();
    ticks(9);
    EXPECT_EQ(wert(drive_step), 8) << "climbs again, one tick later";
}

TEST_F(Drive_Test, a_key_and_the_drive_sound_press_each_other) {
    const int coupled_keys[] = {0, 3, 28, 29, 255}; // from 29 on there is none
    for (const int key : coupled_keys) {
        coupled = key;
        for (const int before : {0, 1, 5}) { // 5 has been typed
            SCOPED_TRACE(testing::Message() << key << " before " << before);
            decoder = {};
            drive.reset();
            wert(drive_sound) = static_cast<std::int16_t>(before);
            drive.press_key(4);
            const bool couples = key < 29;
            EXPECT_EQ(wert(drive_sound), couples ? 0 : before);
            for (const int on : {1, 0}) {
                if (couples) drive.press_key(key);
                EXPECT_EQ(wert(drive_sound), couples ? on : before);
            }
            drive.press_sound();
            EXPECT_EQ(wert(drive_sound), couples || before == 0 ? 1 : 0);
            for (int each = 0; each < cab_keys; ++each) {
                const int expected = each == 4 || each == key ? 1 : 0;
                EXPECT_EQ(drive.CabKeys()[static_cast<std::size_t>(each)], expected) << each;
                EXPECT_EQ(decoder.KeyState[KeyToSlot(each)], expected) << each;
            }
        }
    }
}

TEST_F(Drive_Test, inputs_pulse_when_they_are_switched_on_and_reset_puts_all_controls_off) {
    drive.press_input(2);
    EXPECT_TRUE(decoder.ReedLevel[2] && decoder.ReedPulse[2] && !decoder.ReedSeen[2]);
    decoder.ReedPulse[2] = false;
    drive.press_input(2);
    EXPECT_FALSE(decoder.ReedLevel[2] || decoder.ReedPulse[2]);
    drive.press_input(1);
    drive.press_key(7);
    drive.press_stop();
    drive.press_man();
    decoder.ReedSeen[1] = true;
    wert(timer_value) = 9;
    decoder.Outputs[0] = 31;
    drive.reset();
    Simulated_Decoder rest;
    rest.Werte[timer_value] = 9;
    rest.Outputs[0] = 31;
    EXPECT_EQ(decoder, rest);
    EXPECT_EQ(drive.CabManKey(), 0);
}
