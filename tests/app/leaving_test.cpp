#include "app/leaving_gate.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using app::Leaving_Gate;
using testing::ElementsAre;

struct Leaving : testing::Test {
    struct Holder : app::Work_Holder {
        Holder(Leaving& all, std::string name_) : test(all), name(std::move(name_)) {
            test.gate.add(*this);
        }
        ~Holder() override { test.gate.remove(*this); }
        bool may_leave() override {
            test.heard.push_back(name);
            if (meanwhile) meanwhile();
            return agrees;
        }
        void put_into_safety() override { test.heard.push_back(name + " saved"); }
        Leaving& test;
        std::string name;
        bool agrees = true;
        std::function<void()> meanwhile;
    };

    void start_job() {
        job.emplace(state, [this] {
            heard.push_back("job");
            job.reset();
        });
    }

    app::Job_State state;
    Leaving_Gate gate{state};
    std::optional<app::Job_State::Run> job;
    std::vector<std::string> heard;
};

TEST_F(Leaving, each_is_asked_once_and_the_job_ends_when_all_agree) {
    Holder list(*this, "list");
    Holder editor(*this, "editor");
    start_job();
    editor.agrees = false;
    EXPECT_FALSE(gate.pass());
    EXPECT_THAT(heard, ElementsAre("editor")) << "who refuses keeps the others from being asked";
    EXPECT_TRUE(state.runs());
    editor.agrees = true;
    heard.clear();
    EXPECT_TRUE(gate.pass());
    EXPECT_THAT(heard, ElementsAre("editor", "list", "job"));
    EXPECT_FALSE(state.runs());
}

TEST_F(Leaving, a_second_job_beside_one_that_runs_ends_the_program) {
    start_job();
    EXPECT_DEATH(app::Job_State::Run(state, [] {}), "job_state.cpp:.*this must hold: !state_.runs");
}

TEST_F(Leaving, two_closings_at_once_are_one) {
    Holder editor(*this, "editor");
    bool second = true;
    editor.meanwhile = [&] { second = gate.pass(); };
    EXPECT_TRUE(gate.pass());
    EXPECT_FALSE(second);
    EXPECT_THAT(heard, ElementsAre("editor"));
}

TEST_F(Leaving, one_that_goes_while_another_is_asked_is_not_asked) {
    auto list = std::make_unique<Holder>(*this, "list");
    Holder editor(*this, "editor");
    editor.meanwhile = [&] { list.reset(); };
    EXPECT_TRUE(gate.pass());
    EXPECT_THAT(heard, ElementsAre("editor"));
}

TEST_F(Leaving, nobody_is_asked_when_the_system_ends_the_program) {
    Holder editor(*this, "editor");
    editor.agrees = false;
    editor.meanwhile = [&] { gate.pass_at_once(); }; // a signal while the question stands
    start_job();
    EXPECT_FALSE(gate.pass());
    EXPECT_THAT(heard, ElementsAre("editor", "editor saved", "job"));
}

TEST_F(Leaving, a_job_tells_when_it_begins_and_ends) {
    std::vector<bool> told;
    QObject::connect(&state, &app::Job_State::changed, [&] { told.push_back(state.runs()); });
    state.end();
    start_job();
    state.end();
    EXPECT_THAT(told, ElementsAre(true, false));
}

} // namespace
