#include "ui/main/texts.h"

#include "app/mod_fileverwaltung.h"
#include "store/set_name.h"

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
    {Text::list_of_scripts, u"Scripte des Sets"},
    {Text::script_name, u"Name"},
    {Text::script_lines, u"Zeilen"},
    {Text::script_add, u"Hinzufügen"},
    {Text::script_import, u"Importieren"},
    {Text::script_export, u"Exportieren"},
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
    {Text::blocked_write_protected, u"Datei oder Ordner erlauben kein Schreiben."},
    {Text::blocked_jet3, u"Das Format von Access 97 wird nur gelesen."},
    {Text::blocked_damaged,
     u"Die Datei ist beschädigt; bitte eine Sicherung oder eine neue Kopie benutzen."},
    {Text::blocked_cut_off, u"Der Datei fehlt das Ende; bitte eine vollständige Kopie holen."},
    {Text::blocked_no_cvs, u"In der Datei fehlen die CVs; bitte eine Sicherung benutzen."},
    {Text::blocked_foreign_index, u"Eine Tabelle hat einen Index, den wir nicht pflegen können."},
    {Text::blocked_replaced, u"Die Datei wurde von außen ersetzt; bitte neu öffnen."},
    {Text::blocked_second_name,
     u"Die Datei hat noch einen Namen (harter Link). Bitte im Dateimanager kopieren und mit der "
     u"Kopie arbeiten."},
    {Text::blocked_journal_doubted,
     u"Neben der Datei liegt ein Änderungsprotokoll (-journal) von „%1“, der sie nicht schreiben "
     u"darf. Es wurde nicht benutzt; erst wenn es von dort weg ist, kann geschrieben werden."},
    {Text::blocked_journal_barred,
     u"Das Änderungsprotokoll (-journal) neben der Datei gehört „%1“ und lässt sich weder "
     u"benutzen noch ersetzen."},
    {Text::blocked_journal_no_file,
     u"Am Platz des Änderungsprotokolls (-journal) liegt ein Ordner, ein Link oder eine Pipe."},
    {Text::blocked_journal_name,
     u"Der Dateiname ist zu lang, um daneben ein Änderungsprotokoll (-journal) zu führen."},
    {Text::blocked_journal_rights,
     u"Das Änderungsprotokoll kann nicht die Rechte bekommen, die alle Benutzer der Datei brauchen "
     u"(Gruppe)."},
    {Text::blocked_folder_hidden,
     u"Der Ordner lässt sich nicht öffnen; Änderungen wären dort nicht sicher."},

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

    {Text::template_missing,
     u"Die leere Datenbank „%1“ fehlt; bitte das Programm neu installieren."},
    {Text::database_not_made, u"„%1“ konnte nicht angelegt werden: %2"},
    {Text::reason_denied, u"In diesem Ordner darf nicht geschrieben werden."},
    {Text::reason_full, u"Der Datenträger ist voll."},
    {Text::reason_no_file,
     u"Unter diesem Namen liegt ein Ordner oder etwas anderes, das keine Datei "
     u"ist; bitte einen anderen Namen wählen."},
    {Text::reason_name_too_long, u"Der Name ist zu lang; bitte einen kürzeren wählen."},
    {Text::reason_other, u"Der Ordner ist nicht benutzbar."},

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

struct Trouble_Entry {
    store::Failure kind;
    const char16_t* german; ///< %1 file or other subject
};

