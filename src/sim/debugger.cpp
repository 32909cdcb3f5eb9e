#include "sim/debugger.h"

#include "platform/failure/sure.h"

#include <algorithm>
#include <utility>

namespace sim {
namespace {

constexpr bool has_line(int line) { return line >= 0 && line < scripts::cls_script::max_states; }

bool holds(const Condition& condition, const Simulated_Decoder& decoder) {
    return CompareValues(static_cast<std::int16_t>(value_of(decoder, condition.value)),
                         condition.comparison, condition.number);
}

} // namespace

bool Debugger::put_break(int line, std::optional<Condition> condition) {
    constexpr std::int32_t last_comparison = 3;
    if (!has_line(line)) return false;
    if (condition && (!exists(condition->value) || condition->comparison < 0 ||
                      condition->comparison > last_comparison))
        return false;
    breaks_[static_cast<std::size_t>(line)] = {true, condition};
    return true;
}

void Debugger::remove_break(int line) {
    if (has_line(line)) breaks_[static_cast<std::size_t>(line)] = {};
}

bool Debugger::has_break(int line) const {
    return has_line(line) && breaks_[static_cast<std::size_t>(line)].there;
}

std::optional<Condition> Debugger::condition_of(int line) const {
    return has_line(line) ? breaks_[static_cast<std::size_t>(line)].condition : std::nullopt;
}

bool Debugger::run_to(int line) {
    if (has_line(line)) target_ = line;
    return has_line(line);
}

bool Debugger::line_inserted(int line) {
    if (!has_line(line)) return false;
    if (target_ && *target_ >= line && ++*target_ == static_cast<int>(lines)) target_.reset();
    const bool lost = breaks_.back().there;
    std::shift_right(breaks_.begin() + line, breaks_.end(), 1);
    breaks_[static_cast<std::size_t>(line)] = {};
    return lost;
}

bool Debugger::line_deleted(int line) {
    if (!has_line(line)) return false;
    if (target_ == line) target_.reset();
    if (target_ && *target_ > line) --*target_;
    const bool lost = breaks_[static_cast<std::size_t>(line)].there;
    std::shift_left(breaks_.begin() + line, breaks_.end(), 1);
    breaks_.back() = {};
    return lost;
}

std::size_t Debugger::step_count() const {
    return static_cast<std::size_t>(std::min<std::uint64_t>(recorded_, most_steps));
}

std::size_t Debugger::place_of(std::size_t number) const {
    SURE(number < step_count());
    return (recorded_ - step_count() + number) % most_steps;
}

const Step& Debugger::step(std::size_t number) const { return steps_[place_of(number)]; }

const scripts::cls_Scriptstate& Debugger::executed(std::size_t number) const {
    return executed_[place_of(number)];
}

bool Debugger::changed_in_last_step(Value_Ref value) const {
    if (recorded_ == 0) return false;
    const auto changes = step(step_count() - 1).changes();
    return std::ranges::find(changes, value, &Change::value) != changes.end();
}

bool Debugger::watch(Value_Ref value) {
    if (!exists(value) || std::ranges::find(watched_, value) != watched_.end()) return false;
    watched_.push_back(value);
    return true;
}

std::vector<Watched> Debugger::watched(const Simulated_Decoder& decoder) const {
    std::vector<Watched> all;
    for (const Value_Ref value : watched_)
        all.push_back(
            {value, name_of(value), value_of(decoder, value), changed_in_last_step(value)});
    return all;
}

std::optional<Stop_Reason> Debugger::stops_before(int line, const Simulated_Decoder& decoder) {
    if (std::exchange(passes_, false) || !has_line(line)) return {};
    std::optional<Stop_Reason> why;
    if (target_ == line) why = Stop_Reason::run_to;
    const Break_Point& at = breaks_[static_cast<std::size_t>(line)];
    if (at.there && (!at.condition || holds(*at.condition, decoder)))
        why = Stop_Reason::break_point;
    if (why) target_.reset();
    return why;
}

void Debugger::record(const Step& step, const scripts::cls_script& script) {
    passes_ = false;
    const std::size_t place = recorded_++ % most_steps;
    steps_[place] = step;
    executed_[place] =
        has_line(step.line) ? script.GetState(step.line) : scripts::cls_Scriptstate();
}

} // namespace sim
