#include "sim/cab_drive.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <vector>

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

TEST(Cab_Typing, counts_the_number_at_the_beginning_as_basic_does) {
    constexpr int none = -1;
    using Texts = std::vector<const char*>;
    const std::map<int, Texts> values = {
        {0, {"", "abc", "--1", ".", "inf", "nan", "&"}},
        {12, {" 12x", "1 2", "+12", "12e", "1.2e1", "1.2d1", "&HcG", "&o14", "12 (Ein)"}},
        {2, {"2.5", "1.5"}}, // halves to even
        {255, {"255"}},
        {none, {"256", "255.4", "-1", "99999999999", "1e999", "-1e999", "&H123456789"}}};
    for (const auto& [value, texts] : values)
        for (const char* text : texts)
            EXPECT_EQ(typed_value(QString::fromLatin1(text)).value_or(none), value) << text;
    const std::map<int, Texts> rates = {
        {none, {""}}, {1, {"0", "abc", "-1", "-1e999"}}, {12, {" 12x"}}, {255, {"300", "1e999"}}};
    for (const auto& [rate, texts] : rates)
        for (const char* text : texts)
            EXPECT_EQ(typed_rate(QString::fromLatin1(text)).value_or(none), rate) << text;
}

TEST(Cab_Keys, have_slots_of_their_own) {
    const int keys[][2] = {{0, 28}, {1, 0}, {28, 27}, {29, 256}, {-1, 256}};
    for (const auto& [key, slot] : keys) {
        EXPECT_EQ(KeyToSlot(key), static_cast<std::size_t>(slot));
        EXPECT_EQ(SlotToKey(slot), slot == 256 ? 256 : key);
    }
    for (const int slot : {29, 256, -1}) EXPECT_EQ(SlotToKey(slot), 256);
}

TEST_F(Drive_Test, speed_and_direction_come_from_cab_consist_and_script) {
    using D = Simulated_Decoder;
    const struct {
        bool D::*flag; ///< that the script has set, with its value
        int value, consist, reverse, cab_speed, speed, direction, shown;
    } cases[] = {
        {nullptr, 0, 0, 0, 200, 200, 0, 98},
        {nullptr, 0, 0, 1, 255, 255, 1, 126},
        {nullptr, 0, 1, 0, 9, 9, 1, 4},
        {nullptr, 0, 1, 1, 9, 9, 0, 4},
        {nullptr, 0, 2, 1, 9, 9, 1, 4}, // neither inverse nor not
        {&D::DriveSetSpeed, 40, 0, 0, 200, 40, 0, 19},
        {&D::DriveLimitSpeed, 40, 0, 0, 200, 40, 0, 19},
        {&D::DriveLimitSpeed, 40, 0, 0, 39, 39, 0, 19},
        {&D::DriveScaleSpeed, 128, 0, 0, 5, 2, 0, 0}, // halves to even
        {&D::DriveScaleSpeed, 128, 0, 0, 7, 4, 0, 1},
        {&D::DriveScaleSpeed, 255, 0, 0, 255, 254, 0, 125},
        {&D::DriveScaleSpeed, highest, 0, 0, 255, 32639, 0, 16127},
        {&D::DriveScaleSpeed, lowest, 0, 0, 255, -32640, 0, -16128},
        {&D::DriveStop, 40, 0, 0, 200, 0, 0, 0},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(&each - cases);
        decoder = {};
        drive.reset();
        if (each.flag != nullptr) decoder.*each.flag = true;
        decoder.DriveSpeedValue = static_cast<std::int16_t>(each.value);
        wert(consist_inverse) = static_cast<std::int16_t>(each.consist);
        wert(direction) = static_cast<std::int16_t>(each.direction); // it has turned already
        if (each.reverse != 0) drive.press_direction();
        drive.choose_speed(each.cab_speed);
        EXPECT_EQ(decoder.EffectiveSpeed, each.speed);
        EXPECT_EQ(decoder.EffectiveDirection, each.direction);
        EXPECT_EQ(drive.shown_speed(), each.shown);
        EXPECT_EQ(wert(target_drive_step), each.cab_speed);
        EXPECT_EQ(wert(target_direction), each.reverse);
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