constexpr Trouble_Entry troubles[] = {
    {store::Failure::not_open, u"Es ist keine Datenbank geöffnet."},
    {store::Failure::no_set, u"Es ist kein CV-Set gewählt."},
    {store::Failure::not_found, u"„%1“ ist nicht (mehr) vorhanden."},
    {store::Failure::denied, u"„%1“ darf nicht gelesen werden: Die Rechte fehlen."},
    {store::Failure::not_a_database, u"„%1“ ist keine Datenbank."},
    {store::Failure::no_library, u"„%1“ enthält keine CV-Sets (andere Art von Datenbank)."},
    {store::Failure::cut_off, u"Der Datei „%1“ fehlt das Ende mit den CV-Sets; "
                              u"bitte eine vollständige Kopie holen."},
    {store::Failure::no_cvs, u"In „%1“ fehlen die CVs; es wurde nichts geändert."},
    {store::Failure::unsupported,
     u"„%1“ kann nicht geöffnet werden: Kennwort, Verschlüsselung oder anderes Format."},
    {store::Failure::damaged, u"„%1“ ist beschädigt und bleibt unverändert; "
                              u"bitte eine Sicherung oder eine neue Kopie benutzen."},
    {store::Failure::read_only, u"„%1“ ist schreibgeschützt; es wurde nichts geändert."},
    {store::Failure::locked_elsewhere,
     u"„%1“ wird gerade von einem anderen Programm benutzt; bitte noch einmal versuchen."},
    {store::Failure::replaced, u"„%1“ wurde von außen ersetzt und ist geschlossen; "
                               u"bitte neu öffnen."},
    {store::Failure::disk_full, u"Der Datenträger von „%1“ ist voll; es wurde nichts geändert."},
    {store::Failure::device, u"Der Datenträger von „%1“ meldet einen Fehler; "
                             u"es wurde nichts geändert."},
    {store::Failure::gone, u"In „%1“ ist dieser Eintrag nicht mehr vorhanden; "
                           u"ein anderes Programm hat ihn wohl gelöscht."},
    {store::Failure::changed, u"In „%1“ wurde dieser Eintrag inzwischen anderswo geändert; "
                              u"es wurde nichts gespeichert."},
    {store::Failure::refused, u"Die Datenbank nimmt diese Angaben nicht an („%1“)."},
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

QString sentence(const store::Trouble& trouble) {
    for (const Trouble_Entry& entry : troubles) {
        if (entry.kind != trouble.kind) continue;
        const QString form = QString::fromUtf16(entry.german);
        return form.contains(u"%1") ? form.arg(shortened(app::FileOf(trouble.subject))) : form;
    }
    return trouble.detail;
}

QString sentence(const store::Undo_Name& step) {
    QString said;
    for (const Step_Words& words : steps) {
        if (words.kind != step.kind) continue;
        said = QString::fromUtf16(step.count == 1 ? words.one : words.many);
        if (said.contains(u"%1"))
            said.replace(u"%1"_qs,
                         step.count == 1 ? shortened(step.subject) : QString::number(step.count));
    }
    if (step.cvs == 1) said += u" (mit 1 CV)"_qs;
    if (step.cvs > 1) said += u" (mit %1 CVs)"_qs.arg(step.cvs);
    return said;
}

QString shortened(const QString& name) {
    constexpr int longest = 60;
    return name.size() <= longest ? name : store::fitted_name(name, longest - 1) + u'…';
}

QString reason(files::Failure failure) {
    switch (failure) {
    case files::Failure::denied:
    case files::Failure::read_only:
        return text(Text::reason_denied);
    case files::Failure::disk_full:
        return text(Text::reason_full);
    case files::Failure::no_file:
        return text(Text::reason_no_file);
    case files::Failure::name_too_long:
        return text(Text::reason_name_too_long);
    default:
        return text(Text::reason_other);
    }
}

QString reason(store::Blocked blocked, const QString& journal_owner) {
    switch (blocked) {
    case store::Blocked::no:
        return {};
    case store::Blocked::write_protected:
        return text(Text::blocked_write_protected);
    case store::Blocked::jet3:
        return text(Text::blocked_jet3);
    case store::Blocked::damaged:
        return text(Text::blocked_damaged);
    case store::Blocked::cut_off:
        return text(Text::blocked_cut_off);
    case store::Blocked::no_cvs:
        return text(Text::blocked_no_cvs);
    case store::Blocked::foreign_index:
        return text(Text::blocked_foreign_index);
    case store::Blocked::replaced:
        return text(Text::blocked_replaced);
    case store::Blocked::second_name:
        return text(Text::blocked_second_name);
    case store::Blocked::journal_doubted:
        return text(Text::blocked_journal_doubted).arg(journal_owner);
    case store::Blocked::journal_barred:
        return text(Text::blocked_journal_barred).arg(journal_owner);
    case store::Blocked::journal_no_file:
        return text(Text::blocked_journal_no_file);
    case store::Blocked::journal_name:
        return text(Text::blocked_journal_name);
    case store::Blocked::journal_rights:
        return text(Text::blocked_journal_rights);
    case store::Blocked::folder_hidden:
        return text(Text::blocked_folder_hidden);
    }
    return {};
}

QString sentence(const files::Error& error, const QString& database, const QString& template_path) {
    const QString subject = QString::fromStdString(error.subject);
    if (error.kind == files::Failure::not_found && subject == template_path) {
        return text(Text::template_missing).arg(shortened(app::FileOf(template_path)));
    }
    return text(Text::database_not_made).arg(shortened(database), reason(error.kind));
}

} // namespace ui_main
