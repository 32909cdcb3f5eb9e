#include "ui/main/texts.h"

#include "ui/parts/trouble_texts.h"

#include <QHash>

namespace ui_main {
namespace {

struct Entry {
    Text which;
    const char16_t* german;
};

constexpr Entry table[] = {
    {Text::frame_sets, u"Sets"},
    {Text::frame_cvs, u"CVs"},
    {Text::frame_scripts, u"Scripte"},
    {Text::frame_reset, u"Reset-CV"},
    {Text::frame_decoder, u"Decoder"},
    {Text::cv8, u"CV8"},
    {Text::cv265, u"CV265"},
    {Text::qr, u"QR"},
    {Text::qd, u"QD"},
    {Text::cv_number, u"CV-Nr"},
    {Text::cv_value, u"Wert"},
    {Text::cv_page_hi, u"CV31:"},
    {Text::cv_page_lo, u"CV32:"},
    {Text::cv_count, u"Anzahl CVs im Set:"},
    {Text::list_of_sets, u"CV-Sets"},
    {Text::list_of_cvs, u"CVs des Sets"},
    {Text::title_open, u"CV-Sets Datenbank: %1"},
    {Text::title_damaged, u" – beschädigt, schreibgeschützt"},
    {Text::title_incomplete, u" – unvollständig, schreibgeschützt"},
    {Text::title_closed, u"CV-Sets (keine Datenbank geöffnet)"},
    {Text::attention, u"Achtung"},
    {Text::information, u"Information"},
    {Text::database_filter, u"Datenbank (*.mdb)"},
    {Text::project_filter, u"VQX Datei (*.vqx)"},
    {Text::ask_overwrite_database, u"Datenbank vorhanden! Überschreiben?"},
    {Text::ask_overwrite_file, u"Datei vorhanden! Überschreiben?"},
    {Text::ask_delete_set, u"CV-Set löschen?"},
    {Text::new_set, u"Neues CV-Set"},
    {Text::rename_set, u"CV-Set umbenennen"},
    {Text::new_set_name, u"Neuer Set-Name:"},
    {Text::set_number, u"Set-Nummer:"},
    {Text::ok, u"OK"},
    {Text::cancel, u"Cancel"},
    {Text::name_cut, u"Der Name wurde auf %1 Zeichen gekürzt."},
    {Text::name_full, u"Der Name hat höchstens %1 Zeichen."},
    {Text::number_too_high, u"Die Set-Nummer geht bis %1."},

    {Text::opened, u"„%1“ geöffnet, CV-Sets: %2."},
    {Text::opened_without_sets,
     u"„%1“ geöffnet; die Datei enthält keine CV-Sets (andere Art von Datenbank)."},
    {Text::opened_sets_lost, u"„%1“ geöffnet; die CV-Sets fehlen."},
    {Text::opened_unreadable, u"„%1“ geöffnet; die CV-Sets sind nicht lesbar."},
    {Text::opens_no_file,
     u"„%1“ ist keine Datei, sondern ein Ordner oder etwas anderes; bitte eine "
     u"Datenbank (.mdb) öffnen."},
    {Text::opens_too_long, u"„%1“: So lang kann ein Dateiname nicht sein; bitte eine Datenbank "
                           u"(.mdb) öffnen."},
    {Text::lost_end, u"Es fehlen mindestens %1 von %2 KB."},
    {Text::lost_of, u"Davon betroffen: %1."},
    {Text::lost_sets, u"CV-Sets"},
    {Text::lost_cvs, u"CVs"},
    {Text::lost_scripts, u"Scripte"},
    {Text::recovered, u"Eine unterbrochene Änderung wurde zurückgenommen."},
    {Text::journal_set_aside, u"Ein fremdes Änderungsprotokoll liegt jetzt unter „%1“."},
    {Text::journal_spoiled, u"Eine unterbrochene Änderung ließ sich nicht zurücknehmen, weil ihr "
                            u"Protokoll beschädigt ist."},
    {Text::spoiled_set_aside, u"Es liegt jetzt unter „%1“."},
    {Text::ldb_beside, u"Vielleicht hat auch ein anderes Programm die Datei offen (.ldb)."},
    {Text::sets_in_no_view, u"Sets mit anderer Reset-CV als 8 und 265, nicht gezeigt: %1."},
    {Text::sets_completed, u"Nur in der Anzeige ergänzte Nummern oder Reset-CVs: %1."},
    {Text::script_states_left_out, u"Script-Zeilen außerhalb 0 bis 255, nicht geladen: %1."},
    {Text::write_protected, u"schreibgeschützt"},

    {Text::no_set_selected, u"Es ist kein CV-Set gewählt."},
    {Text::set_added, u"CV-Set „%1“ hinzugefügt."},
    {Text::set_renamed, u"CV-Set „%1“ umbenannt."},
    {Text::set_deleted, u"CV-Set „%1“ gelöscht."},
    {Text::cv_stored, u"CV %1 = %2 gespeichert."},
    {Text::cv_number_beyond, u"Nichts gespeichert: CV-Nummern gehen von 1 bis 1024."},
    {Text::cv_value_beyond, u"Nichts gespeichert: CV-Werte gehen von 0 bis 255."},
    {Text::number_beyond, u"Nichts gespeichert: Zahlen über 32767 gibt es hier nicht."},
    {Text::page_beyond, u"Nichts gespeichert: CV31 und CV32 gehen von 0 bis 255."},
    {Text::cvs_deleted, u"Gelöschte CVs: %1."},
    {Text::no_cv_selected, u"Es ist keine CV gewählt."},
    {Text::not_a_database_name, u"„%1“ ist keine Datenbank (.mdb)."},

    {Text::nothing_selected_to_copy, u"Es ist keine CV gewählt; nichts kopiert."},
    {Text::nothing_copied, u"Es wurde nichts kopiert."},
    {Text::maybe_more, u"Vielleicht nicht alle: %1"},
    {Text::set_gone, u"CV-Set „%1“ ist nicht mehr vorhanden."},
    {Text::cvs_gone, u"Inzwischen anderswo gelöschte CVs: %1."},
    {Text::set_chosen_now, u"Gewählt ist jetzt „%1“."},
    {Text::cvs_copied, u"Kopierte CVs: %1."},
    {Text::set_copied, u"CV-Set „%1“ kopiert."},
    {Text::listing_copied, u"CV-Set „%1“ als Text in die Zwischenablage gelegt."},
    {Text::clipboard_refused, u"Die Zwischenablage hat den Text nicht angenommen."},
    {Text::clipboard_empty, u"In der Zwischenablage ist kein Text."},
    {Text::nothing_to_paste, u"In der Zwischenablage ist nichts, was hier eingefügt werden kann."},
    {Text::cvs_pasted, u"Eingefügte CVs: %1."},
    {Text::sets_pasted, u"Eingefügte CV-Sets: %1, CVs: %2."},
    {Text::lines_skipped, u"Unlesbare Zeilen: %1, deshalb ausgelassene CVs oder Sets: %2."},
    {Text::cvs_without_set, u"Ausgelassene CVs, weil kein CV-Set gewählt ist: %1."},
    {Text::names_cut, u"Auf die Spaltenbreite gekürzte Namen: %1."},

    {Text::step_undone, u"Rückgängig: %1."},
    {Text::step_redone, u"Wiederholt: %1."},
    {Text::stored_first,
     u"Das offene Script wurde zuerst gespeichert, sonst nichts geändert; „Rückgängig“ "
     u"nimmt nun dieses Speichern zurück."},
    {Text::nothing_to_undo, u"Es gibt nichts rückgängig zu machen."},
    {Text::nothing_to_redo, u"Es gibt nichts zu wiederholen."},
    {Text::step_changed_elsewhere, u"„%1“ lässt sich nicht mehr umkehren: Ein anderes Programm hat "
                                   u"diese Daten inzwischen geändert."},

    {Text::backup_failed, u"Es konnte keine Sicherung angelegt werden: %1"},
    {Text::backups_title, u"Sicherungen von „%1“"},
    {Text::backups_hint, u"Die gewählte Sicherung tritt an die Stelle der Datenbank. Der jetzige "
                         u"Stand wird vorher selbst gesichert."},
    {Text::backups_none, u"Von „%1“ gibt es keine Sicherungen."},
    {Text::backup_date, u"Stand vom"},
    {Text::backup_sets, u"CV-Sets"},
    {Text::backup_unreadable, u"nicht lesbar"},
    {Text::backup_cut_off, u"%1 (unvollständig)"},
    {Text::backup_damaged, u"%1 (beschädigt)"},
    {Text::backup_restore, u"Wiederherstellen"},
    {Text::backup_cancel, u"Abbrechen"},
    {Text::backup_restored, u"Die Sicherung vom %1 ist wiederhergestellt."},
    {Text::backup_was_cut_off, u"Sie ist unvollständig."},
    {Text::backup_was_damaged, u"Sie ist beschädigt."},
    {Text::backup_not_restored, u"Die Sicherung wurde nicht wiederhergestellt: %1"},
    {Text::log_lost,
     u"In „%1“ kann nicht geschrieben werden; Einstellungen und Protokoll gehen verloren."},
    {Text::settings_lost, u"Einstellungen gehen verloren"},
    {Text::settings_not_saved, u"Die Einstellungen konnten nicht gespeichert werden."},

    {Text::project_written, u"„%1“ gespeichert: CV-Sets %2, davon mit Scripten %3."},
    {Text::project_left_out_cvs, u"Nicht darstellbare CVs, weggelassen: %1."},
    {Text::project_left_out_scripts, u"Scripte ohne Set, weggelassen: %1."},
    {Text::project_left_out_states, u"Script-Zeilen außerhalb 0 bis 255, weggelassen: %1."},
    {Text::project_equal_keys, u"Gleiche Reset-CV und Nummer: %1."},
    {Text::project_equal_scripts, u"Gleiche Nummer bei Sets mit Scripten: %1."},
    {Text::project_failed, u"„%1“ konnte nicht gespeichert werden: %2"},
    {Text::project_refused, u"Es wurde keine Datei geschrieben."},

    {Text::hint_no_database, u"Keine Datenbank geöffnet: Menü „Datei“, „Datenbank öffnen“ oder "
                             u"„Datenbank erstellen“"},
    {Text::hint_sets_unreadable, u"CV-Sets nicht lesbar: Sicherung oder neue Kopie benutzen"},
    {Text::hint_cvs_unreadable, u"CVs nicht lesbar: Sicherung oder neue Kopie benutzen"},
    {Text::hint_scripts_unreadable, u"Scripte nicht lesbar: Sicherung oder neue Kopie benutzen"},
    {Text::hint_no_sets,
     u"Noch keine CV-Sets: Menü „CV Set“, „Hinzufügen“, oder eine Datenbank öffnen"},
    {Text::hint_no_sets_here, u"Keine CV-Sets in dieser Datei: Menü „Datei“, „Datenbank öffnen“ "
                              u"oder „Datenbank erstellen“"},
    {Text::hint_other_view, u"Noch keine CV-Sets mit dieser Reset-CV: Menü „CV Set“, "
                            u"„Hinzufügen“, oder unten die andere Reset-CV wählen"},
    {Text::hint_other_view_only,
     u"Keine CV-Sets mit dieser Reset-CV: unten die andere Reset-CV wählen"},
    {Text::hint_other_family, u"Keine CV-Sets mit Reset-CV 8; die anderen zeigt der Decoder „QR“"},
    {Text::hint_cvs, u"Hier stehen die CVs des gewählten CV-Sets"},
    {Text::hint_choose_set, u"Kein CV-Set gewählt: links eines anklicken"},
    {Text::hint_no_cvs, u"Noch keine CVs: unten die CV-Nr eingeben, Enter, den Wert, Enter"},
    {Text::hint_no_cvs_here, u"Keine CVs in diesem CV-Set"},
    {Text::hint_scripts, u"Hier stehen die Scripte des gewählten CV-Sets"},
    {Text::hint_no_scripts, u"Keine Scripte in diesem CV-Set"},
    {Text::tip_reset_cv, u"Jedes CV-Set gehört zu einer der beiden Reset-CVs, über die ein Decoder "
                         u"es lädt; die Liste zeigt die Sets der gewählten."},
    {Text::tip_qr, u"QR: Decoder, für die alle CV-Sets mit ihren Scripten als Projektdatei (.vqx) "
                   u"gespeichert werden."},
    {Text::tip_qd, u"QD: Decoder, in die ein CV-Set unmittelbar geladen wird."},
    {Text::tip_cv31, u"CV31 und CV32 wählen die Seite der CVs 257 bis 512; CV31 ist das höhere "
                     u"Byte, 0 bis 255."},
    {Text::tip_cv32, u"CV31 und CV32 wählen die Seite der CVs 257 bis 512; CV32 ist das niedrigere "
                     u"Byte, 0 bis 255."},
};

struct Step_Words {
    store::Undo_Kind kind;
    const char16_t* one;  ///< %1 name or number
    const char16_t* many; ///< %1 how many
};

constexpr Step_Words steps[] = {
    {store::Undo_Kind::sets_added, u"CV-Set „%1“ hinzugefügt", u"%1 CV-Sets hinzugefügt"},
    {store::Undo_Kind::sets_deleted, u"CV-Set „%1“ gelöscht", u"%1 CV-Sets gelöscht"},
    {store::Undo_Kind::sets_renamed, u"CV-Set „%1“ umbenannt", u"%1 CV-Sets umbenannt"},
    {store::Undo_Kind::cvs_stored, u"CV %1 gespeichert", u"%1 CVs gespeichert"},
    {store::Undo_Kind::cvs_deleted, u"CV %1 gelöscht", u"%1 CVs gelöscht"},
    {store::Undo_Kind::scripts_added, u"Script „%1“ hinzugefügt", u"%1 Scripte hinzugefügt"},
    {store::Undo_Kind::scripts_deleted, u"Script „%1“ gelöscht", u"%1 Scripte gelöscht"},
    {store::Undo_Kind::scripts_renamed, u"Script „%1“ umbenannt", u"%1 Scripte umbenannt"},
    {store::Undo_Kind::scripts_saved, u"Script-Zeilen gespeichert",
     u"Zeilen von %1 Scripten gespeichert"},
    {store::Undo_Kind::several, u"eine Änderung", u"%1 Änderungen"},
};

} // namespace

QString text(Text which) {
    static const QHash<int, QString> texts = [] {
        QHash<int, QString> made;
        for (const Entry& entry : table) {
            made[static_cast<int>(entry.which)] = QString::fromUtf16(entry.german);
        }
        return made;
    }();
    return texts.value(static_cast<int>(which));
}

void append_count(QStringList& sentences, Text form, int count) {
    if (count > 0) sentences.append(text(form).arg(count));
}

QString sentence(const store::Undo_Name& step) {
    QString said;
    for (const Step_Words& words : steps) {
        if (words.kind != step.kind) continue;
        said = QString::fromUtf16(step.count == 1 ? words.one : words.many);
        if (said.contains(u"%1"))
            said.replace(u"%1"_qs, step.count == 1 ? ui_parts::shortened(step.subject)
                                                   : QString::number(step.count));
    }
    if (step.cvs == 1) said += u" (mit 1 CV)"_qs;
    if (step.cvs > 1) said += u" (mit %1 CVs)"_qs.arg(step.cvs);
    return said;
}

} // namespace ui_main
