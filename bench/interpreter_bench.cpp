// bench_interpreter: a thousand lines of a script that queries, counts, drives and loops, executed by the
// interpreter, with the debugger at work, and by a bare loop over a table of functions.

#include "sim/debugger.h"
#include "sim/interpreter.h"

#include <array>
#include <benchmark/benchmark.h>
#include <utility>

namespace {

constexpr int lines_at_once = 1000;

using Line = std::array<std::int32_t, 5>; ///< command, then parameters
constexpr Line lines[] = {
    {24, 0, 0},        // variable 1 = 0
    {4, 3, 1, 2},      // key F4
    {25, 0, 0, 0},     // variable 1 + 1
    {7, 2, 100, 2},    // limit the speed
    {15, 2, 32},       // output = variable 1
    {16, 3, 1},        // event
    {22, 3, 0, 1, 8},  // is it so
    {1, 3, 2, 1},      // passed over
    {12, 50, 0, 0},    // timer
    {23, 0, 3, 99, 2}, // again while variable 1 < 99
    {6, 0},
};

void interpreter(benchmark::State& state, sim::Debugger* debugger) {
    scripts::cls_script script;
    for (std::size_t line = 0; line < std::size(lines); ++line) {
        auto& put = script.GetState(static_cast<int>(line));
        put.SetCommand(lines[line][0]);
        for (int par = 0; par < 4; ++par)
            put.SetPar(par, lines[line][static_cast<std::size_t>(par) + 1]);
    }
    sim::Simulated_Decoder decoder;
    sim::Interpreter interpreter([](int) { return 0; });
    for ([[maybe_unused]] const auto round : state)
        for (int count = 0; count < lines_at_once; ++count) {
            if (debugger != nullptr && debugger->stops_before(decoder.SimCurrentState, decoder))
                return state.SkipWithError("stopped");
            const sim::Step& step = interpreter.execute(script, decoder);
            if (debugger != nullptr) debugger->record(step, script);
        }
    benchmark::DoNotOptimize(decoder);
}

void without(benchmark::State& state) { interpreter(state, nullptr); }

void with_debugger(benchmark::State& state) {
    sim::Debugger debugger;
    debugger.put_break(4, sim::Condition{{sim::Value_Kind::variable, 0}, 0, 200}); // never so
    debugger.put_break(200);
    interpreter(state, &debugger);
}

/// The same commands with nothing checked, nothing told.
using Effect = int (*)(sim::Simulated_Decoder&, const Line&, int line);
std::size_t at(std::int32_t index) { return static_cast<std::size_t>(index); }
std::int16_t value(std::int32_t number) { return static_cast<std::int16_t>(number); }
int pass(sim::Simulated_Decoder&, const Line&, int line) { return line + 1; }
int branch(bool holds, std::int32_t target, int line) { return holds ? target : line + 1; }

constexpr std::array<Effect, 34> effects = [] {
    std::array<Effect, 34> all{};
    all.fill(pass);
    all[4] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        return branch(d.KeyState[at(l[1])] == l[2], l[3], line);
    };
    all[6] = [](sim::Simulated_Decoder&, const Line& l, int) { return l[1]; };
    all[7] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        d.DriveSetSpeed = d.DriveScaleSpeed = d.DriveSetDirection = d.DriveStop = false;
        d.DriveHoldAccel = false;
        d.DriveLimitSpeed = l[1] == 2;
        d.DriveSpeedValue = value(l[2]);
        d.DriveDirectionMode = l[3];
        return line + 1;
    };
    all[12] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        d.Werte[sim::timer_value] = value(l[1]);
        return line + 1;
    };
    all[15] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        d.Outputs[at(l[1])] = d.Variables[at(l[2] - 32)];
        return line + 1;
    };
    all[16] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        d.Events[at(l[1])] = l[2];
        return line + 1;
    };
    all[22] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        return branch(d.Events[at(l[1])] == l[3], l[4], line);
    };
    all[23] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        return branch(d.Variables[at(l[1])] < l[3], l[4], line);
    };
    all[24] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        d.Variables[at(l[1])] = value(l[2]);
        return line + 1;
    };
    all[25] = [](sim::Simulated_Decoder& d, const Line& l, int line) {
        if (d.Variables[at(l[1])] < 255) ++d.Variables[at(l[1])];
        return line + 1;
    };
    return all;
}();

void bare_table(benchmark::State& state) {
    sim::Simulated_Decoder decoder;
    int line = 0;
    for ([[maybe_unused]] const auto round : state)
        for (int count = 0; count < lines_at_once; ++count) {
            const Line& each = lines[at(line)];
            const int next = effects[at(each[0])](decoder, each, line);
            if (next <= line) {
                auto& timer = decoder.Werte[sim::timer_value];
                if (timer > 0) --timer;
                decoder.ReedSeen = std::exchange(decoder.ReedPulse, {});
            }
            line = next;
        }
    benchmark::DoNotOptimize(decoder);
}

BENCHMARK(without);
BENCHMARK(with_debugger);
BENCHMARK(bare_table);

} // namespace

BENCHMARK_MAIN();
