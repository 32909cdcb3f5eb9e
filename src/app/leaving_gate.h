#pragma once

#include "app/job_state.h"

#include <vector>

namespace app {

/// Somebody who may hold what is not stored yet: an editor, say.
class Work_Holder {
public:
    virtual ~Work_Holder() = default;
    /// Stores or drops what is held, as the user says. @return false: the user wants to stay
    [[nodiscard]] virtual bool may_leave() = 0;
    /// Puts what is not stored where the next start finds it. Asks nothing.
    virtual void put_into_safety() {}
};

/// Passed before anything that takes the current set or the library away or ends the program.
class Leaving_Gate {
public:
    explicit Leaving_Gate(Job_State& job) : job_(job) {}

    void add(Work_Holder& holder) { holders_.push_back(&holder); }
    void remove(Work_Holder& holder) { std::erase(holders_, &holder); }

    /// Whether passing may end with somebody being asked.
    bool somebody_may_stay() const { return !holders_.empty(); }
    /// Whether the system is ending the program or the library is lost: nobody can be asked.
    bool nobody_to_ask() const { return at_once_; }
    /// Asks each holder once, the latest first; when all agree, a job that runs is ended: it never
    /// refuses. @return whether the way is free; not while it is being asked already, so that two
    /// closings at once are one
    [[nodiscard]] bool pass();
    /// The system ends the program: nobody is asked.
    void pass_at_once();

private:
    bool holds(const Work_Holder* holder) const;

    Job_State& job_;
    std::vector<Work_Holder*> holders_;
    bool asking_ = false;
    bool at_once_ = false;
};

} // namespace app
