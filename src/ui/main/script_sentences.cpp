#include "ui/main/script_sentences.h"

#include "app/mod_main.h"
#include "app/one_line.h"
#include "app/text_table.h"
#include "ui/parts/trouble_texts.h"

#include <QStringList>

namespace ui_main {
namespace {

bool in_german() { return app::globals.LanguageIndex == 0; }

QString joined(const std::vector<int>& cvs) {
    QStringList numbers;
    for (const int cv : cvs) numbers.append(QString::number(cv));
    return numbers.join(QStringLiteral(", "));
}

QString with_fixed(const QString& sentence, const scripts::Cv_Collisions& found) {
    return found.fixed.empty() ? sentence : sentence + u'\n' + sentence_fixed_cvs(found);
}

QString quoted(const QString& name) { return ui_parts::shortened(app::in_one_line(name)); }

void append_count(QStringList& sentences, const char16_t* form, int count) {
    if (count > 0) sentences.append(QString::fromUtf16(form).arg(count));
}

} // namespace

QString sentence_too_many_scripts() {
    const int most = scripts::cls_script_coll::max_scripts;
    return in_german() ? QStringLiteral("Maximal %1 Scripte möglich!").arg(most)
                       : QStringLiteral("Just %1 scripts possible").arg(most);
}

QString sentence_added(const QString& script) {
    return QStringLiteral("Script „%1“ hinzugefügt.").arg(quoted(script));
}

QString sentence_renamed(const QString& script) {
    return QStringLiteral("Script umbenannt: „%1“.").arg(quoted(script));
}

QString sentence_no_name() {
    return QStringLiteral("Nicht umbenannt: Ein Script braucht einen Namen.");
}

QString sentence_active(const QString& script, bool active, const store::CVRec& cv) {
    return (active ? QStringLiteral("Script „%1“ ist aktiv: CV %2 = %3 gespeichert.")
                   : QStringLiteral("Script „%1“ ist nicht mehr aktiv: CV %2 = %3 gespeichert."))
        .arg(quoted(script), QString::number(cv.CVNr), QString::number(cv.CVWert));
}

QString sentence_too_few_cvs(const scripts::Cv_Collisions& found) {
    return with_fixed(QStringLiteral("CV-Kollisionen gefunden! Zu wenig freie CVs zum Verschieben "
                                     "gefunden! CVs werden nicht verschoben."),
                      found);
}

QString sentence_fixed_cvs(const scripts::Cv_Collisions& found) {
    return QStringLiteral("„Set Lautstärke“ benutzt auch CV %1; diese werden nicht verschoben.")
        .arg(joined(found.fixed));
}

QString question_move_cvs(const scripts::Cv_Collisions& found) {
    return with_fixed(QStringLiteral("CV %1 verschieben?").arg(joined(found.cvs)), found);
}

QString question_delete(const QString& script) {
    return in_german() ? QStringLiteral("Script '%1' löschen?").arg(script)
                       : app::TextTable.text(199) + QStringLiteral(" '%1' ?").arg(script);
}

QString sentence_imported(const scripts::Script_File& file,
                          const store::Script_Import_Report& report, const QString& name) {
    QStringList said;
    said.append(QStringLiteral("Aus „%1“ importierte Scripte: %2.").arg(name).arg(report.scripts));
    if (!file.broken_off.isEmpty())
        said.append(QStringLiteral("Weggelassen, weil die Datei darin endet: „%1“.")
                        .arg(quoted(file.broken_off.front())));
    append_count(said, u"Angaben zu Zeilen und Parametern, die es nicht gibt: %1.",
                 file.places_skipped);
    append_count(said, u"Felder ohne Zahl (0 eingesetzt): %1.", file.numbers_lost);
    append_count(said, u"Texte, von denen nur der Anfang lesbar war: %1.", file.texts_cut_short);
    append_count(said, u"Zeilen mit Zahlen außerhalb von 0 bis 255, die kein Projekt aufnimmt: %1.",
                 report.values_wide);
    append_count(said, u"Gekürzte Texte: %1.", report.texts_cut);
    append_count(said, u"Zeilen, deren Wertquelle nur in Scriptdateien steht: %1.",
                 report.sources_lost);
    return said.join(u' ');
}

QString sentence_exported(const QString& script, const QString& name) {
    return QStringLiteral("Script „%1“ als „%2“ gespeichert.").arg(quoted(script), name);
}

} // namespace ui_main
