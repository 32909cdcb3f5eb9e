#pragma once

#include "sim/SimDecoderState.h"

#include <QString>
#include <cstdint>

namespace sim {

/// What of the simulated decoder has values that scripts can change or ask for.
enum class Value_Kind : std::uint8_t {
    wert,     ///< by the query-parameter list
    event,    ///< 0..15
    variable, ///< 0..3
    key,      ///< by slot
    output,   ///< 0..22
    input,    ///< 0..3, as scripts see it
    drive,    ///< by Drive_Value
};

/// What "Lok steuern" leaves behind: first what it turns on or off, in the order of its modes.
enum Drive_Value : std::int32_t {
    speed_given = 0,
    speed_limited = 1,
    speed_scaled = 2,
    direction_given = 3,
    loco_stopped = 4,
    speed_held = 5,
    drive_speed = 6,
    drive_direction = 7,
};
constexpr std::int32_t drive_value_count = 8;

/// Names one value of the simulated decoder; any index may stand in it.
struct Value_Ref {
    Value_Kind kind = Value_Kind::wert;
    std::int32_t index = 0;
    bool operator==(const Value_Ref&) const = default;
};

/// How many values there are of a kind.
std::int32_t value_count(Value_Kind kind);
inline bool exists(Value_Ref value) {
    return value.index >= 0 && value.index < value_count(value.kind);
}

/// 0 for one that does not exist.
std::int32_t value_of(const Simulated_Decoder& decoder, Value_Ref value);
/// Keeps the low bits where the value has fewer; one that does not exist stays away.
void put_value(Simulated_Decoder& decoder, Value_Ref value, std::int32_t number);

/// As scripts and cab call it: "Timer-Wert", "Event 3", "F0", "FA1". Empty for one that does not
/// exist.
QString name_of(Value_Ref value, int language = 0);

/// How a value is compared: 0 equal, 1 not equal, 2 greater, 3 less. Any other kind never holds.
bool CompareValues(std::int16_t a, std::int32_t kind, std::int16_t b);

} // namespace sim
