#include "platform/timing/virtual_time.h"
#include "sim/cls_script_sim.h"
#include "sim/debugger.h"
#include "sim/script_clock.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

using namespace sim;
using testing::ElementsAre;
using timing::Milliseconds;

namespace {

struct Log {
    std::vector<std::string> happened;
    timing::Virtual_Time below;
    Script_Clock clock{below};
    Milliseconds started{0};
    int cabs = 0, timer_label = -1, steps = 0;

    void add(const std::string& what) {
        happened.push_back(std::to_string((clock.now() - started).count()) + " " + what);
    }
};

/// Its ramp ticks every 25 ms, on the clock of the simulation.
struct Ramp_Cab final : Cab {
    Ramp_Cab(Log& log_, Cab_Listener& listener_) : log(log_), listener(listener_) {
        ++log.cabs;
        ramp->interval(Milliseconds(25));
        ramp->enable(true);
        listener.AfterSimStart();
    }
    ~Ramp_Cab() override { close(); }
    void close() {
        if (std::exchange(closed, true)) return;
        --log.cabs;
        listener.BeforeSimStop();
        listener.AfterSimStop();
    }
    void show_timer(int value) override { log.timer_label = value; }
    void step_done() override { ++log.steps; }

    Log& log;
    Cab_Listener& listener;
    bool closed = false;
    std::unique_ptr<timing::Tick_Timer> ramp = log.clock.tick_timer([this] { log.add("ramp"); });
};

/// The script: 0 goes to 1, 1 loads the timer, 2 counts a variable, 3 goes to 2.
struct Simulation : testing::Test, Simulated_Script, Log {
    Simulation() {
        SimDecoderState() = {};
        const std::int32_t lines[][2] = {{6, 1}, {12, 50}, {25, 0}, {6, 2}};
        for (int line = 0; line < 4; ++line) {
            script.GetState(line).SetCommand(lines[line][0]);
            script.GetState(line).SetPar(0, lines[line][1]);
        }
        debugger.Stopped = [this](int line, Stop_Reason) { add("stop " + std::to_string(line)); };
        start();
    }
    const scripts::cls_script* working_script() const override { return &script; }
    void line_changed(int from, int to) override {
        add(std::to_string(from) + ">" + std::to_string(to));
    }
    void start() {
        started = clock.now();
        sim = std::make_unique<cls_script_sim>(
            *this,
            [this](auto& listener) {
                return std::unique_ptr<Cab>(cab = new Ramp_Cab(*this, listener));
            },
            [](int) { return 0; }, clock, &debugger);
        sim->Intervall(100);
        sim->UnloadRequest = [this] { ++unloads, unload ? sim.reset() : void(); };
        sim->Ended = [this](const QString& message) { ended = message; };
    }
    void pause(bool on) {
        decoder.SimPaused = on;
        sim->Pause_Changed();
    }
    void pass(int milliseconds) { below.advance(Milliseconds(milliseconds)); }
    int steps_in(int milliseconds) {
        const int before = steps;
        pass(milliseconds);
        return steps - before;
    }

    int arguments = 0;
    QCoreApplication application{arguments, nullptr};
    Simulated_Decoder& decoder = SimDecoderState();
    scripts::cls_script script;
    Debugger debugger;
    Ramp_Cab* cab = nullptr;
    bool unload = true;
    int unloads = 0;
    QString ended;
    std::unique_ptr<cls_script_sim> sim;
};

} // namespace

TEST_F(Simulation, a_line_each_interval_and_pauses_and_single_steps) {
    EXPECT_EQ(steps_in(99), 0);
    EXPECT_EQ(steps_in(101), 2);
    EXPECT_EQ(timer_label, 50);
    EXPECT_EQ(steps_in(200), 2); // 3 goes back to 2: a cycle
    EXPECT_EQ(timer_label, 49);
    sim->Einzelschritt(); // begins a new interval
    EXPECT_EQ(decoder.SimCurrentState, 3);
    EXPECT_EQ(steps_in(100), 1);
    pause(true);
    happened.clear();
    EXPECT_EQ(steps_in(1000), 0);
    EXPECT_EQ(happened.size(), 40U) << "the ramp goes on";
    sim->Einzelschritt();
    EXPECT_EQ(steps_in(1000), 0);
    EXPECT_EQ(steps, 7);
    pause(false);
    EXPECT_EQ(steps_in(100), 1);
    sim->SimEnable(false);
    EXPECT_EQ(steps_in(1000), 0);
    sim.reset();
    start(); // values stay, the line does not
    EXPECT_EQ(decoder.Variables[0], 3);
    EXPECT_EQ(decoder.SimCurrentState, 0);
}

