#include "scripts/catalogue/forms.h"

#include "app/mod_main.h"

#include <algorithm>

namespace scripts_catalogue {
namespace {

constexpr std::int32_t from_cv = 1; ///< in parameter 3 of a sound: parameter 1 is a script CV

// Command 1

/// From which amplitude on one is read as this step of volume; what is written for a step stands in
/// the program's VolumeSteps.
constexpr std::array<std::int32_t, 10> lowest_amplitudes{216, 153, 108, 77, 55, 39, 28, 20, 14, 10};
constexpr std::int32_t highest_step = 9;

/// Plain steps occur in libraries, too: 1 to 9 are read as what they name.
std::int32_t step_of(std::int32_t amplitude) {
    if (amplitude >= 0 && amplitude <= highest_step) return amplitude;
    const auto* found = std::ranges::find_if(
        lowest_amplitudes, [=](std::int32_t lowest) { return amplitude >= lowest; });
    return found == lowest_amplitudes.end()
               ? 0
               : static_cast<std::int32_t>(found - lowest_amplitudes.begin());
}

std::int32_t amplitude_of(std::int32_t step) {
    const bool there = step >= 0 && step <= highest_step;
    return there ? app::globals.VolumeSteps[static_cast<std::size_t>(step)] : 0;
}

constexpr Loop loop_rows[] = {
    {8, 0, 8, 0},   {72, 1, 8, 1},  {0, 2, 0, 0},   {9, 3, 1, 0},   {10, 4, 2, 0},  {11, 5, 3, 0},
    {12, 6, 4, 0},  {13, 7, 5, 0},  {14, 8, 6, 0},  {15, 9, 7, 0},  {64, 10, 0, 1}, {73, 11, 1, 1},
    {74, 12, 2, 1}, {75, 13, 3, 1}, {76, 14, 4, 1}, {77, 15, 5, 1}, {78, 16, 6, 1}, {79, 17, 7, 1},
};

Parameters sound_to_editor(const Parameters& decoder) {
    Parameters editor = decoder;
    if ((decoder[3] & from_cv) == 0) editor[1] = step_of(decoder[1]);
    const auto* loop = std::ranges::find(loop_rows, decoder[2], &Loop::decoder);
    editor[2] = loop == std::end(loop_rows) ? 0 : loop->editor;
    return editor;
}

Parameters sound_to_decoder(const Parameters& editor) {
    Parameters decoder = editor;
    if ((editor[3] & from_cv) == 0) decoder[1] = amplitude_of(editor[1]);
    const auto* loop = std::ranges::find(loop_rows, editor[2], &Loop::editor);
    decoder[2] = loop == std::end(loop_rows) ? 0 : loop->decoder;
    return decoder;
}

// Commands 8 and 17

constexpr std::int32_t is_looped = 8;

Parameters sample_to_editor(const Parameters& decoder) {
    Parameters editor = decoder;
    editor[1] = decoder[1] == is_looped ? 0 : 1;
    return editor;
}

Parameters sample_to_decoder(const Parameters& editor) {
    Parameters decoder = editor;
    decoder[1] = editor[1] == 0 ? is_looped : 0;
    return decoder;
}

// Command 28

Parameters group_to_editor(const Parameters& decoder) {
    return {(decoder[0] & 0xFF) * 2 + (decoder[1] & 0xFF), (decoder[2] & 248) / 8,
            (decoder[2] & 6) / 2, decoder[2] & 1};
}

Parameters group_to_decoder(const Parameters& editor) {
    return {(editor[0] >> 1) & 0xFF, editor[0] & 1,
            (editor[1] & 31) * 8 + (editor[2] & 3) * 2 + (editor[3] & 1)};
}

// Commands 30 to 33

struct Cv_Range {
    std::int32_t page, block;
};
constexpr Cv_Range cv_ranges_in_order[] = {{0, 0}, {0, 1}, {0, 2}, {0, 3}, {145, 0}, {145, 2}};
constexpr auto cv_range_count = static_cast<std::int32_t>(std::size(cv_ranges_in_order));

std::int32_t range_of(const Parameters& decoder) {
    const auto* found = std::ranges::find_if(cv_ranges_in_order, [&](const Cv_Range& range) {
        return range.page == decoder[0] && range.block == decoder[1];
    });
    return found == std::end(cv_ranges_in_order)
               ? 0
               : static_cast<std::int32_t>(found - std::begin(cv_ranges_in_order));
}

Cv_Range range_at(std::int32_t index) {
    const bool there =
        index >= 0 && index < static_cast<std::int32_t>(std::size(cv_ranges_in_order));
    return there ? cv_ranges_in_order[index] : Cv_Range{0, 0};
}

/// Where the CV is takes two parameters in the editor and three in the decoder.
Parameters cv_to_editor(const Parameters& decoder) {
    return {range_of(decoder), decoder[2], decoder[3], decoder[4]};
}

Parameters cv_to_decoder(const Parameters& editor) {
    const auto [page, block] = range_at(editor[0]);
    return {page, block, editor[1], editor[2], editor[3]};
}

Parameters cv_bit_to_editor(const Parameters& decoder) {
    return {range_of(decoder), decoder[2], (decoder[3] & 14) / 2, decoder[3] & 1};
}

Parameters cv_bit_to_decoder(const Parameters& editor) {
    const auto [page, block] = range_at(editor[0]);
    return {page, block, editor[1], (editor[2] & 7) * 2 + (editor[3] & 1)};
}

Parameters cv_read_to_editor(const Parameters& decoder) {
    return {range_of(decoder), decoder[2], decoder[3]};
}

Parameters cv_read_to_decoder(const Parameters& editor) {
    const auto [page, block] = range_at(editor[0]);
    return {page, block, editor[1], editor[2]};
}

Parameters cv_bit_read_to_editor(const Parameters& decoder) {
    return {range_of(decoder), decoder[2], decoder[3] & 7, (decoder[3] & 248) / 8};
}

Parameters cv_bit_read_to_decoder(const Parameters& editor) {
    const auto [page, block] = range_at(editor[0]);
    return {page, block, editor[1], (editor[2] & 7) + (editor[3] & 31) * 8};
}

/// Of the parameters that no form keeps differently.
Parameters as_they_are(const Parameters& given) {
    Parameters copy = given;
    copy[5] = copy[6] = 0;
    return copy;
}

struct Packing_Rule {
    Packing packing;
    Parameters (*to_editor)(const Parameters&);
    Parameters (*to_decoder)(const Parameters&);
    Form file_like; ///< the form that script files have
};

constexpr Packing_Rule packing_rules[] = {
    {Packing::none, as_they_are, as_they_are, Form::decoder},
    {Packing::sound, sound_to_editor, sound_to_decoder, Form::editor},
    {Packing::looped_sample, sample_to_editor, sample_to_decoder, Form::editor},
    {Packing::pwm_group, group_to_editor, group_to_decoder, Form::editor},
    {Packing::cv_value, cv_to_editor, cv_to_decoder, Form::decoder},
    {Packing::cv_bit, cv_bit_to_editor, cv_bit_to_decoder, Form::decoder},
    {Packing::cv_read, cv_read_to_editor, cv_read_to_decoder, Form::decoder},
    {Packing::cv_bit_read, cv_bit_read_to_editor, cv_bit_read_to_decoder, Form::decoder},
};

// Command 4

constexpr std::int32_t f0_code = 28;
constexpr std::int32_t man = 29; ///< code and entry
constexpr std::int32_t first_cv_entry = 30;
constexpr std::int32_t last_cv_entry = 71;
constexpr std::int32_t cv_codes_above = 2; ///< a code of a script CV is so much above its entry

} // namespace

Parameters converted(Packing packing, const Parameters& from, Form from_form, Form to_form) {
    const auto* rule = std::ranges::find(packing_rules, packing, &Packing_Rule::packing);
    const auto like = [&](Form form) { return form == Form::file ? rule->file_like : form; };
    const Parameters given = as_they_are(from);
    if (like(from_form) == like(to_form)) return given;
    return like(to_form) == Form::editor ? rule->to_editor(given) : rule->to_decoder(given);
}

const Loop& loop_of_editor(std::int32_t editor) {
    const auto* row = std::ranges::find(loop_rows, editor, &Loop::editor);
    return row == std::end(loop_rows) ? loop_rows[0] : *row;
}

const Loop& loop_of_choice(std::int32_t loop, std::int32_t end) {
    const auto* row = std::ranges::find_if(
        loop_rows, [=](const Loop& each) { return each.loop == loop && each.end == end; });
    return row == std::end(loop_rows) ? loop_rows[0] : *row;
}

std::int32_t key_index(std::int32_t code) {
    if (code >= 0 && code < f0_code) return code + 1;
    if (code == man) return man;
    const std::int32_t entry = code - cv_codes_above;
    return entry >= first_cv_entry && entry <= last_cv_entry ? entry : 0;
}

std::optional<std::int32_t> key_code(std::int32_t index) {
    if (index < 0 || index > last_cv_entry) return std::nullopt;
    if (index == 0) return f0_code;
    if (index < man) return index - 1;
    return index == man ? man : index + cv_codes_above;
}

std::int32_t cv_of(std::int32_t range, std::int32_t number) {
    const bool there = range >= 0 && range < cv_range_count && number >= 0 && number <= 255;
    if (!there) return 0;
    const auto [page, block] = cv_ranges_in_order[range];
    return page * 65536 + block * 256 + 1 + number;
}

std::int32_t volume_of(const Parameters& editor) {
    constexpr std::int32_t first_cv = highest_step + 1;
    return (editor[3] & from_cv) == 0 ? editor[1] : editor[1] + first_cv;
}

void choose_volume(Parameters& editor, std::int32_t volume) {
    constexpr std::int32_t first_cv = highest_step + 1;
    const bool cv = volume >= first_cv;
    editor[1] = cv ? volume - first_cv : volume;
    editor[3] = cv ? editor[3] | from_cv : editor[3] & ~from_cv;
}

} // namespace scripts_catalogue
