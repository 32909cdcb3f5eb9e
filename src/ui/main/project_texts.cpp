#include "ui/main/project_texts.h"

#include "app/one_line.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

#include <QStringList>
#include <algorithm>

namespace ui_main {
namespace {

using vqx_export::Reason;
using vqx_export::Refusal;

struct Reason_Text {
    Reason reason;
    const char16_t* german; ///< %1 value, %2 parameter
};

constexpr Reason_Text reason_texts[] = {
    {Reason::set_number_negative, u"die Set-Nummer ist %1, erlaubt ist 0 oder mehr"},
    {Reason::reset_cv_negative, u"die Reset-CV ist %1, erlaubt ist 0 oder mehr"},
    {Reason::set_number_above_255, u"die Set-Nummer ist %1, mit Scripten erlaubt ist bis 255"},
    {Reason::too_many_scripts, u"das Set hat %1 Scripte, erlaubt sind 16"},
    {Reason::too_many_lines, u"das Script hat %1 Zeilen, erlaubt sind 256"},
    {Reason::command, u"der Befehl ist %1, erlaubt ist 0 bis 255"},
    {Reason::parameter, u"der Parameter %2 ist %1, erlaubt ist 0 bis 255"},
    {Reason::too_large, u"die Bibliothek ist zu groß für eine Projektdatei"},
};

constexpr std::size_t most_lines = 12;

QString words(const Refusal& refusal) {
    for (const Reason_Text& entry : reason_texts) {
        if (entry.reason != refusal.reason) continue;
        return QString::fromUtf16(entry.german)
            .replace(u"%1"_qs, QString::number(refusal.value))
            .replace(u"%2"_qs, QString::number(refusal.parameter));
    }
    return {};
}

QString joined(const std::vector<QString>& names) {
    QStringList quoted;
    for (const QString& name : names) quoted.append(u"„%1“"_qs.arg(name));
    return quoted.join(u", "_qs);
}

std::int64_t count(const vqx_export::Left_Out_CVs& cvs) {
    return cvs.out_of_range + cvs.covered + cvs.repeated;
}

QString sentence(const Refusal& refusal, const Script_Names& name_of) {
    QString place;
    if (refusal.SetID != 0) {
        place = u"Set %1 „"_qs.arg(refusal.set_number) + app::in_one_line(refusal.set_name) + u'“';
    }
    if (refusal.script > 0) {
        const QString name = name_of(refusal.ScriptID);
        place += u", Script %1"_qs.arg(refusal.script);
        if (!name.isEmpty()) place += u" „"_qs + app::in_one_line(name) + u'“';
    }
    if (refusal.line >= 0) place += u", Zeile %1"_qs.arg(refusal.line);
    return place.isEmpty() ? words(refusal) + u'.' : place + u": "_qs + words(refusal) + u'.';
}

} // namespace

QString sentences(const std::vector<Refusal>& refusals, const Script_Names& names) {
    QStringList lines{text(Text::project_refused)};
    const std::size_t shown = std::min(refusals.size(), most_lines);
    for (std::size_t i = 0; i < shown; ++i) lines.append(sentence(refusals[i], names));
    if (shown < refusals.size()) {
        lines.append(u"... und weitere: %1."_qs.arg(refusals.size() - shown));
    }
    return lines.join(u'\n');
}

QString sentence(const QString& file, const vqx_export::Report& report) {
    if (report.failure) {
        return text(Text::project_failed)
            .arg(ui_parts::shortened(file), ui_parts::reason(report.failure->kind));
    }
    if (!report.written) return text(Text::project_refused);
    QStringList parts{text(Text::project_written)
                          .arg(ui_parts::shortened(file), QString::number(report.sets),
                               QString::number(report.sets_with_scripts))};
    if (const auto cvs = count(report.left_out_cvs); cvs > 0) {
        parts.append(text(Text::project_left_out_cvs).arg(cvs));
    }
    if (report.left_out_scripts > 0) {
        parts.append(text(Text::project_left_out_scripts).arg(report.left_out_scripts));
    }
    append_count(parts, Text::project_left_out_states, report.left_out_states);
    for (const vqx_export::Equal_Keys& equal : report.equal_keys) {
        const bool cvs = equal.map == vqx_export::Equal_Keys::Map::cvs;
        parts.append(text(cvs ? Text::project_equal_keys : Text::project_equal_scripts)
                         .arg(joined(equal.set_names)));
    }
    return parts.join(u' ');
}

} // namespace ui_main
