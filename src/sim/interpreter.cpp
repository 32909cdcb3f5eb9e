#include "sim/interpreter.h"

#include <QRandomGenerator>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace sim {
namespace {

constexpr std::int32_t first_script_cv = 980;
constexpr Value_Ref timer{Value_Kind::wert, timer_value};

/// Where a step leads.
struct Ending {
    enum class Way { next, jump, stay } way;
    std::int32_t line = 0; ///< of a jump
};
constexpr Ending next{Ending::Way::next};
constexpr Ending stay{Ending::Way::stay};
constexpr Ending jump(std::int32_t line) { return {Ending::Way::jump, line}; }

/// One line that is being executed.
struct Execution {
    const scripts::cls_Scriptstate& line;
    Simulated_Decoder& decoder;
    const Script_CV& script_cv;
    const Random& random;
    Step& step;

    /// Parameter 1..4, as its name has it.
    std::int32_t par(int number) const { return line.GetPar(number - 1); }
    bool bit(int number, int which) const { return (par(number) >> which & 1) != 0; }

    /// The value of a CV; nothing where its number is too big for one.
    std::optional<std::int32_t> cv(std::int64_t number) const {
        if (number > std::numeric_limits<std::int16_t>::max()) return {};
        return number < 1 ? 0 : script_cv(static_cast<int>(number));
    }
    std::optional<std::int32_t> plain_or_cv(int number, bool from_cv) const {
        return from_cv ? cv(std::int64_t{first_script_cv} + par(number)) : par(number);
    }

