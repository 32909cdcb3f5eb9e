#include "scripts/line_columns.h"

#include "scripts/cls_script.h"

#include <algorithm>

namespace scripts {
namespace {

namespace catalogue = scripts_catalogue;
using catalogue::List;

constexpr int most_samples = 256; ///< a byte

catalogue::Parameters parameters_of(const cls_Scriptstate& line) {
    catalogue::Parameters parameters{};
    for (int par = 0; par < cls_Scriptstate::par_count; ++par)
        parameters[static_cast<std::size_t>(par)] = line.GetPar(par);
    return parameters;
}

List list_of_line(const cls_Scriptstate& line, int column) {
    const catalogue::Command* known = catalogue::command(line.GetCommand());
    if (known == nullptr || column < 0 || column >= catalogue::most_columns) return List::none;
    return catalogue::list_of(*known, column, parameters_of(line));
}

int entry_of_line(const cls_Scriptstate& line, int column, List list) {
    switch (list) {
    case List::none:
        return 0;
    case List::volume:
        return line.volume();
    case List::loop:
        return line.loop_mode();
    case List::sound_end:
        return line.end_mode();
    case List::key:
        return line.key();
    default:
        return line.GetPar(column);
    }
}

/// The number at the end of a text, "Event 3"; -1 for none.
int last_number(const QString& text) {
    qsizetype begin = text.size();
    while (begin > 0 && text[begin - 1].isDigit()) --begin;
    bool is_number = false;
    const int number = text.sliced(begin).toInt(&is_number);
    return is_number ? number : -1;
}

/// Whether a number names the entry that it counts, from 0; of outputs and inputs the captions say so.
bool counts(List list) {
    constexpr List all[] = {List::number, List::pwm, List::state, List::output, List::input};
    return std::ranges::find(all, list) != std::end(all);
}

} // namespace

Line_Column column_of(const cls_Scriptstate& line, int column, int language) {
    const List list = list_of_line(line, column);
    if (list == List::none) return {};
    const catalogue::Column& described = catalogue::command(line.GetCommand())->columns[column];
    return {described.caption.in(language) + described.addition.in(language), list,
            entry_of_line(line, column, list)};
}

QString line_text(const cls_Scriptstate& line, int language) {
    const QString name = catalogue::CommandName(line.GetCommand(), language);
    if (name.isEmpty()) return QStringLiteral("Befehl %1").arg(line.GetCommand());
    QStringList entries;
    for (int column = 0; column < catalogue::most_columns; ++column) {
        const Line_Column shown = column_of(line, column, language);
        if (shown.list == List::none) continue;
        const QString text = catalogue::entry_text(shown.list, shown.entry, language);
        entries.append(text.isEmpty() ? QString::number(shown.entry) : text);
    }
    return entries.isEmpty() ? name : name + QStringLiteral(": ") + entries.join(u", ");
}

int offered_entries(List list) {
    return list == List::sample ? most_samples : catalogue::entry_count(list);
}

void choose_entry(cls_Scriptstate& line, int column, int entry) {
    const List list = list_of_line(line, column);
    if (entry < 0 || entry >= offered_entries(list)) return;
    switch (list) {
    case List::volume:
        return line.choose_volume(entry);
    case List::loop:
        return line.choose_loop_mode(entry);
    case List::sound_end:
        return line.choose_end_mode(entry);
    case List::key:
        return line.choose_key(entry);
    default:
        line.SetPar(column, entry);
    }
}

void choose_command(cls_Scriptstate& line, std::int32_t code) {
    const cls_Scriptstate before = line;
    line.SetCommand(code);
    for (int par = 0; par < cls_Scriptstate::par_count; ++par) line.SetPar(par, 0);
    if (catalogue::command(before.GetCommand()) == nullptr) return;
    // From left to right: what a column says may decide what the next can say.
    for (int column = 0; column < catalogue::most_columns; ++column) {
        const Line_Column was = column_of(before, column, 0);
        const Line_Column is = column_of(line, column, 0);
        if (was.list != List::none && is.list != List::none) choose_entry(line, column, was.entry);
    }
}

QString EntryText(List list, int entry, cls_script& script, int state,
                  const Text_Context& context) {
    script.CurrentState = state;
    script.ShowCVValues = false;
    return list_entry_text(list, entry, script, context);
}

std::optional<int> entry_typed(List list, const QString& typed, int language) {
    const QString wanted = typed.trimmed();
    if (wanted.isEmpty()) return std::nullopt;
    const int count = offered_entries(list);
    bool is_number = false;
    const int number = wanted.toInt(&is_number);
    if (is_number && counts(list))
        return number >= 0 && number < count ? std::optional(number) : std::nullopt;
    std::optional<int> begins, ends;
    for (int entry = 0; entry < count; ++entry) {
        const QString text = catalogue::entry_text(list, entry, language);
        if (text.compare(wanted, Qt::CaseInsensitive) == 0) return entry;
        if (!begins && text.startsWith(wanted, Qt::CaseInsensitive)) begins = entry;
        if (!ends && is_number && last_number(text) == number) ends = entry;
    }
    return begins ? begins : ends;
}

std::optional<std::int32_t> command_typed(const QString& typed, int language) {
    if (typed.isEmpty()) return std::nullopt;
    for (const catalogue::Command& command : catalogue::commands())
        if (command.name.in(language).contains(typed, Qt::CaseInsensitive)) return command.code;
    return std::nullopt;
}

} // namespace scripts