TEST_F(Simulation, it_can_be_closed_at_any_time) {
    const std::function<void()> befores[] = {[] {}, [this] { pause(true); },
                                             [this] { pause(true), sim->Einzelschritt(); },
                                             [this] { debugger.run_to(1), pass(200); },
                                             [this] {
                                                 script.GetState(0).SetPar(0, 300);
                                                 pass(100);
                                                 EXPECT_EQ(steps_in(1000), 0);
                                             }};
    for (unsigned kind = 0; kind < 8; ++kind)
        for (const auto& before : befores) {
            SCOPED_TRACE(testing::Message() << kind << &before - befores);
            const bool by_hand = (kind & 1) != 0;
            unload = (kind & 2) != 0;
            sim.reset();
            decoder.SimPaused = false;
            clock.own((kind & 4) != 0);
            start();
            ended.clear();
            unloads = 0;
            before();
            const int done = steps;
            by_hand ? cab->close() : sim.reset();
            EXPECT_EQ(cabs, 0);
            EXPECT_EQ(decoder.SimActive, by_hand);
            if (by_hand) {
                sim->Einzelschritt();
                pause(false);
                sim->SimEnable(true);
                pass(2000);
            }
            EXPECT_EQ(steps, done);
            QCoreApplication::processEvents();
            EXPECT_EQ(unloads, by_hand ? 1 : 0);
            EXPECT_EQ(decoder.SimActive, by_hand && !unload);
            EXPECT_EQ(ended.contains(QStringLiteral("State 0 zu State 300")),
                      by_hand && script.GetState(0).GetPar(0) == 300);
            script.GetState(0).SetPar(0, 1);
        }
}

TEST_F(Simulation, in_its_own_time_a_pause_leaves_no_trace) {
    sim.reset();
    clock.own(true);
    const auto run = [this](const std::vector<std::pair<int, std::function<void()>>>& plan) {
        decoder = {};
        debugger.put_break(2);
        start();
        happened.clear();
        for (const auto& [wait, act] : plan) pass(wait), act();
        pass(1000);
        sim.reset();
        std::erase_if(happened,
                      [](const std::string& line) { return line.find("stop") != line.npos; });
        EXPECT_GE(happened.size(), 30U);
        happened.resize(30);
        return happened;
    };
    const auto go_on = [this] { pause(false); };
    const auto hold = [this] { pause(true); };
    const auto step = [this] { sim->Einzelschritt(); };
    const auto as_ever = run({{300, go_on}, {200, go_on}, {200, go_on}});
    EXPECT_THAT(std::vector(as_ever.begin(), as_ever.begin() + 6),
                ElementsAre("25 ramp", "50 ramp", "75 ramp", "100 0>1", "100 ramp", "125 ramp"));
    EXPECT_THAT(as_ever, testing::Contains("300 2>3"));
    EXPECT_EQ(as_ever,
              run({{250, hold}, {1, step}, {1, step}, {50, go_on}, {100, go_on}, {200, go_on}}));
    const std::vector<std::pair<int, std::function<void()>>> restless{
        {37, hold}, {999, go_on}, {61, hold},    {3, step}, {5000, step},
        {1, step},  {7, go_on},   {5000, go_on}, {1, go_on}};
    EXPECT_EQ(as_ever, run(restless));
}

TEST_F(Simulation, timers_keep_their_rest_when_the_clock_is_switched) {
    happened.clear();
    pass(90);
    clock.own(true);
    pass(20);
    pause(true);
    pass(5000);
    EXPECT_THAT(happened, testing::Contains("100 0>1"));
    EXPECT_EQ(clock.now() - started, Milliseconds(110));
    clock.own(false); // the step timer finds the pause and stays off
    happened.clear();
    EXPECT_EQ(steps_in(200), 0);
    EXPECT_EQ(happened.front(), "125 ramp");
    EXPECT_EQ(happened[1], "150 ramp");
    clock.own(true);
    debugger.put_break(1); // only for steps that nobody asks for
    sim->Einzelschritt();
    EXPECT_EQ(happened.back(), "410 1>2");
    pause(false);
    EXPECT_EQ(steps_in(110), 1);
    sim->SimEnable(false);
    EXPECT_EQ(steps_in(210), 0);
    sim->SimEnable(true); // between two ticks
    EXPECT_EQ(steps_in(99), 0);
    EXPECT_EQ(steps_in(1), 1);
}