    void put(Value_Ref value, std::int32_t number) const {
        const std::int32_t before = value_of(decoder, value);
        put_value(decoder, value, number);
        const std::int32_t after = value_of(decoder, value);
        if (after != before) step.add({value, before, after});
    }
};

Ending go_on(const Execution&, Value_Kind) { return next; }
Ending wait_here(const Execution&, Value_Kind) { return stay; }
Ending go_to(const Execution& at, Value_Kind) { return jump(at.par(1)); }

/// Slot of a key code, which may stand for a CV with the number of the key.
std::int32_t key_slot(const Execution& at) {
    constexpr std::int32_t first_cv = 32, last_cv = 63, cv_offset = 948, f0 = 28;
    const std::int32_t code = at.par(1);
    if (code < first_cv || code > last_cv) return code;
    const std::int32_t key = at.cv(cv_offset + code).value_or(0);
    if (key == 0) return f0;
    return key >= 1 && key <= f0 ? key - 1 : key;
}

Ending query_key(const Execution& at, Value_Kind) {
    const Value_Ref key{Value_Kind::key, key_slot(at)};
    return exists(key) && value_of(at.decoder, key) == at.par(2) ? jump(at.par(3)) : next;
}

Ending query_value(const Execution& at, Value_Kind kind) {
    constexpr std::int32_t comparisons = 3;
    constexpr int from_cv = 2;
    const Value_Ref asked{kind, at.par(1)};
    if (!exists(asked)) return next;
    const auto with = at.plain_or_cv(3, at.bit(2, from_cv));
    const bool holds =
        with && CompareValues(static_cast<std::int16_t>(value_of(at.decoder, asked)),
                              at.par(2) & comparisons, static_cast<std::int16_t>(*with));
    return holds ? jump(at.par(4)) : next;
}

Ending query_input(const Execution& at, Value_Kind) {
    const auto asked = at.plain_or_cv(1, at.bit(4, 0));
    if (!asked || !exists({Value_Kind::input, *asked})) return next;
    const auto input = static_cast<std::size_t>(*asked);
    const auto condition = at.par(2);
    if (condition < 0 || condition > 3) return stay;
    const bool on = condition < 2 ? at.decoder.ReedSeen[input] : at.decoder.ReedLevel[input];
    return on == (condition % 2 != 0) ? jump(at.par(3)) : next;
}

Ending control_loco(const Execution& at, Value_Kind) {
    constexpr std::int32_t modes[] = {0,
                                      1 << speed_given | 1 << direction_given,
                                      1 << speed_limited,
                                      1 << speed_scaled,
                                      1 << direction_given,
                                      1 << loco_stopped,
                                      1 << speed_held};
    const std::int32_t mode = at.par(1);
    const bool known = mode >= 0 && mode < static_cast<std::int32_t>(std::size(modes));
    const std::int32_t turned_on = known ? modes[mode] : 0;
    for (std::int32_t flag = 0; flag < drive_speed; ++flag)
        at.put({Value_Kind::drive, flag}, turned_on >> flag & 1);
    at.put({Value_Kind::drive, drive_speed}, at.par(2));
    at.put({Value_Kind::drive, drive_direction}, at.par(3));
    return next;
}

Ending load_timer(const Execution& at, Value_Kind) {
    constexpr std::int64_t before_first_cv = first_script_cv - 1;
    const std::int32_t source = at.par(2);
    const auto value = source <= 0 ? at.par(1) : at.cv(before_first_cv + source);
    if (!value) return next;
    at.put(timer, *value);
    at.step.timer_shown = true;
    return next;
}

Ending switch_output(const Execution& at, Value_Kind) {
    constexpr std::int32_t most_pwm = 31, first_variable = 32, pwm_from_cv = 2;
    constexpr auto last_output =
        static_cast<std::int32_t>(output_count) - 2; // the last is not used
    const auto number = at.plain_or_cv(1, at.bit(3, 0));
    if (!number || *number < 0 || *number > last_output) return next;
    const Value_Ref output{Value_Kind::output, *number};
    const std::int32_t level = at.par(2);
    if (level >= first_variable && at.par(3) < pwm_from_cv) {
        const Value_Ref variable{Value_Kind::variable, level - first_variable};
        if (exists(variable)) at.put(output, value_of(at.decoder, variable));
        return next;
    }
    const bool from_cv = at.bit(3, 1);
    const auto pwm = at.plain_or_cv(2, from_cv);
    if (pwm) at.put(output, from_cv || *pwm <= most_pwm ? std::clamp(*pwm, 0, most_pwm) : 0);
    return next;
}

Ending put_direct(const Execution& at, Value_Kind kind) {
    at.put({kind, at.par(1)}, at.par(2));
    return next;
}

Ending change_by_one(const Execution& at, Value_Kind) {
    constexpr std::int32_t most = 255;
    const std::int32_t target = at.par(3);
    if (target != 0 && target != 1) return next;
    const Value_Ref changed{target == 0 ? Value_Kind::variable : Value_Kind::event, at.par(1)};
    const std::int32_t value = value_of(at.decoder, changed);
    if (at.par(2) == 0 && value < most) at.put(changed, value + 1);
    if (at.par(2) == 1 && value > 0) at.put(changed, value - 1);
    return next;
}

Ending draw_number(const Execution& at, Value_Kind) {
    const std::int64_t lowest = at.par(1), choices = at.par(2) - lowest + 1;
    // The lowest is added behind the rounding, before which it could make the sum a whole too big.
    const double drawn = std::floor(static_cast<double>(choices) * at.random());
    const Value_Ref variable{Value_Kind::variable, at.par(3) >= 1 ? at.par(3) - 1 : -1};
    at.put(exists(variable) ? variable : timer,
           static_cast<std::int32_t>(lowest + static_cast<std::int64_t>(drawn)));
    return next;
}

Ending read_cv(const Execution& at, Value_Kind) {
    const Value_Ref variable{Value_Kind::variable, at.par(3)};
    if (!exists(variable)) return next;
    if (const auto value = at.cv(at.line.GetCVRef(0))) at.put(variable, *value);
    return next;
}

/// What a command does, and to which kind of values where several do the same.
struct Row {
    std::int32_t code;
    Value_Kind kind = Value_Kind::wert;
    Ending (*effect)(const Execution&, Value_Kind) = go_on;
};

constexpr Row rows[] = {
    {.code = 0, .effect = wait_here},
    {.code = 1},
    {.code = 2},
    {.code = 3},
    {.code = 4, .effect = query_key},
    {.code = 5, .kind = Value_Kind::wert, .effect = query_value},
    {.code = 6, .effect = go_to},
    {.code = 7, .effect = control_loco},
    {.code = 8},
    {.code = 9},
    {.code = 10},
    {.code = 11},
    {.code = 12, .effect = load_timer},
    {.code = 13},
    {.code = 14},
    {.code = 15, .effect = switch_output},
    {.code = 16, .kind = Value_Kind::event, .effect = put_direct},
    {.code = 17},
    {.code = 18},
    {.code = 19},
    {.code = 20},
    {.code = 21, .effect = query_input},
    {.code = 22, .kind = Value_Kind::event, .effect = query_value},
    {.code = 23, .kind = Value_Kind::variable, .effect = query_value},
    {.code = 24, .kind = Value_Kind::variable, .effect = put_direct},
    {.code = 25, .effect = change_by_one},
    {.code = 26, .effect = draw_number},
    {.code = 27},
    {.code = 28},
    {.code = 29},
    {.code = 30},
    {.code = 31},
    {.code = 32, .effect = read_cv},
    {.code = 33},
};
constexpr Row unknown{.code = -1};

constexpr bool in_order() {
    for (std::size_t code = 0; code < std::size(rows); ++code)
        if (rows[code].code != static_cast<std::int32_t>(code)) return false;
    return true;
}
static_assert(in_order());

const Row& row_of(std::int32_t command) {
    const bool known = command >= 0 && command < static_cast<std::int32_t>(std::size(rows));
    return known ? rows[command] : unknown;
}

constexpr bool is_line(std::int64_t line) {
    return line >= 0 && line < scripts::cls_script::max_states;
}

void EndOfCycle(const Execution& at) {
    const std::int32_t value = value_of(at.decoder, timer);
    if (value > 0) at.put(timer, value - 1);
    at.step.timer_shown = true;
}

void latch_inputs(const Execution& at) {
    for (std::size_t input = 0; input < input_count; ++input)
        at.put({Value_Kind::input, static_cast<std::int32_t>(input)},
               std::exchange(at.decoder.ReedPulse[input], false));
}

} // namespace

double random_number() { return QRandomGenerator::global()->generateDouble(); }

Interpreter::Interpreter(Script_CV script_cv, Random random)
    : script_cv_(std::move(script_cv)), random_(std::move(random)) {}

const Step& Interpreter::execute(const scripts::cls_script& script, Simulated_Decoder& decoder) {
    const int line = decoder.SimCurrentState;
    if (!is_line(line)) {
        step_.begin(line, 0);
        step_.left_for = line;
        return step_;
    }
    const scripts::cls_Scriptstate& state = script.GetState(line);
    step_.begin(line, state.GetCommand());
    const Execution at{state, decoder, script_cv_, random_, step_};
    const Row& row = row_of(step_.command);
    const Ending ending = row.effect(at, row.kind);
    const std::int64_t target = ending.way == Ending::Way::next   ? line + 1
                                : ending.way == Ending::Way::stay ? line
                                                                  : ending.line;
    if (!is_line(target)) {
        step_.left_for = target;
        return step_;
    }
    step_.next_line = static_cast<int>(target);
    decoder.SimCurrentState = static_cast<std::int16_t>(target);
    if (target > line) return step_;
    step_.cycle_ended = true;
    EndOfCycle(at);
    latch_inputs(at);
    return step_;
}

} // namespace sim
