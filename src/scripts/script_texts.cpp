#include "scripts/script_texts.h"

#include "app/mod_main.h"
#include "app/text_table.h"
#include "scripts/catalogue/commands.h"

#include <QLocale>
#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace scripts {
namespace {

namespace catalogue = scripts_catalogue;
using catalogue::List;

constexpr int start_sound = 1;
constexpr int query_key = 4;
constexpr int query_parameter = 5;
constexpr int thyristor_sample = 8;

constexpr int first_volume_cv = 10; ///< entry of the list of volumes
constexpr int first_key_cv = 30;    ///< entry of the list of keys
constexpr int key_entries = 72;     ///< with two CVs more than the catalogue offers

/// As they stand within the text of a line; the lists of the editor have names of their own.
constexpr catalogue::Text comparisons[] = {{u"ist gleich", u"is equal to"},
                                           {u"ist ungleich", u"is not equal to"},
                                           {u"ist größer als", u"is greater than"},
                                           {u"ist kleiner als", u"is less than"}};
constexpr int comparison_count = static_cast<int>(std::size(comparisons));

QString table_text(int number, const Text_Context& context) {
    return app::TextTable.text(number, context.language);
}

QString text_of(List list, int entry, int language = catalogue::german) {
    return catalogue::entry_text(list, entry, language);
}

// Script CVs in texts

/// What stands behind the number of a script CV that nothing else uses.
struct Shown_Value {
    bool with_brackets;
    QString value;
};

QString cv_text(int cv, const cls_script& script, const Text_Context& context,
                const Shown_Value& shown) {
    QString number = u"CV#%1"_s.arg(cv);
    const QString usage = CVUsageText(cv, false, context);
    if (!usage.isEmpty()) return number + u" ("_s + usage + u')';
    if (!script.ShowCVValues) return number;
    return number + (shown.with_brackets ? u" ("_s + shown.value + u')' : u" = "_s + shown.value);
}

QString volume_text(int entry, const cls_script& script, const Text_Context& context) {
    if (entry < first_volume_cv) return catalogue::VolumeText(entry);
    const int cv = entry - first_volume_cv + catalogue::first_script_cv;
    const QString value = QString::number(context.cv_value(cv));
    return cv_text(cv, script, context, {.with_brackets = false, .value = value});
}

QString key_text(int entry, bool prefixed, const cls_script& script, const Text_Context& context) {
    if (entry < first_key_cv)
        return (prefixed ? u"Wenn "_s : QString()) + catalogue::KeyName(entry);
    const int cv = entry - first_key_cv + catalogue::first_script_cv;
    const QString key = catalogue::KeyName(context.cv_value(cv));
    QString text = cv_text(cv, script, context, {.with_brackets = true, .value = key});
    if (!prefixed) return text;
    const bool used_elsewhere = !CVUsageText(cv, false, context).isEmpty();
    return table_text(523, context) + (used_elsewhere ? u" = "_s : u" "_s) + text;
}

// Uses of a script CV

/// What a use of a CV is called, and what is said of its value.
enum class Detail { none, key, time, output, line_output, input };
struct Use {
    std::int32_t command;
    int reference;
    const char16_t* text;
    Detail detail = Detail::none;
};
constexpr Use uses[] = {
    {1, 0, u"-Sound-Lautstärke"},
    {4, 0, u"-Funktionstaste ", Detail::key},
    {5, 0, u"-Parameterwert"},
    {7, 0, u"-Lok-Geschwindigkeit"},
    {12, 0, u"-Timer-Zeit = ", Detail::time},
    {15, 0, u"-Ausgang ", Detail::output},
    {15, 1, u"-Ausgang ", Detail::line_output},
    {21, 0, u"-Reed-Eingang IN", Detail::input},
    {22, 0, u"-Eventwert"},
    {23, 0, u"-Variablenwert"},
    {29, 0, u"-Ziellautstärke"},
    {29, 1, u"-Fade-Zeit"},
};

QString detail_of(const Use& use, const cls_Scriptstate& line, int cv,
                  const Text_Context& context) {
    const auto value = [&] { return context.cv_value(cv); };
    switch (use.detail) {
    case Detail::none:
        return {};
    case Detail::key:
        return catalogue::KeyName(value());
    case Detail::time:
        return TimerText(value(), line.GetPar(2), context.language);
    case Detail::output:
        return app::FA_Name(value()) + u" schalten"_s;
    case Detail::line_output:
        return app::FA_Name(line.GetPar(0)) + u" PWM (0-31)"_s;
    case Detail::input:
        return QString::number(value() + 1);
    }
    return {};
}

std::optional<QString> use_in(const cls_Scriptstate& line, int cv, const Text_Context& context) {
    for (const Use& use : uses)
        if (use.command == line.GetCommand() && line.used_cv(use.reference) == cv)
            return QString::fromUtf16(use.text) + detail_of(use, line, cv, context);
    return std::nullopt;
}

} // namespace