TEST_F(Simulation, break_points_stop_before_their_lines) {
    const Condition counted{{Value_Kind::variable, 0}, 2, 1};
    EXPECT_TRUE(debugger.put_break(3, counted) && debugger.put_break(9) && debugger.run_to(2));
    EXPECT_FALSE(debugger.put_break(256) || debugger.put_break(-1) || debugger.run_to(256));
    EXPECT_FALSE(debugger.put_break(1, Condition{{Value_Kind::event, 16}, 0, 0}));
    EXPECT_FALSE(debugger.put_break(1, Condition{{Value_Kind::event, 15}, 4, 0}));
    pass(1000);
    EXPECT_THAT(happened, testing::Contains("300 stop 2"));
    EXPECT_TRUE(decoder.SimPaused);
    EXPECT_EQ(decoder.Variables[0], 0);
    pause(false);
    pass(1000);
    EXPECT_TRUE(decoder.SimPaused);
    EXPECT_EQ(decoder.SimCurrentState, 3);
    EXPECT_EQ(decoder.Variables[0], 2);
    sim->Einzelschritt(); // past it, as going on does
    sim->Einzelschritt();
    pause(false);
    EXPECT_EQ(steps_in(1000), 2);
    EXPECT_EQ(decoder.Variables[0], 4);
    pause(false);
    debugger.run_to(4);
    sim.reset();
    debugger.put_break(0);
    start(); // what the last one was to pass stops the next one
    EXPECT_EQ(debugger.target(), std::nullopt) << "nor where it was to stop";
    EXPECT_EQ(steps_in(1000), 0);
    debugger.remove_break(0);

    debugger.run_to(4);
    EXPECT_FALSE(debugger.line_inserted(3) || debugger.line_deleted(1));
    EXPECT_EQ(debugger.condition_of(3), counted);
    EXPECT_TRUE(debugger.has_break(9));
    EXPECT_EQ(debugger.target(), 4);
    EXPECT_TRUE(debugger.line_deleted(3));
    EXPECT_TRUE(!debugger.has_break(3) && debugger.has_break(8) && !debugger.line_deleted(3));
    EXPECT_EQ(debugger.target(), std::nullopt);
    debugger.put_break(255);
    EXPECT_FALSE(debugger.line_deleted(0));
    EXPECT_TRUE(debugger.has_break(254) && !debugger.has_break(255));
    debugger.put_break(255);
    EXPECT_TRUE(debugger.line_inserted(255));
}

TEST_F(Simulation, the_last_thousand_steps_are_remembered) {
    using enum Value_Kind;
    const Value_Ref counter{variable, 0}, timer{wert, timer_value};
    EXPECT_FALSE(debugger.changed_in_last_step(counter));
    EXPECT_TRUE(debugger.watch(counter) && debugger.watch(timer));
    EXPECT_FALSE(debugger.watch(timer));
    EXPECT_FALSE(debugger.watch({output, 23}));
    for (int step = 0; step < 1003; ++step) sim->Einzelschritt();
    ASSERT_EQ(debugger.step_count(), 1000U);
    EXPECT_EQ(debugger.step(0).line, 3);
    EXPECT_THAT(debugger.step(0).changes(), ElementsAre(Change{timer, 50, 49}));
    EXPECT_EQ(debugger.step(999).command, 25);
    const auto watched = debugger.watched(decoder);
    EXPECT_EQ(watched[0].name, QStringLiteral("Variable 1"));
    EXPECT_EQ(watched[0].now, 255);
    EXPECT_FALSE(watched[0].changed) << "stays at 255";
    EXPECT_EQ(watched[1].name, QStringLiteral("Timer-Wert"));
    EXPECT_FALSE(watched[1].changed) << "by the step before";

    const Value_Ref values[] = {{key, 28},    {key, 0},     {key, 29},   {output, 0},
                                {output, 18}, {output, 22}, {event, 15}, {input, 3},
                                {drive, 4},   {drive, 6},   {event, 16}};
    QStringList names;
    for (const Value_Ref value : values) names += name_of(value);
    EXPECT_EQ(names.join(u' '),
              QStringLiteral("F0 F1 MAN Lv FA17 FA21 Event 16 Input 4 Notstopp Fahrstufe "));
}
