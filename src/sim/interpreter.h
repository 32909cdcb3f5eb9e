#pragma once

#include "scripts/cls_script.h"
#include "sim/surroundings.h"
#include "sim/values.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace sim {

/// Uniform in [0, 1).
using Random = std::function<double()>;
double random_number();

/// A value that a step changed.
struct Change {
    Value_Ref value;
    std::int32_t before = 0, after = 0;
    bool operator==(const Change&) const = default;
};

/// What a step did.
class Step {
public:
    int line = 0;
    std::int32_t command = 0;
    int next_line = 0;        ///< the line itself where the script has been left
    bool timer_shown = false; ///< the timer's value is to be shown: loaded, or a cycle has ended
    bool cycle_ended = false;
    std::optional<std::int64_t> left_for; ///< a line outside 0..255, where no script goes on

    std::span<const Change> changes() const { return {changes_.data(), count_}; }
    void begin(int at, std::int32_t what) {
        line = next_line = at;
        command = what;
        timer_shown = cycle_ended = false;
        left_for.reset();
        count_ = 0; // the old changes themselves may stay
    }
    void add(const Change& change) { changes_.at(count_++) = change; }

private:
    static constexpr std::size_t most_changes = drive_value_count; // those of "Lok steuern"
    std::size_t count_ = 0;
    std::array<Change, most_changes> changes_;
};

/// Executes a script of the editor on the simulated decoder, line by line; without windows or time.
///
/// Parameters may have any value. A step whose index lies outside its table, or whose CV lies above
/// 32767, goes on to the next line without doing anything.
class Interpreter {
public:
    explicit Interpreter(Script_CV script_cv, Random random = random_number);

    /// Executes the line SimCurrentState. The result is good until the next step.
    const Step& execute(const scripts::cls_script& script, Simulated_Decoder& decoder);

private:
    Script_CV script_cv_;
    Random random_;
    Step step_;
};

} // namespace sim
