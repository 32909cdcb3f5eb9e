#include "scripts/catalogue/commands.h"

#include "platform/failure/sure.h"

#include <algorithm>

namespace scripts_catalogue {
namespace {

constexpr bool stays = false; ///< whatever else uses the CV

constexpr Text tenths{u" [0,1s]", u" [0.1s]"};

/// The CV stands in a parameter where a bit of another one is set.
constexpr Cv_Reference flagged(int parameter, int flag_parameter, std::int32_t flag_bit,
                               bool moves = true) {
    return {parameter, first_script_cv, flag_parameter, flag_bit, 0, 0, moves};
}

/// The parameter itself says that it is a CV.
constexpr Cv_Reference ranged(int parameter, int base, std::int32_t lowest, std::int32_t highest) {
    return {parameter, base, -1, 0, lowest, highest, true};
}

/// The last three columns of all comparisons, and their reference.
constexpr std::int32_t compares_with_cv = 4;
constexpr Cv_Reference compared_cv = flagged(2, 1, compares_with_cv);
constexpr Column comparison{{u"Test"}, List::comparison};
constexpr Column compared{{u"Vergleichswert", u"Compare value"}, List::number, 1, compares_with_cv};
constexpr Column target{{u"State"}, List::state};

constexpr Column event_column{{u"Event-Nummer", u"Event number"}, List::event};
constexpr Column variable_column{{u"Variable"}, List::variable};
constexpr Column sound_column{{u"Sound"}, List::sample};
constexpr Column loop_column{{u"Loop"}, List::looped};
constexpr Column active_column{{u"Aktiv", u"Active"}, List::yes_no};
constexpr Column value_from_cv{{u"Wert über CV", u"Value from CV"}, List::yes_no};
constexpr Column range_column{{u"CV-Bereich", u"CV range"}, List::cv_range};
constexpr Column cv_number_column{{u"CV-Nummer", u"CV number"}, List::cv_number};
constexpr Column cv_bit_column{{u"CV-Bit-Nummer", u"CV bit number"}, List::bit};
constexpr Column unit_column{{u"Zeit-Einheit (nur QR)", u"Time unit (just QR)"}, List::time_unit};

constexpr Command all[] = {
    {.code = 0, .name = {u"-"}},
    {.code = 1,
     .name = {u"Sound starten", u"Start sound"},
     .parameters = 4,
     .packing = Packing::sound,
     .references = {flagged(1, 3, 1)},
     .columns = {sound_column,
                 {{u"Lautstärke", u"Volume"}, List::volume},
                 {{u"Wiederholungen", u"Repetitions"}, List::loop},
                 {{u"Sound Ende", u"End of sound"}, List::sound_end}}},
    {.code = 2, .name = {u"Sound beenden", u"Stop sound"}},
    {.code = 3, .name = {u"Auf Sound Ende warten", u"Wait for end of sound"}},
    {.code = 4,
     .name = {u"Abfrage Taste", u"Query function key", u"Query function"},
     .parameters = 3,
     .jump = 2,
     .references = {ranged(0, 948, 32, 71)},
     .columns = {{{u"Taste", u"Key"}, List::key},
                 {{u"Zustand", u"State of key"}, List::condition},
                 {{u"State wenn Taste=Zustand", u"Line if key is so"}, List::state}}},
    {.code = 5,
     .name = {u"Abfrage Parameter", u"Query parameter"},
     .parameters = 4,
     .jump = 3,
     .references = {compared_cv},
     .columns =
         {{{u"Wenn Parameter", u"If parameter"}, List::query}, comparison, compared, target}},
    {.code = 6,
     .name = {u"Gehe zu State", u"Go to state"},
     .parameters = 1,
     .jump = 0,
     .columns = {target}},
    {.code = 7,
     .name = {u"Lok steuern", u"Control loco"},
     .parameters = 4,
     .references = {flagged(1, 3, 1)},
     .columns = {{{u"Kontrolle", u"Control"}, List::control},
                 {{u"Fahrstufe", u"Drive step"}, List::number, 3, 1},
                 {{u"Richtung", u"Direction"}, List::direction},
                 value_from_cv}},
    {.code = 8,
     .name = {u"Thyristor Sample", u"Thyristor sample (selection)"},
     .parameters = 2,
     .packing = Packing::looped_sample,
     .columns = {sound_column, loop_column}},
    {.code = 9, .name = {u"Auf Thyristor Ende warten", u"Wait for end of thyristor sample"}},
    {.code = 10,
     .name = {u"Thyristor Tonhöhe", u"Thyristor pitch"},
     .parameters = 4,
     .columns = {{{u"Tonhöhe/FS mid.", u"Pitch/drive step mid."}, List::number},
                 {{u"Tonhöhe max.", u"Pitch max."}, List::number},
                 {{u"Fahrstufe mid.", u"Drive step mid."}, List::number}}},
    {.code = 11,
     .name = {u"I2C Command", u"I2C command"},
     .parameters = 4,
     .columns = {{{u"Länge", u"Length"}, List::number},
                 {{u"I2C Address"}, List::number},
                 {{u"Data1"}, List::number},
                 {{u"Data2"}, List::number}}},
    {.code = 12,
     .name = {u"Timer laden", u"Load timer"},
     .parameters = 3,
     .references = {ranged(1, 979, 1, 40)},
     .columns = {{{u"Zeit", u"Time"}, List::number, no_cv, 0, tenths},
                 {{u"Wert aus CV", u"Value from CV"}, List::timer_cv},
                 unit_column}},
    {.code = 13,
     .name = {u"Diesel-Stufe fixieren", u"Set diesel step"},
     .parameters = 2,
     .columns = {active_column, {{u"Stufe", u"Step"}, List::diesel_step}}},
    {.code = 14,
     .name = {u"Bremsenquietschen unterdrücken", u"Suppress brake squeal"},
     .parameters = 1,
     .columns = {active_column}},
    {.code = 15,
     .name = {u"Ausgang einschalten", u"Switch output on"},
     .parameters = 3,
     .references = {flagged(0, 2, 1), flagged(1, 2, 2)},
     .columns = {{{u"FU-Ausgang", u"Output"},
                  List::output,
                  2,
                  1,
                  {u" (0-14=Lv-FA13)", u" (0-14=Lv-FO13)"}},
                 {{u"Aus/Ein/PWM", u"Off/On/PWM"}, List::pwm, 2, 2, {u" (0-31)"}},
                 {{u"Werte über CV", u"Values from CV"}, List::output_cv}}},
    {.code = 16,
     .name = {u"Event setzen", u"Set event"},
     .parameters = 2,
     .columns = {event_column,
                 {{u"Aus/Ein bzw. Links/Rechts", u"Off/On or left/right"}, List::event_state}}},
    {.code = 17,
     .name = {u"EMotor Sample", u"EMotor sample"},
     .parameters = 2,
     .packing = Packing::looped_sample,
     .columns = {sound_column, loop_column}},
    {.code = 18, .name = {u"Auf EMotor Ende warten", u"Wait for end of E-Motor sample"}},
    {.code = 19,
     .name = {u"Diesel-Ablauf übernehmen", u"Take over diesel sequence"},
     .parameters = 2,
     .columns = {{{u"Übernehmen?", u"Take over?"}, List::yes_no},
                 {{u"Aktuelle Diesel-Stufe setzen", u"Set current diesel step"},
                  List::diesel_step}}},
    {.code = 20,
     .name = {u"FA Effekt setzen", u"Set effect"},
     .parameters = 2,
     .columns = {{{u"FU-Ausgang", u"Output"}, List::output},
                 {{u"Effekt", u"Effect"}, List::effect}}},
    {.code = 21,
     .name = {u"Abfrage Reed-Input", u"Query reed input"},
     .parameters = 4,
     .jump = 2,
     .references = {flagged(0, 3, 1)},
     .columns = {{{u"Eingang", u"Input"}, List::input, 3, 1, {u" (0-3=In1-4)"}},
                 {{u"Zustand", u"State of input"}, List::condition},
                 {{u"State wenn Input=Zustand", u"Line if input is so"}, List::state},
                 value_from_cv}},
    {.code = 22,
     .name = {u"Abfrage Event", u"Query event"},
     .parameters = 4,
     .jump = 3,
     .references = {compared_cv},
     .columns = {event_column, comparison, compared, target}},
    {.code = 23,
     .name = {u"Abfrage Variable", u"Query variable"},
     .parameters = 4,
     .jump = 3,
     .references = {compared_cv},
     .columns = {variable_column, comparison, compared, target}},
    {.code = 24,
     .name = {u"Variable setzen", u"Set variable"},
     .parameters = 2,
     .columns = {variable_column, {{u"Wert", u"Value"}, List::number}}},
    {.code = 25,
     .name = {u"Variable/Event ändern", u"Change variable/event"},
     .parameters = 3,
     .columns = {variable_column,
                 {{u"+/-1"}, List::change},
                 {{u"Variable/Event"}, List::target_kind}}},
    {.code = 26,
     .name = {u"Zufallszahl generieren", u"Generate random value"},
     .parameters = 4,
     .columns = {{{u"Min"}, List::number},
                 {{u"Max"}, List::number},
                 {{u"Ziel", u"Destination"}, List::destination},
                 unit_column}},
    {.code = 27,
     .name = {u"Set Parameter", u"Set parameter"},
     .parameters = 2,
     .columns = {{{u"Parameter"}, List::setting}, {{u"Wert", u"Value"}, List::setting_value}}},
    {.code = 28,
     .name = {u"Set Pwm Gruppe", u"Set PWM group"},
     .parameters = 4,
     .packing = Packing::pwm_group,
     .columns = {{{u"Gruppe", u"Group"}, List::number},
                 {{u"PWM"}, List::pwm},
                 {{u"Blinken", u"Blinking"}, List::blinking},
                 {{u"Aus/Ein", u"Off/On"}, List::condition}}},
    {.code = 29,
     .name = {u"Set Lautstärke (nur QR)", u"Set volume (just QR)"},
     .parameters = 3,
     .references = {flagged(0, 2, 1, stays), flagged(1, 2, 2, stays)},
     .columns = {{{u"Lautstärke", u"Volume"}, List::number, 2, 1, {u" (64=100%)"}},
                 {{u"Fade-Zeit", u"Fade time"}, List::number, 2, 2, tenths},
                 {{u"Werte über CV", u"Values from CV"}, List::volume_cv}}},
    {.code = 30,
     .name = {u"Set CV (nur QR)", u"Set CV (just QR)"},
     .parameters = 5,
     .packing = Packing::cv_value,
     .columns = {range_column,
                 cv_number_column,
                 {{u"CV-Wert", u"CV value"}, List::number},
                 {{u"Variable/Event"}, List::value_source}}},
    {.code = 31,
     .name = {u"Set CV Bit (nur QR)", u"Set CV bit (just QR)"},
     .parameters = 4,
     .packing = Packing::cv_bit,
     .columns = {range_column,
                 cv_number_column,
                 cv_bit_column,
                 {{u"Bit-Wert", u"Bit value"}, List::bit_value}}},
    {.code = 32,
     .name = {u"Read CV (nur QR)", u"Read CV (just QR)"},
     .parameters = 4,
     .packing = Packing::cv_read,
     .columns = {range_column, cv_number_column, variable_column}},
    {.code = 33,
     .name = {u"Read CV Bit (nur QR)", u"Read CV bit (just QR)"},
     .parameters = 4,
     .packing = Packing::cv_bit_read,
     .columns = {range_column, cv_number_column, cv_bit_column, variable_column}},
};
static_assert(std::size(all) == last_command + 1);

/// With what a parameter of the decoder is compared or to what it is set; all others are numbers.
struct Values_Of {
    List parameters;
    std::int32_t parameter;
    List values;
};
constexpr Values_Of values_of[] = {
    {List::query, 2, List::condition},
    {List::query, 5, List::diesel_step},
    {List::query, 9, List::way},
    {List::query, 10, List::way},
    {List::query, 11, List::yes_no},
    {List::query, 12, List::yes_no},
    {List::query, 13, List::drive_mode},
    {List::query, 14, List::drive_mode},
    {List::query, 15, List::drive_mode},
    {List::query, 16, List::drive_mode},
    {List::query, 21, List::yes_no},
    {List::query, 22, List::operating_mode},
    {List::setting, 2, List::setting_value},
    {List::setting, 3, List::setting_value},
    {List::setting, 4, List::setting_value},
    {List::setting, 5, List::setting_value},
    {List::setting, 6, List::setting_value},
    {List::setting, 7, List::setting_value},
    {List::setting, 8, List::setting_value},
    {List::setting, 9, List::setting_value},
};

/// The values of the parameter that the first column names.
List values_named_by(List parameters, std::int32_t parameter) {
    const auto* found = std::ranges::find_if(values_of, [=](const Values_Of& each) {
        return each.parameters == parameters && each.parameter == parameter;
    });
    return found == std::end(values_of) ? List::number : found->values;
}

} // namespace

std::span<const Command> commands() { return all; }

const Command* command(std::int32_t code) {
    return code >= 0 && code <= last_command ? &all[code] : nullptr;
}

std::optional<int> JumpParameter(std::int32_t code) {
    const Command* known = command(code);
    return known == nullptr || known->jump == no_jump ? std::nullopt : std::optional(known->jump);
}

int ParameterCount(std::int32_t code) {
    const Command* known = command(code);
    return known == nullptr ? 0 : known->parameters;
}

QString CommandName(std::int32_t code, int language) {
    const Command* known = command(code);
    return known == nullptr ? QString() : known->name.in(language);
}

QString QueryParameterName(int index, int language) {
    return entry_text(List::query, index, language);
}

QString SettableParameterName(int index, int language) {
    return entry_text(List::setting, index, language);
}

QString KeyName(int number) {
    constexpr int man = 29;
    if (number < 0 || number > man) return QStringLiteral("-");
    return entry_text(List::key, number, german);
}

QString VolumeText(int step) {
    constexpr int dB = 3;
    return QStringLiteral("-%1 dB").arg(dB * step);
}

bool Cv_Reference::applies(const Parameters& parameters) const {
    if (!exists()) return false;
    const auto at = [&](int place) { return parameters.at(static_cast<std::size_t>(place)); };
    if (flag_parameter >= 0) return (at(flag_parameter) & flag_bit) != 0;
    return at(parameter) >= lowest && at(parameter) <= highest;
}

List list_of(const Command& command, int column, const Parameters& editor) {
    SURE(column >= 0 && column < most_columns);
    const Column& chosen = command.columns[column];
    if (chosen.cv_parameter >= 0 &&
        (editor.at(static_cast<std::size_t>(chosen.cv_parameter)) & chosen.cv_bit) != 0)
        return List::script_cv;
    const List first = command.columns[0].list;
    const bool is_value =
        chosen.list == List::setting_value || (chosen.list == List::number && first == List::query);
    if (is_value) return values_named_by(first, editor[0]);
    const bool may_be_event =
        first == List::variable && column == 0 && command.columns[2].list == List::target_kind;
    return may_be_event && editor[2] == 1 ? List::event : chosen.list;
}

} // namespace scripts_catalogue