QString LoopText(int loop) { return text_of(List::loop, loop); }

QString EndText(int end) { return text_of(List::sound_end, end); }

QString ConditionText(int condition) { return condition == 0 ? u"ist Aus"_s : u"ist Ein"_s; }

QString JumpText(int state) { return u"dann gehe zu State %1"_s.arg(state); }

QString YesNoText(int value, int language) {
    return app::TextTable.text(value != 0 ? 175 : 176, language);
}

QString CVSourceText(bool from_cv, int value) {
    if (!from_cv) return u"in CV#-"_s;
    return u"in CV#%1"_s.arg(std::int64_t{value} + catalogue::first_script_cv);
}

QString TimerText(int value, int unit, int language) {
    struct Unit {
        int tenths; ///< of what stands behind the number
        const char16_t* name;
    };
    static constexpr Unit units[] = {{1, u"s"},  {10, u"ms"}, {100, u"ms"}, {1, u"s"},
                                     {10, u"s"}, {100, u"s"}, {1000, u"s"}};
    if (unit < 0 || unit >= static_cast<int>(std::size(units))) return {};
    const std::int64_t tenths = std::int64_t{value} * units[unit].tenths;
    QString number = QString::number(tenths / 10);
    if (const auto rest = std::abs(tenths % 10); rest != 0)
        number += (language == catalogue::german ? u',' : u'.') + QString::number(rest);
    return number + QString::fromUtf16(units[unit].name);
}

QString CVUsageText(int cv, bool include_edited_line, const Text_Context& context) {
    int position = 0;
    for (const auto& stored : context.scripts) {
        ++position;
        cls_script& script =
            stored->EditActive && context.edited != nullptr ? *context.edited : *stored;
        for (int state = 0; state < script.StateCount; ++state) {
            const auto use = use_in(std::as_const(script).GetState(state), cv, context);
            if (!use) continue;
            if (!include_edited_line && script.EditActive && state == script.CurrentState) {
                script.ShowCVValues = true;
                return {};
            }
            return u"Script%1"_s.arg(position) + *use;
        }
    }
    return {};
}

QString list_entry_text(List list, int entry, const cls_script& script,
                        const Text_Context& context) {
    const auto of_cv = [&](int cv) {
        const QString value = QString::number(context.cv_value(cv));
        return cv_text(cv, script, context, {.with_brackets = false, .value = value});
    };
    if (entry < 0) return {};
    switch (list) {
    case List::volume:
        return volume_text(entry, script, context);
    case List::key:
        return key_text(entry, false, script, context);
    case List::script_cv:
        return of_cv(catalogue::first_script_cv + entry);
    case List::timer_cv:
        if (entry > 0) return of_cv(catalogue::first_script_cv - 1 + entry);
        [[fallthrough]];
    default:
        return text_of(list, entry, context.language);
    }
}

QString GetCommandName(const cls_script& script, int state, int language) {
    return catalogue::CommandName(script.GetState(state).GetCommand(), language);
}

