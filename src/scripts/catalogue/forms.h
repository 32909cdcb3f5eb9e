#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace scripts_catalogue {

/// The parameters of a line, 0..6.
using Parameters = std::array<std::int32_t, 7>;

/// What the parameters of a line say. The decoder form is what the decoder reads and the database
/// keeps; the editor form has a value for each column; the file form stands in script files.
enum class Form { decoder, editor, file };

/// How a command packs its columns into the parameters of the decoder.
enum class Packing {
    none,          ///< each form has the same parameters
    sound,         ///< volume as amplitude, loop and end in one byte
    looped_sample, ///< 8 for "looped"
    pwm_group,     ///< group over two bytes; PWM, blinking and a flag in one
    cv_value,      ///< the CV's range in two bytes
    cv_bit,        ///< bit and value in one byte
    cv_read,
    cv_bit_read, ///< bit and variable in one byte
};

/// Parameters of one form in another one. What no list of the editor holds reads as its first
/// entry, and is not written.
Parameters converted(Packing packing, const Parameters& from, Form from_form, Form to_form);

/// The loop byte of command 1 in its numberings: what the decoder has, the editor's value, the
/// entry of the list of loops, and that of the list of ends.
struct Loop {
    std::int32_t decoder, editor, loop, end;
};
/// The row of an editor value; that of editor value 0 for one that there is not.
const Loop& loop_of_editor(std::int32_t editor);
/// The row with these two entries; that of editor value 0 where there is none.
const Loop& loop_of_choice(std::int32_t loop, std::int32_t end);

/// Entry of the key list for a key code; 0 (F0) for a code that is none.
std::int32_t key_index(std::int32_t code);
/// Code of an entry of the key list; nothing where there is no such entry.
std::optional<std::int32_t> key_code(std::int32_t index);

/// The CV that the columns of commands 30 to 33 name: of a list entry of the ranges, with its number
/// counted from 0. Those of page 145 are 65536 times the page above their number; 0 for what is no
/// CV.
std::int32_t cv_of(std::int32_t range, std::int32_t number);

/// Volume as the editor counts it: a step 0..9, or 10 and more for the script CV 980 and on.
std::int32_t volume_of(const Parameters& editor);
void choose_volume(Parameters& editor, std::int32_t volume);

} // namespace scripts_catalogue
