#pragma once

#include "sim/interpreter.h"
#include "sim/values.h"

#include <QString>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace sim {

/// Holds when the value compares so with the number.
struct Condition {
    Value_Ref value;
    std::int32_t comparison = 0; ///< 0..3, as CompareValues counts them
    std::int16_t number = 0;
    bool operator==(const Condition&) const = default;
};

enum class Stop_Reason { break_point, run_to };

/// A value that is watched.
struct Watched {
    Value_Ref value;
    QString name;
    std::int32_t now = 0;
    bool changed = false; ///< by the last step
};

/// Stops a simulation before chosen lines, and remembers what its steps did. Must outlive the
/// simulation.
class Debugger {
public:
    static constexpr std::size_t most_steps = 1000;

    /// The simulation has stopped before a line; SimPaused says so already.
    std::function<void(int line, Stop_Reason why)> Stopped;

    /// A line has one break point at most; a new one takes the place of the old.
    /// @return false: no such line, value or comparison
    bool put_break(int line, std::optional<Condition> condition = {});
    void remove_break(int line);
    void forget_breaks() { breaks_ = {}; }
    bool has_break(int line) const;
    /// Nothing for a break point without a condition.
    std::optional<Condition> condition_of(int line) const;
    /// Stops once before the line, if nothing else stops it earlier.
    /// @return false: no such line, and the target before remains
    bool run_to(int line);
    std::optional<int> target() const { return target_; }
    void forget_target() { target_.reset(); }

    // The script is edited: break points and the target follow their lines, all lines behind the
    // inserted or deleted one having moved by one.
    // @return whether a break point has vanished with its line
    bool line_inserted(int line);
    bool line_deleted(int line);

    std::size_t step_count() const;                      ///< of those that are remembered
    std::uint64_t recorded() const { return recorded_; } ///< since they were forgotten
    /// The last 1000 steps; 0 is the oldest of them.
    const Step& step(std::size_t number) const;
    /// The line as the step found it: it may have been edited since.
    const scripts::cls_Scriptstate& executed(std::size_t number) const;
    bool changed_in_last_step(Value_Ref value) const;
    void forget_steps() { recorded_ = 0; }

    /// @return false: there is no such value, or it is watched already
    bool watch(Value_Ref value);
    void unwatch(Value_Ref value) { std::erase(watched_, value); }
    std::vector<Watched> watched(const Simulated_Decoder& decoder) const;

    // For the simulation.
    /// Whether it is to stop before the line instead of executing it.
    std::optional<Stop_Reason> stops_before(int line, const Simulated_Decoder& decoder);
    /// What it has stopped before, it may execute now.
    void go_on() { passes_ = true; }
    void begin() {
        passes_ = false; // of the run before, as the rest
        forget_target();
        forget_steps();
    }
    void record(const Step& step, const scripts::cls_script& script);

private:
    struct Break_Point {
        bool there = false;
        std::optional<Condition> condition;
    };
    static constexpr std::size_t lines = scripts::cls_script::max_states;

    std::size_t place_of(std::size_t number) const; ///< in the ring

    std::array<Break_Point, lines> breaks_;
    std::optional<int> target_;
    bool passes_ = false;
    std::vector<Step> steps_ = std::vector<Step>(most_steps); ///< a ring, as the next one
    std::vector<scripts::cls_Scriptstate> executed_{most_steps};
    std::uint64_t recorded_ = 0;
    std::vector<Value_Ref> watched_;
};

} // namespace sim