QString GetColumnText(cls_script& script, int state, int column, const Text_Context& context) {
    script.CurrentState = state;
    script.ShowCVValues = false;
    const cls_Scriptstate& line = std::as_const(script).GetState(state);
    const auto text = [&]() -> std::array<QString, 5> {
        switch (line.GetCommand()) {
        case start_sound:
            return {column == 0 ? u"Sample"_s : QString(),
                    column == 1 ? u"Vol = "_s + volume_text(line.volume(), script, context)
                                : QString(),
                    LoopText(line.loop_mode()),
                    EndText(line.end_mode()),
                    {}};
        case query_key:
            return {column == 0 ? key_text(line.key(), true, script, context) : QString(),
                    ConditionText(line.GetPar(1)),
                    JumpText(line.GetPar(2)),
                    {},
                    {}};
        case query_parameter: {
            const QString name = catalogue::QueryParameterName(line.GetPar(0), context.language);
            return {name.isEmpty() ? u"unknown"_s : name,
                    comparisons[line.GetPar(1) & (comparison_count - 1)].in(context.language),
                    QString::number(line.GetPar(2)),
                    CVSourceText(line.GetPar(1) >= comparison_count, line.GetPar(2)),
                    JumpText(line.GetPar(3))};
        }
        default:
            return {};
        }
    }();
    const bool exists = column >= 0 && column < static_cast<int>(text.size());
    return exists ? text[static_cast<std::size_t>(column)] : QString();
}

namespace {

/// Entries 0 to `count` of a list, as `text` says them.
template <class Say>
QStringList entries(int count, Say text) {
    QStringList all;
    for (int entry = 0; entry < count; ++entry) all.append(text(entry));
    return all;
}

Column_Choices sound_choices(const cls_script& script, const cls_Scriptstate& line, int column,
                             const Text_Context& context) {
    switch (column) {
    case 0: {
        Column_Choices made{table_text(12, context), {}, -1, true};
        for (std::size_t i = 0; i < context.samples.size(); ++i) {
            made.choices.append(context.samples[i].name);
            if (context.samples[i].number == line.GetPar(0)) made.current = static_cast<int>(i);
        }
        return made;
    }
    case 1:
        return {table_text(18, context),
                entries(catalogue::entry_count(List::volume),
                        [&](int entry) { return volume_text(entry, script, context); }),
                line.volume()};
    case 2:
        return {u"Loop-Anzahl"_s, entries(catalogue::entry_count(List::loop), LoopText),
                line.loop_mode()};
    case 3:
        return {u"Sound Ende"_s, entries(catalogue::entry_count(List::sound_end), EndText),
                line.end_mode()};
    default:
        return {};
    }
}

Column_Choices key_choices(const cls_script& script, const cls_Scriptstate& line, int column,
                           const Text_Context& context) {
    switch (column) {
    case 0:
        return {table_text(182, context),
                entries(key_entries,
                        [&](int entry) { return key_text(entry, false, script, context); }),
                line.key()};
    case 1:
        return {table_text(524, context), {ConditionText(0), ConditionText(1)}, line.GetPar(1)};
    case 2:
        return {u"State"_s, {QString::number(line.GetPar(2))}, line.GetPar(2), false, true};
    default:
        return {};
    }
}

} // namespace

Column_Choices GetColumnChoices(const cls_script& script, int state, int column,
                                const Text_Context& context) {
    const cls_Scriptstate& line = script.GetState(state);
    switch (line.GetCommand()) {
    case start_sound:
        return sound_choices(script, line, column, context);
    case query_key:
        return key_choices(script, line, column, context);
    case query_parameter:
        if (column != 0) return {};
        return {table_text(527, context),
                entries(catalogue::entry_count(List::query),
                        [&](int entry) {
                            return catalogue::QueryParameterName(entry, context.language);
                        }),
                line.GetPar(0)};
    default:
        return {};
    }
}

void SetColumnValue(cls_script& script, int state, int column, int chosen,
                    const Text_Context& context) {
    cls_Scriptstate& line = script.GetState(state);
    const std::int32_t command = line.GetCommand();
    if (command == start_sound || command == thyristor_sample) {
        const bool listed = chosen >= 0 && chosen < static_cast<int>(context.samples.size());
        if (column == 0 && listed)
            line.SetPar(0, context.samples[static_cast<std::size_t>(chosen)].number);
        if (column == 1) line.choose_volume(chosen);
        if (column == 2) line.choose_loop_mode(chosen);
        if (column == 3) line.choose_end_mode(chosen);
        return;
    }
    if (command == query_key && column == 0)
        line.choose_key(chosen);
    else
        line.SetPar(column, chosen);
}

} // namespace scripts
