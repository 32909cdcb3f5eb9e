#include "scripts/catalogue/lists.h"

#include <algorithm>
#include <span>

namespace scripts_catalogue {
namespace {

/// One entry, or several that differ by a running number.
struct Run {
    Text before;
    int count = 0; ///< 0: one entry without a number
    int first = 0;
    Text after = {};
    int step = 1;

    constexpr int entries() const { return std::max(count, 1); }
};

constexpr Run script_cv_run{{u"CV#"}, script_cvs, first_script_cv};

constexpr Run numbers[] = {{{u""}, 256, 0}};
constexpr Run pwm_values[] = {{{u""}, 32, 0}};
constexpr Run cv_numbers[] = {{{u""}, 256, 1}};
constexpr Run samples[] = {{{u"Sample "}, 256, 0}};
constexpr Run volumes[] = {{{u"-"}, 10, 0, {u" dB"}, 3}, script_cv_run};
constexpr Run loops[] = {
    {{u"Einmal abspielen"}}, {{u"Loop-Anzahl = "}, 7, 2}, {{u"Loop bis Sound Beenden"}}};
constexpr Run sound_ends[] = {{{u"Bei Ende alles abspielen"}},
                              {{u"Bei Ende vorspringen bis Loop-Ende"}}};
constexpr Run keys[] = {{{u"F"}, 29, 0}, {{u"MAN"}}, script_cv_run};
constexpr Run script_cv_list[] = {script_cv_run};
constexpr Run timer_cvs[] = {{{u"Nein", u"No"}}, script_cv_run};
constexpr Run conditions[] = {{{u"Aus", u"Off"}}, {{u"Ein", u"On"}}};
constexpr Run comparisons[] = {
    {{u"Ist Gleich", u"Is equal to"}},
    {{u"Ist Ungleich", u"not equal to"}},
    {{u"Ist Größer als", u"is greater than"}},
    {{u"Ist Kleiner als", u"is less than"}},
    {{u"Ist Gleich (Wert in CV)", u"Is equal to (value in CV)"}},
    {{u"Ist Ungleich (Wert in CV)", u"not equal to (value in CV)"}},
    {{u"Ist Größer als (Wert in CV)", u"is greater than (value in CV)"}},
    {{u"Ist Kleiner als (Wert in CV)", u"is less than (value in CV)"}},
};
constexpr Run yes_or_no[] = {{{u"Nein", u"No"}}, {{u"Ja", u"Yes"}}};
constexpr Run directions[] = {{{u"Wie Regler", u"As throttle"}},
                              {{u"Invers", u"Inverted"}},
                              {{u"Vorwärts", u"Forward"}},
                              {{u"Rückwärts", u"Reverse"}}};
constexpr Run ways[] = {{{u"Vorwärts", u"Forward"}}, {{u"Rückwärts", u"Reverse"}}};
constexpr Run controls[] = {{{u"Keine Beeinflussung", u"No influence"}},
                            {{u"Fahrstufe vorgeben", u"Set drive step"}},
                            {{u"Fahrstufe begrenzen", u"Limit drive step"}},
                            {{u"Fahrstufe reduzieren", u"Scale down drive step"}},
                            {{u"Nur Richtung setzen", u"Set direction"}},
                            {{u"Notstopp", u"Emergency Stop"}},
                            {{u"Beschleunigen verhindern", u"Inhibit Acceleration"}}};
constexpr Run looped_or_not[] = {{{u"Ein", u"On"}}, {{u"Aus", u"Off"}}};
constexpr Run time_units[] = {{{u"100ms"}},   {{u"1ms (QR)"}}, {{u"10ms (QR)"}}, {{u"100ms (QR)"}},
                              {{u"1s (QR)"}}, {{u"10s (QR)"}}, {{u"100s (QR)"}}};
constexpr Run diesel_steps[] = {
    {{u"Aus", u"Off"}},          {{u"Stop"}},    {{u"Start"}}, {{u"Stand", u"Idle"}},
    {{u"F1-Stand", u"F1-Idle"}}, {{u""}, 251, 5}};
constexpr Run outputs[] = {{{u"Lv"}}, {{u"Lr"}}, {{u"FA", u"FO"}, 17, 1}};
constexpr Run output_cvs[] = {{{u"Nein", u"No"}},
                              {{u"Ausgang über CV", u"Output from CV"}},
                              {{u"PWM über CV", u"PWM from CV"}},
                              {{u"Ausgang und PWM über CV", u"Output and PWM from CV"}}};
constexpr Run volume_cvs[] = {{{u"Nein", u"No"}},
                              {{u"Lautstärke über CV", u"Volume from CV"}},
                              {{u"Zeit über CV", u"Time from CV"}},
                              {{u"Lautstärke und Zeit über CV", u"Volume and time from CV"}}};
constexpr Run effects[] = {{{u"Mars Light"}},
                           {{u"Random Flicker"}},
                           {{u"Flashing Headlight"}},
                           {{u"Single Pulse Strobe"}},
                           {{u"Double Pulse Strobe"}},
                           {{u"Rotary beacon simulation"}},
                           {{u"Gyralight"}},
                           {{u"Ditch light type 1 right"}},
                           {{u"Ditch light type 1 left"}},
                           {{u"Ditch light type 2 right"}},
                           {{u"Ditch light type 2 left"}},
                           {{u"Soft Start"}},
                           {{u"FA aus bei Fahrt"}},
                           {{u"FA aus nach 5 Minuten"}},
                           {{u"FA aus nach 10 Minuten"}},
                           {{u"Servo Power Control"}},
                           {{u"-"}}};
constexpr Run drive_modes[] = {
    {{u"SGZ-Notstop"}}, {{u"reserviert"}},       {{u"Halt (SGZ, ABC, DC)"}},
    {{u"SGZ-UH"}},      {{u"SGZ-Ultralangsam"}}, {{u"SGZ-LU/ABC-Langsam"}},
    {{u"SGZ-Langsam"}}, {{u"SGZ-FL"}},           {{u"Fahrt (SGZ, ABC, DC)"}}};
constexpr Run operating_modes[] = {{{u"Keiner", u"None"}},
                                   {{u"Digitalbetrieb", u"Digital operation"}},
                                   {{u"Analogbetrieb", u"Analog operation"}}};
constexpr Run inputs[] = {{{u"Input "}, 4, 1}};
constexpr Run events[] = {{{u"Event "}, 16, 1}};
constexpr Run event_states[] = {{{u"0 (Aus/Links)", u"0 (Off/Left)"}},
                                {{u"1 (Ein/Rechts)", u"1 (On/Right)"}},
                                {{u"2 (Servo Mitte)", u"2 (Servo center)"}},
                                {{u""}, 253, 3}};
constexpr Run variables[] = {{{u"Variable "}, 4, 1}};
constexpr Run changes[] = {{{u"+1 (max.255)"}}, {{u"-1 (min.0)"}}};
constexpr Run target_kinds[] = {{{u"Variable"}}, {{u"Event"}}};
constexpr Run destinations[] = {{{u"Timer"}}, {{u"Variable "}, 4, 1}};
constexpr Run setting_values[] = {
    {{u"Keine Beeinflussung", u"No influence"}}, {{u"Aus", u"Off"}}, {{u"Ein", u"On"}}};
constexpr Run blinkings[] = {
    {{u"Nein", u"No"}}, {{u"Ja", u"Yes"}}, {{u"Invertiert Blinken", u"Blink inverted"}}};
constexpr Run cv_ranges[] = {{{u"CV1-256"}},    {{u"CV256-512"}}, {{u"CV513-768"}},
                             {{u"CV769-1024"}}, {{u"Page145.0"}}, {{u"Page145.2"}}};
constexpr Run value_sources[] = {{{u"Wert", u"Value"}}, {{u"Variable"}}, {{u"Event"}}};
constexpr Run bits[] = {{{u"Bit "}, 8, 0}};
constexpr Run bit_values[] = {{{u""}, 2, 0}};
constexpr Run queries[] = {
    {{u"Fahrgeschwindigkeit", u"Current speed"}},
    {{u"Zielgeschwindigkeit", u"Target speed"}},
    {{u"Fahrsound", u"Sound on/off"}},
    {{u"Ziel-Set", u"Target set"}},
    {{u"Aktuelles Set", u"Current set"}},
    {{u"Diesel-Stufe", u"Diesel step"}},
    {{u"Timer-Wert", u"Timer value"}},
    {{u"Beschleunigung", u"Acceleration value"}},
    {{u"Verzögerung", u"Deceleration value"}},
    {{u"Ist-Fahrrichtung", u"Current direction of traven (0=fw, 1=rev)"}},
    {{u"Soll-Fahrrichtung", u"Target direction of travel (0=fw, 1=rev)"}},
    {{u"Consist aktiv", u"Consist active"}},
    {{u"Consist invers", u"Consist inverted"}},
    {{u"SGZ-Limit", u"SGZ limit"}},
    {{u"ABC-Limit", u"ABC limit"}},
    {{u"DC-Limit", u"DC limit"}},
    {{u"Akt-Limit", u"Current limit"}},
    {{u"Dampfschlag-Intervall (nur QR)", u"Chuff interval (just QR)"}},
    {{u"Dampfschlag/Umdrehung (nur QR)", u"Chuff/revolution (just QR)"}},
    {{u"Dampfschlag-Geschwindigkeitsstufe (nur QR)", u"Chuff speed index (just QR)"}},
    {{u"Dampfschlag-Laststufe (nur QR)", u"Chuff load intex (just QR)"}},
    {{u"Entwässern aktiv (nur QR)", u"Drain active (just QR)"}},
    {{u"Aktueller Betriebsmodus (nur QR)", u"Current operating mode (just QR)"}},
};
constexpr Run settings[] = {
    {{u"SET-Offset"}},
    {{u"Dampftakt CV828", u"Chuff rate CV828"}},
    {{u"Zylinderventil offen", u"Zylinder valves on"}},
    {{u"Mute aktivieren", u"activate mute"}},
    {{u"Takt aktivieren", u"activate pulse output"}},
    {{u"Rangiertaste aktivieren (nur QR)", u"deactivate momentum (just QR)"}},
    {{u"Motor invertieren (nur QR)", u"invert motor direction (just QR)"}},
    {{u"Fahrsound ein/aus (nur QR)", u"Drive sound on/off (just QR)"}},
    {{u"Lichter invertieren (nur QR)", u"invert lights direction (just QR)"}},
    {{u"Lokrichtung invertieren (nur QR)", u"invert loco direction (just QR)"}},
};

struct Content {
    List list;
    std::span<const Run> runs;
};

constexpr Content contents[] = {
    {List::number, numbers},
    {List::pwm, pwm_values},
    {List::cv_number, cv_numbers},
    {List::sample, samples},
    {List::state, numbers},
    {List::volume, volumes},
    {List::loop, loops},
    {List::sound_end, sound_ends},
    {List::key, keys},
    {List::script_cv, script_cv_list},
    {List::timer_cv, timer_cvs},
    {List::condition, conditions},
    {List::query, queries},
    {List::setting, settings},
    {List::comparison, comparisons},
    {List::yes_no, yes_or_no},
    {List::direction, directions},
    {List::way, ways},
    {List::control, controls},
    {List::looped, looped_or_not},
    {List::time_unit, time_units},
    {List::diesel_step, diesel_steps},
    {List::output, outputs},
    {List::output_cv, output_cvs},
    {List::volume_cv, volume_cvs},
    {List::effect, effects},
    {List::drive_mode, drive_modes},
    {List::operating_mode, operating_modes},
    {List::input, inputs},
    {List::event, events},
    {List::event_state, event_states},
    {List::variable, variables},
    {List::change, changes},
    {List::target_kind, target_kinds},
    {List::destination, destinations},
    {List::setting_value, setting_values},
    {List::blinking, blinkings},
    {List::cv_range, cv_ranges},
    {List::value_source, value_sources},
    {List::bit, bits},
    {List::bit_value, bit_values},
};

std::span<const Run> runs(List list) {
    const auto* found = std::ranges::find(contents, list, &Content::list);
    return found == std::end(contents) ? std::span<const Run>() : found->runs;
}

} // namespace

QString Text::in(int language) const {
    if (language == Language::german || english == nullptr) return QString::fromUtf16(german);
    return QString::fromUtf16(language > Language::english && third != nullptr ? third : english);
}

int entry_count(List list) {
    int count = 0;
    for (const Run& run : runs(list)) count += run.entries();
    return count;
}

QString entry_text(List list, int index, int language) {
    if (index < 0) return {};
    for (const Run& run : runs(list)) {
        if (index < run.entries()) {
            QString before = run.before.in(language);
            if (run.count == 0) return before;
            return before + QString::number(run.first + index * run.step) + run.after.in(language);
        }
        index -= run.entries();
    }
    return {};
}

} // namespace scripts_catalogue
