#include "app/leaving_gate.h"

#include <gmock/gmock.h>
#include <memory>
#include <optional>

namespace {

using testing::Return;

struct Leaving : testing::Test {
    struct Mock : app::Work_Holder {
        explicit Mock(app::Leaving_Gate& gate_) : gate(gate_) { gate.add(*this); }
        ~Mock() override { gate.remove(*this); }
        MOCK_METHOD(bool, may_leave, (), (override));
        MOCK_METHOD(void, put_into_safety, (), (override));
        app::Leaving_Gate& gate;
    };
    using Holder = testing::StrictMock<Mock>;

    Leaving() {
        QObject::connect(&state, &app::Job_State::changed, [this] { job_runs.Call(state.runs()); });
        state.end(); // there is none
        EXPECT_CALL(job_runs, Call(true));
        job.emplace(state, [this] { job.reset(); });
    }

    testing::InSequence in_order;
    testing::StrictMock<testing::MockFunction<void(bool)>> job_runs;
    app::Job_State state;
    app::Leaving_Gate gate{state};
    std::optional<app::Job_State::Run> job;
};

TEST_F(Leaving, each_is_asked_once_and_the_job_ends_when_all_agree) {
    Holder list(gate);
    Holder editor(gate);
    EXPECT_CALL(editor, may_leave)
        .WillOnce(Return(false)); // who refuses keeps others from being asked
    EXPECT_FALSE(gate.pass());
    EXPECT_CALL(editor, may_leave).WillOnce([&] { return !gate.pass(); }); // two closings are one
    EXPECT_CALL(list, may_leave).WillOnce(Return(true));
    EXPECT_CALL(job_runs, Call(false));
    EXPECT_TRUE(gate.pass() && !state.runs());
}

TEST_F(Leaving, a_second_job_beside_one_that_runs_ends_the_program) {
    EXPECT_DEATH(app::Job_State::Run(state, [] {}), "job_state.cpp:.*this must hold: !state_.runs");
    EXPECT_CALL(job_runs, Call(false));
}

TEST_F(Leaving, one_that_goes_while_another_is_asked_is_not_asked) {
    auto list = std::make_unique<Holder>(gate);
    Holder editor(gate);
    EXPECT_CALL(editor, may_leave).WillOnce([&] { return list.reset(), true; });
    EXPECT_CALL(job_runs, Call(false));
    EXPECT_TRUE(gate.pass() && !state.runs());
}

TEST_F(Leaving, nobody_is_asked_when_the_system_ends_the_program) {
    Holder editor(gate);
    EXPECT_CALL(editor, may_leave).WillOnce([&] { return gate.pass_at_once(), false; }); // a signal
    EXPECT_CALL(editor, put_into_safety);
    EXPECT_CALL(job_runs, Call(false));
    EXPECT_FALSE(gate.pass() || state.runs());
}

} // namespace
