#include "sim/interpreter.h"

#include <array>
#include <gmock/gmock.h>
#include <limits>
#include <random>
#include <string_view>

using namespace sim;

namespace {

using D = Simulated_Decoder;
using Line = std::array<std::int32_t, 5>; ///< command, Par1 and so on
constexpr auto huge = std::numeric_limits<std::int32_t>::max();
constexpr auto tiny = std::numeric_limits<std::int32_t>::min();

void put_line(scripts::cls_script& script, int number, const Line& line) {
    auto& state = script.GetState(number);
    state.SetCommand(line[0]);
    for (int par = 0; par < 4; ++par) state.SetPar(par, line[static_cast<std::size_t>(par) + 1]);
}

using enum Value_Kind;
struct Put {
    Value_Kind kind;
    std::int32_t index, value;
    void operator()(D& decoder) const { put_value(decoder, {kind, index}, value); }
};

/// Executed as line 10.
struct Row {
    Line line;
    std::vector<Put> before, after; ///< after: what the step is to do to what was before
    int leads_to;
    int cv = 0, cv_value = 0; ///< which CV is asked for, and its value
};

const Row rows[] = {{{0}, {{wert, 6, 1}}, {{wert, 6, 0}}, 10},
                    {{4, 27, 1, 99}, {{key, 27, 1}}, {}, 99},
                    {{4, 27, 0, 99}, {{key, 27, 1}}, {}, 11},
                    {{4, 31, 1, 99}, {{key, 31, 1}}, {}, 99},
                    {{4, 40, 1, 99}, {{key, 28, 1}}, {}, 99, 988, 0},
                    {{4, 40, 1, 99}, {{key, 2, 1}}, {}, 99, 988, 3},
                    {{4, 63, 1, 99}, {{key, 27, 1}}, {}, 99, 1011, 28},
                    {{4, 32, 1, 99}, {{key, 29, 1}}, {}, 99, 980, 29},
                    {{4, 32, 0, 99}, {}, {}, 11, 980, 257},
                    {{4, 256, 0, 99}, {}, {}, 99},
                    {{5, 22, 0, 7, 99}, {{wert, 22, 7}}, {}, 99},
                    {{5, 0, 2, 7, 99}, {{wert, 0, 7}}, {}, 11},
                    {{5, 0, 2, -1, 99}, {}, {}, 99},
                    {{5, 0, 3 + 8, 1, 99}, {}, {}, 99},
                    {{5, 0, 4, 39, 99}, {{wert, 0, 7}}, {}, 99, 1019, 7},
                    {{5, 0, 4, 39, 99}, {{wert, 0, 39}}, {}, 11, 1019, 7},
                    {{6, 255}, {}, {}, 255},
                    {{6, 10}, {{wert, 6, 9}}, {{wert, 6, 8}}, 10},
                    {{12, 50, 0, 6}, {}, {{wert, 6, 50}}, 11},
                    {{12, 50, -1}, {}, {{wert, 6, 50}}, 11},
                    {{12, 50, 40}, {}, {{wert, 6, 8}}, 11, 1019, 8},
                    {{15, 21, 31, 0}, {}, {{output, 21, 31}}, 11},
                    {{15, 5, 9, 1}, {}, {{output, 0, 9}}, 11, 985, 0},
                    {{15, 5, 9, 1}, {}, {}, 11, 985, 22},
                    {{15, 5, 40, 2}, {}, {{output, 5, 31}}, 11, 1020, 77},
                    {{15, 5, 40, 4}, {{output, 5, 3}}, {{output, 5, 0}}, 11},
                    {{15, 5, -3, 0}, {{output, 5, 3}}, {{output, 5, 0}}, 11},
                    {{15, 5, 35, 0}, {{variable, 3, 20}}, {{output, 5, 20}}, 11},
                    {{16, 15, 255}, {}, {{event, 15, 255}}, 11},
                    {{21, 0, 0, 99}, {}, {}, 99},
                    {{21, 3, 4, 99}, {}, {}, 10},
                    {{21, 8, 1, 99, 1}, {{input, 2, 1}}, {}, 99, 988, 2},
                    {{21, 8, 2, 99, 1}, {}, {}, 11, 988, 4},
                    {{22, 15, 0, 5, 99}, {{event, 15, 65536 + 5}}, {}, 99},
                    {{22, 2, 7, 1, 99}, {}, {}, 99, 981, 1},
                    {{23, 3, 0, 5, 99}, {{variable, 3, 5}}, {}, 99},
                    {{24, 3, 255}, {}, {{variable, 3, 255}}, 11},
                    {{25, 3, 0, 0}, {{variable, 3, 254}}, {{variable, 3, 255}}, 11},
                    {{25, 3, 0, 0}, {{variable, 3, 255}}, {}, 11},
                    {{25, 15, 1, 1}, {{event, 15, 1}}, {{event, 15, 0}}, 11},
                    {{25, 15, 1, 1}, {}, {}, 11},
                    {{26, 255, 255, 4}, {}, {{variable, 3, 255}}, 11},
                    {{26, 10, 12, 0}, {}, {{wert, 6, 12}}, 11},
                    {{26, 10, 12, 5}, {}, {{wert, 6, 12}}, 11},
                    {{26, 12, 10, tiny}, {}, {{wert, 6, 11}}, 11},
                    {{32, 3, 255, 3}, {}, {{variable, 3, 6}}, 11, 1024, 6},
                    {{32, 6, 0, 3}, {{variable, 3, 6}}, {{variable, 3, 0}}, 11}};

/// No such index or no such CV.
const Line passed_over[] = {
    {4, 257, 0, 99},   {4, -1, 0, 99},  {5, 23, 0, 0, 99}, {5, -1, 0, 0, 99}, {5, 0, 5, huge, 9},
    {12, 50, huge},    {15, 22, 31, 0}, {15, -1, 31, 0},   {15, 5, 36, 0},    {16, 16, 255},
    {16, -1, 255},     {21, 4, 4, 99},  {21, -1, 0, 99},   {22, 16, 0, 0, 9}, {22, -1, 0, 0, 9},
    {23, 4, 0, 0, 99}, {24, 4, 255},    {24, -1, 255},     {25, 4, 0, 0},     {25, 16, 0, 1},
    {25, 1, 0, 2},     {25, 1, 2, 0},   {32, 4, 0, 3},     {32, 0, 0, 4}};

void check(const Row& row) {
    SCOPED_TRACE(testing::PrintToString(row.line));
    scripts::cls_script script;
    put_line(script, 10, row.line);
    D decoder;
    decoder.SimCurrentState = 10;
    for (const Put& put : row.before) put(decoder);
    D expected = decoder;
    for (const Put& put : row.after) put(expected);
    expected.SimCurrentState = static_cast<std::int16_t>(row.leads_to);
    int asked = 0;
    Interpreter interpreter([&](int cv) { return asked = cv, row.cv_value; },
                            [] { return 1 - 0x1p-53; });
    interpreter.execute(script, decoder);
    EXPECT_TRUE(decoder == expected);
    EXPECT_EQ(decoder.SimCurrentState, row.leads_to);
    EXPECT_EQ(asked, row.cv);
}

} // namespace

