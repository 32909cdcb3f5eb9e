#pragma once

#include <QStringView>

/// What the debugger's panel says.
namespace scripts_ui::debug_text {

constexpr QStringView trace = u"Ablauf";
constexpr QStringView no_steps = u"Noch keine Schritte";
constexpr QStringView trace_columns[] = {u"Nr.", u"State", u"Befehl", u"Weiter", u"Änderungen"};
constexpr QStringView next_tip = u"State, der auf diesen Schritt folgt";
constexpr QStringView left_script = u"%1 (Ende)";
constexpr QStringView change = u"%1 %2 → %3"; ///< value, before, after
constexpr QStringView cycle_end = u"Zyklusende";

constexpr QStringView watch = u"Werte beobachten";
constexpr QStringView watch_columns[] = {u"Wert", u"Stand"};
constexpr QStringView add_watch = u"Wert beobachten …";
constexpr QStringView add_watch_tip =
    u"Name eintippen oder aus der Liste wählen; Entf nimmt einen Wert wieder heraus";
constexpr QStringView no_watch = u"Keine Werte gewählt";
constexpr QStringView changed = u"geändert";

constexpr QStringView breaks = u"Haltepunkte";
constexpr QStringView break_columns[] = {u"State", u"Bedingung"};
constexpr QStringView no_breaks = u"Keine Haltepunkte";
constexpr QStringView edit_condition = u"Bedingung …";
constexpr QStringView edit_condition_tip = u"Ändert die Bedingung des gewählten Haltepunkts (F2)";
constexpr QStringView go_to_line = u"Zum State";
constexpr QStringView remove = u"Entfernen";

constexpr QStringView own_clock = u"eigene Uhr";
constexpr QStringView own_clock_tip =
    u"Timer, Rampe und Schritte laufen nach einer gemeinsamen Uhr der Simulation. Bei Pause und "
    u"Haltepunkten stehen alle drei still, und der Ablauf wiederholt sich genau, wie lange man "
    u"auch pausiert. Ohne eigene Uhr laufen Rampe und Timer weiter.";

constexpr QStringView condition_title = u"Haltepunkt vor State %1";
constexpr QStringView without_condition = u"ohne Bedingung";
constexpr QStringView only_if = u"nur wenn";
constexpr QStringView condition_value = u"Wert der Bedingung";
constexpr QStringView condition_comparison = u"Vergleich";
constexpr QStringView condition_number = u"Zahl";
constexpr QStringView value_hint = u"Wert eintippen oder wählen";
constexpr QStringView condition = u"%1 %2 %3"; ///< value, comparison, number
/// As the comparisons of scripts, in their order.
constexpr QStringView signs[] = {u"=", u"≠", u">", u"<"};
constexpr QStringView ok = u"OK";
constexpr QStringView cancel = u"Abbrechen";

constexpr QStringView groups[] = {u"Werte",    u"Events",   u"Variablen",  u"Tasten",
                                  u"Ausgänge", u"Eingänge", u"Lok steuern"};
constexpr QStringView of_loco = u"Lok steuern: %1";
/// What tells a name of one group from those of others.
constexpr QStringView in_choice[] = {u"%1",           u"%1",           u"%1", u"%1 (Taste)",
                                     u"%1 (Ausgang)", u"%1 (Eingang)", u"%1"};

} // namespace scripts_ui::debug_text
