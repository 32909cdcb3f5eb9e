#include "platform/timing/virtual_time.h"

#include <QCoreApplication>
#include <gmock/gmock.h>
#include <string>
#include <thread>

namespace timing {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

struct Virtual : testing::Test {
    Virtual_Time time;
    std::vector<std::string> seen;
    void note(const std::string& what) {
        seen.push_back(what + std::to_string(time.now().count()));
    }
};

TEST_F(Virtual, what_is_due_happens_in_order_whoever_moves_the_time) {
    const auto timer = time.tick_timer([this] { note("tick "); });
    timer->interval(10ms);
    timer->enable(true);
    time.at(25ms, [this] { note("byte "); });
    time.at(20ms, [this] { note("second "); }); // asked for before the tick of that moment
    Interruption none;
    EXPECT_TRUE(time.wait_until(20ms, none));
    time.advance(10ms);
    EXPECT_THAT(seen, ElementsAre("tick 10", "second 20", "tick 20", "byte 25", "tick 30"));
    EXPECT_TRUE(time.wait_until(5ms, none)); // over already
    EXPECT_EQ(time.now(), 30ms);
}

TEST_F(Virtual, a_timer_can_be_switched_off_changed_and_removed_in_its_own_tick) {
    std::unique_ptr<Tick_Timer> timer = time.tick_timer([&] {
        note("");
        if (seen.size() == 1) timer->interval(100ms);
        if (seen.size() == 2) timer->enable(false);
        if (seen.size() == 3) timer.reset();
    });
    timer->enable(true);
    time.advance(5s);
    EXPECT_FALSE(timer->enabled());
    timer->enable(true);
    time.advance(5s);
    EXPECT_THAT(seen, ElementsAre("1000", "1100", "5100"));
}

TEST_F(Virtual, an_interruption_ends_a_wait_where_it_came) {
    Interruption stop;
    time.at(7ms, [&] { stop.raise(); });
    EXPECT_FALSE(time.wait_until(1h, stop));
    EXPECT_EQ(time.now(), 7ms);
    EXPECT_FALSE(time.wait_until(2h, stop)); // and those after it
    EXPECT_EQ(time.now(), 7ms);
    stop.clear();
    EXPECT_TRUE(time.wait_until(1h, stop));
}

TEST(Interrupted, listeners_hear_of_it_once_and_only_while_they_live) {
    Interruption stop;
    int calls = 0;
    {
        const Interruption::Listener early(stop, [&] { ++calls; });
        std::jthread([&] { stop.raise(); }).join();
        EXPECT_EQ(calls, 1);
        const Interruption::Listener late(stop, [&] { calls += 10; });
        EXPECT_EQ(calls, 11);
    }
    stop.raise();
    EXPECT_EQ(calls, 11);
}

TEST(Real, waits_end_when_they_should_and_timers_tick) {
    Interruption stop;
    const auto begin = real_time().now();
    EXPECT_TRUE(real_time().wait_until(begin + 20ms, stop));
    EXPECT_GE(real_time().now(), begin + 20ms);
    std::jthread other([&] { stop.raise(); });
    EXPECT_FALSE(real_time().wait_until(begin + 1h, stop));

    int argc = 0;
    QCoreApplication loop(argc, nullptr);
    int ticks = 0;
    const auto timer = real_time().tick_timer([&] {
        if (++ticks == 3) QCoreApplication::exit(3);
    });
    timer->interval(1ms);
    timer->enable(true);
    EXPECT_EQ(QCoreApplication::exec(), 3);
}

} // namespace
} // namespace timing