TEST(Interpreter_Test, every_command_does_what_it_says_and_nothing_else) {
    for (const Row& row : rows) check(row);
    for (const Line& line : passed_over) check({line, {{wert, 6, 3}, {variable, 1, 9}}, {}, 11});
    for (const int code : {1,  2,  3,  8,  9,  10, 11, 13, 14, 17,   18,  19,
                           20, 27, 28, 29, 30, 31, 33, 34, -1, huge, tiny})
        check({{code, 1, 1, 1, 1}, {{wert, 6, 3}, {variable, 1, 9}}, {}, 11});
}

TEST(Interpreter_Test, inputs_are_latched_at_the_end_of_a_cycle) {
    for (unsigned is = 0; is < 4; ++is)
        for (const std::int32_t condition : {0, 1, 2, 3}) {
            scripts::cls_script script;
            put_line(script, 1, {21, 3, condition, 0});
            D decoder;
            decoder.SimCurrentState = 1;
            decoder.ReedSeen[3] = (is & 1) != 0;
            decoder.ReedLevel[3] = (is & 2) != 0;
            decoder.ReedPulse[2] = true;
            const bool holds = (condition % 2 != 0) == ((is >> condition / 2 & 1) != 0);
            Interpreter([](int) { return 0; }).execute(script, decoder);
            EXPECT_EQ(decoder.SimCurrentState, holds ? 0 : 2);
            EXPECT_EQ(decoder.ReedPulse[2], !holds);
            EXPECT_EQ(decoder.ReedSeen[2], holds);
            EXPECT_EQ(decoder.ReedSeen[3], !holds && (is & 1) != 0);
        }
}

