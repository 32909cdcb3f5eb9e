#pragma once

#include "scripts/catalogue/text.h"

#include <cstdint>

namespace scripts_catalogue {

constexpr int first_script_cv = 980; ///< scripts can take values from this CV and the next 39
constexpr int script_cvs = 40;

/// What a parameter is chosen from. The value of a column is the index in its list.
enum class List : std::uint8_t {
    none,
    number,     ///< 0..255
    pwm,        ///< 0..31
    cv_number,  ///< 1..256, kept as 0..255
    sample,     ///< the editor's sample list; 0..255 where it has none
    state,      ///< a line of the script, 0..255
    volume,     ///< 0..9, then script CVs
    loop,       ///< how often a sound is played
    sound_end,  ///< what happens when it is ended
    key,        ///< F0..F28, MAN, then script CVs
    script_cv,  ///< CV 980 and on
    timer_cv,   ///< none, then script CVs
    condition,  ///< off, on
    query,      ///< the parameters that command 5 asks for
    setting,    ///< the parameters that command 27 sets
    comparison, ///< four kinds, then the same with a script CV
    yes_no,
    direction, ///< of command 7
    way,       ///< forward, backward
    control,   ///< modes of command 7
    looped,    ///< on, off
    time_unit,
    diesel_step,
    output,
    output_cv, ///< what of command 15 comes from a CV
    volume_cv, ///< what of command 29 comes from a CV
    effect,
    drive_mode,
    operating_mode,
    input,
    event,
    event_state,
    variable,
    change,      ///< one more, one less
    target_kind, ///< variable, event
    destination, ///< of a random number
    setting_value,
    blinking,
    cv_range,
    value_source, ///< of command 30
    bit,
    bit_value,
};

/// How many entries a list has; 0 for `none`.
int entry_count(List list);
/// The text of an entry; empty for an index outside the list.
QString entry_text(List list, int index, int language);

} // namespace scripts_catalogue
