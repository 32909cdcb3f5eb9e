#pragma once

#include "platform/jet/check/row.h"

namespace jet::check {

/// UTF-16 units of a stored text: compressed or plain (Jet 4), bytes (Jet 3, shown as Latin-1).
struct Text {
    std::u16string units;
    bool whole = true; ///< false: half a unit was left over
};

/// @param most stop after so many units
Text decode_text(const Format& format, Bytes stored, std::size_t most = 0xFFFF);

/// What is wrong with a value that is not null and no long value.
std::optional<Problem> value_problem(const Format& format, const Column& column,
                                     const Value& value);

/// A text that its column is too short for: readers show it all the same.
std::optional<Problem> length_problem(const Format& format, const Column& column,
                                      const Value& value);

} // namespace jet::check