TEST(Interpreter_Test, control_of_the_loco_begins_anew_each_time) {
    const char* const modes[] = {"", "SD", "L", "C", "D", "X", "H", ""};
    D decoder;
    for (std::int32_t mode = 0; mode < 8; ++mode) {
        scripts::cls_script script;
        put_line(script, 0, {7, mode, 200 + mode, mode - 3, 1});
        decoder.SimCurrentState = 0;
        decoder.DriveStop = decoder.DriveHoldAccel = true;
        Interpreter([](int) { return 0; }).execute(script, decoder);
        D expected;
        expected.SimCurrentState = 1;
        const auto on = [&](char flag) { return std::string_view(modes[mode]).find(flag) < 9; };
        expected.DriveSpeedValue = static_cast<std::int16_t>(200 + mode);
        expected.DriveDirectionMode = mode - 3;
        expected.DriveSetSpeed = on('S'), expected.DriveSetDirection = on('D');
        expected.DriveLimitSpeed = on('L'), expected.DriveScaleSpeed = on('C');
        expected.DriveStop = on('X'), expected.DriveHoldAccel = on('H');
        EXPECT_TRUE(decoder == expected) << mode;
    }
}

TEST(Interpreter_Test, a_script_that_leaves_its_lines_ends) {
    const std::tuple<int, Line, std::int64_t> ends[] = {{255, {3}, 256},  {7, {6, 256}, 256},
                                                        {7, {6, -1}, -1}, {7, {6, huge}, huge},
                                                        {256, {}, 256},   {-1, {}, -1}};
    for (const auto& [from, line, to] : ends) {
        scripts::cls_script script;
        put_line(script, from & 255, line);
        D decoder;
        decoder.SimCurrentState = static_cast<std::int16_t>(from);
        decoder.Werte[6] = 2;
        const D before = decoder;
        EXPECT_EQ(Interpreter([](int) { return 0; }).execute(script, decoder).left_for, to);
        EXPECT_TRUE(decoder == before);
    }
}

TEST(Interpreter_Test, any_parameters_stay_within_the_tables_of_their_command) {
    std::mt19937 random(7);
    const auto upto = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    const std::int32_t odd[] = {tiny, -32768, -1, 31, 32, 63, 255, 256, 257, 31787, 32767, huge};
    const auto any = [&] { return upto(2) != 0 ? upto(40) : odd[upto(11)]; };
    Interpreter interpreter(
        [&](int cv) {
            EXPECT_TRUE(cv >= 1 && cv <= 32767);
            return any();
        },
        [&] { return std::uniform_real_distribution()(random); });
    D decoder;
    for (int round = 0; round < 300; ++round) {
        scripts::cls_script script;
        for (int line = 0; line < 256; ++line)
            put_line(script, line, {upto(35) - 1, any(), any(), any(), any()});
        for (unsigned number = 0; number < 500; ++number) {
            decoder.ReedPulse[number % 4] = true;
            const D before = decoder;
            const Step& step = interpreter.execute(script, decoder);
            if (step.left_for) decoder.SimCurrentState = static_cast<std::int16_t>(upto(255));
            D told = before; // what the step tells is all that it did
            for (const Change& change : step.changes()) {
                EXPECT_EQ(value_of(before, change.value), change.before);
                put_value(told, change.value, change.after);
            }
            told.SimCurrentState = decoder.SimCurrentState;
            if (step.cycle_ended) told.ReedPulse = {};
            ASSERT_TRUE(told == decoder) << step.command;
            D may = decoder; // what its command may not do
            const auto code = step.command;
            may.SimCurrentState = before.SimCurrentState;
            if (code == 12 || code == 26 || step.cycle_ended) may.Werte[6] = before.Werte[6];
            if (code >= 24 && code <= 32) may.Variables = before.Variables;
            if (code == 16 || code == 25) may.Events = before.Events;
            if (code == 15) may.Outputs = before.Outputs;
            if (step.cycle_ended) may.ReedSeen = before.ReedSeen, may.ReedPulse = before.ReedPulse;
            if (code != 7) {
                ASSERT_TRUE(may == before) << code;
            }
        }
    }
}
