#pragma once

#include "scripts/catalogue/text.h"

#include <QString>
#include <span>

namespace sim_ui {

/// Texts of the program's table that the cab uses.
namespace table {
constexpr int drive_sound = 90;
constexpr int off = 103;
constexpr int on = 173;
constexpr int event_0 = 225; ///< and the two that follow
constexpr int direction = 242;
constexpr int moves_forward = 280;
constexpr int moves_backward = 281;
constexpr int functions = 314;
constexpr int forward = 532;
constexpr int backward = 533;
constexpr int values = 534;
constexpr int inputs = 535;
constexpr int timer_value = 536;
} // namespace table

/// The cab's own texts.
namespace own {
using scripts_catalogue::Text;
constexpr Text title{u"Simulation"};
constexpr Text throttle{u"Regler", u"Throttle", u"Régulateur"};
constexpr Text stop{u"Notstop", u"Emergency stop", u"Arrêt d'urgence"};
constexpr Text stopped{u"STOP"};
constexpr Text ramp{u"CV3/CV4"};
constexpr Text man{u"MAN"};
constexpr Text outputs{u"Ausgänge", u"Outputs", u"Sorties"};
constexpr Text direction_now{u"Ist", u"Current", u"Réelle"};
constexpr Text direction_wanted{u"Soll", u"Target", u"Voulue"};
constexpr Text key{u"F"};        ///< and its number
constexpr Text input{u"Input "}; ///< and its number
constexpr Text event{u"Event"};  ///< and its number
constexpr Text outputs_tip{u"Zeigt nur die vom Script eingeschalteten Ausgänge an!"};
constexpr Text inputs_tip{
    u"Das Script sieht einen Eingang einen Zyklus lang, nachdem er eingeschaltet wurde",
    u"The script sees an input for one cycle after it was switched on"};
constexpr Text events_tip{
    u"Events sind globale Variablen die auch zum Ansteuern von Servos genutzt werden können"};
} // namespace own

/// Text of the program's table in the language of the program.
QString text(int number);
QString text(const scripts_catalogue::Text& text);

/// Caption of a decoder value: its own, or the name of the catalogue without what stands in brackets.
QString value_caption(std::size_t row);
/// What is described of the value, or its whole name.
QString value_tip(std::size_t row);
QString variable_caption(std::size_t variable);
QString output_caption(std::size_t output);
/// An event as it is shown: the first three values have a meaning.
QString event_text(int value);

/// The decoder values that stand below one another, group by group.
using Rows = std::span<const std::size_t>;
std::span<const Rows> first_column();
std::span<const Rows> second_column();

} // namespace sim_ui
