#include "sim/ui/cab_texts.h"

#include "app/mod_main.h"
#include "app/text_table.h"
#include "scripts/catalogue/commands.h"
#include "sim/SimDecoderState.h"

#include <algorithm>

namespace sim_ui {
namespace {

using scripts_catalogue::Text;

struct Value_Text {
    std::size_t row;
    Text caption; ///< empty: from the program's table
    const char16_t* tip = nullptr;
};

constexpr Value_Text value_texts[] = {
    {sim::drive_step, {u"Ist-Speed:"}},
    {sim::target_drive_step,
     {u"Soll-Speed:"},
     u"Wohin der Decoder fährt; die Abfrage „Zielgeschwindigkeit“ sieht, was der Regler will"},
    {sim::target_set, {u"Ziel Set:"}, u"Dampf-/Dieselset Soll-Offset"},
    {sim::current_set, {u"Akt. Set:"}, u"Dampf-/Dieselset Ist-Offset"},
    {sim::diesel_step,
     {u"Dieselstufe:"},
     u"Aktuelle Dieselstufe (0=Aus, 1=Stop, 2=Start, 3=Stand, 4=F1-Stand,...)"},
    {sim::timer_value, {}, u"Timer-Wert zählt intern alle 100ms -1 und bleibt bei 0 stehen"},
    {sim::acceleration, {u"Beschleunigung", u"Acceleration"}},
    {sim::deceleration, {u"Verzögerung", u"Deceleration"}},
    {sim::direction, {u"Ist-Fahrrichtung", u"Current direction"}},
    {sim::target_direction, {u"Soll-Fahrrichtung", u"Target direction"}},
    {sim::consist_active, {u"Consist Akt."}, u"0=Consist inaktiv, 1=Consist aktiv"},
    {sim::consist_inverse,
     {u"Consist Inv."},
     u"0=Normale Fahrrichtung, 1=Inverse Fahrrichtung im Consist"},
    {17, {u"Schlag-Intervall", u"Chuff interval"}},
    {18, {u"Schlag/Umdrehung", u"Chuff/revolution"}},
    {19, {u"Schlag-Geschw.", u"Chuff speed"}},
    {20, {u"Schlag-Laststufe", u"Chuff load"}},
    {sim::operating_mode, {u"Betriebsm."}, u"1=Digitalbetrieb, 2=Analogbetrieb"},
};

const Value_Text* text_of(std::size_t row) {
    const auto* found = std::ranges::find(value_texts, row, &Value_Text::row);
    return found == std::end(value_texts) ? nullptr : found;
}

QString catalogue_name(std::size_t row) {
    return scripts_catalogue::QueryParameterName(static_cast<int>(row), app::globals.LanguageIndex);
}

// What moves and where it goes, in which set and state the decoder is, what limits it, its chuffs.
constexpr std::size_t speeds[] = {sim::drive_step,   sim::target_drive_step, sim::acceleration,
                                  sim::deceleration, sim::direction,         sim::target_direction,
                                  sim::drive_sound};
constexpr std::size_t consist[] = {sim::consist_active, sim::consist_inverse};
constexpr std::size_t limits[] = {13, 14, 15, 16};
constexpr std::size_t states[] = {sim::timer_value, sim::target_set, sim::current_set,
                                  sim::diesel_step, sim::operating_mode};
constexpr std::size_t chuffs[] = {17, 18, 19, 20, 21};
constexpr Rows first[] = {speeds, consist, limits};
constexpr Rows second[] = {states, chuffs};

} // namespace

QString text(int number) { return app::TextTable.text(number); }

QString text(const scripts_catalogue::Text& text) { return text.in(app::globals.LanguageIndex); }

QString value_caption(std::size_t row) {
    const Value_Text* known = text_of(row);
    if (known == nullptr) return catalogue_name(row).section(QStringLiteral(" ("), 0, 0);
    const QString caption = text(known->caption);
    return caption.isEmpty() ? text(table::timer_value) : caption;
}

QString value_tip(std::size_t row) {
    const Value_Text* known = text_of(row);
    const bool described = known != nullptr && known->tip != nullptr;
    return described ? QString::fromUtf16(known->tip) : catalogue_name(row);
}

QString variable_caption(std::size_t variable) {
    using scripts_catalogue::List;
    return scripts_catalogue::entry_text(List::variable, static_cast<int>(variable),
                                         app::globals.LanguageIndex);
}

QString output_caption(std::size_t output) {
    using scripts_catalogue::List;
    return scripts_catalogue::entry_text(List::output, static_cast<int>(output),
                                         app::globals.LanguageIndex);
}

QString event_text(int value) {
    return value >= 0 && value <= 2 ? text(table::event_0 + value) : QString::number(value);
}

std::span<const Rows> first_column() { return first; }

std::span<const Rows> second_column() { return second; }

} // namespace sim_ui
