#include "ui/parts/trouble_texts.h"

#include "app/mod_fileverwaltung.h"
#include "store/set_name.h"

namespace ui_parts {
namespace {

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

struct Blocked_Entry {
    store::Blocked why;
    const char16_t* german; ///< %1 whose journal stands in the way
};

constexpr Blocked_Entry blocks[] = {
    {store::Blocked::write_protected, u"Datei oder Ordner erlauben kein Schreiben."},
    {store::Blocked::jet3, u"Das Format von Access 97 wird nur gelesen."},
    {store::Blocked::damaged,
     u"Die Datei ist beschädigt; bitte eine Sicherung oder eine neue Kopie benutzen."},
    {store::Blocked::cut_off, u"Der Datei fehlt das Ende; bitte eine vollständige Kopie holen."},
    {store::Blocked::no_cvs, u"In der Datei fehlen die CVs; bitte eine Sicherung benutzen."},
    {store::Blocked::foreign_index, u"Eine Tabelle hat einen Index, den wir nicht pflegen können."},
    {store::Blocked::replaced, u"Die Datei wurde von außen ersetzt; bitte neu öffnen."},
    {store::Blocked::second_name,
     u"Die Datei hat noch einen Namen (harter Link). Bitte im Dateimanager kopieren und mit der "
     u"Kopie arbeiten."},
    {store::Blocked::journal_doubted,
     u"Neben der Datei liegt ein Änderungsprotokoll (-journal) von „%1“, das in Besitzer oder "
     u"Rechten nicht zu ihr passt. Es wurde nicht benutzt; geschrieben werden kann erst, wenn die "
     u"Rechte wieder gleich sind oder es von dort weg ist."},
    {store::Blocked::journal_barred,
     u"Das Änderungsprotokoll (-journal) neben der Datei gehört „%1“ und lässt sich weder "
     u"benutzen noch ersetzen."},
    {store::Blocked::journal_no_file,
     u"Am Platz des Änderungsprotokolls (-journal) liegt ein Ordner, ein Link oder eine Pipe."},
    {store::Blocked::journal_name,
     u"Der Dateiname ist zu lang, um daneben ein Änderungsprotokoll (-journal) zu führen."},
    {store::Blocked::journal_rights,
     u"Das Änderungsprotokoll kann nicht die Rechte bekommen, die alle Benutzer der Datei brauchen "
     u"(Gruppe)."},
    {store::Blocked::folder_hidden,
     u"Der Ordner lässt sich nicht öffnen; Änderungen wären dort nicht sicher."},
};

struct File_Entry {
    files::Failure kind;
    const char16_t* german;
};

constexpr char16_t denied[] = u"In diesem Ordner darf nicht geschrieben werden.";

constexpr File_Entry refusals[] = {
    {files::Failure::denied, denied},
    {files::Failure::read_only, denied},
    {files::Failure::disk_full, u"Der Datenträger ist voll."},
    {files::Failure::no_file, u"Unter diesem Namen liegt ein Ordner oder etwas anderes, das keine "
                              u"Datei ist; bitte einen anderen Namen wählen."},
    {files::Failure::name_too_long, u"Der Name ist zu lang; bitte einen kürzeren wählen."},
};

} // namespace

QString sentence(const store::Trouble& trouble) {
    for (const Trouble_Entry& entry : troubles) {
        if (entry.kind != trouble.kind) continue;
        const QString form = QString::fromUtf16(entry.german);
        return form.contains(u"%1") ? form.arg(shortened(app::FileOf(trouble.subject))) : form;
    }
    return trouble.detail;
}

QString sentence(const files::Error& error, const QString& database, const QString& template_path) {
    const QString subject = QString::fromStdString(error.subject);
    if (error.kind == files::Failure::not_found && subject == template_path)
        return QStringLiteral(
                   "Die leere Datenbank „%1“ fehlt; bitte das Programm neu installieren.")
            .arg(shortened(app::FileOf(template_path)));
    return QStringLiteral("„%1“ konnte nicht angelegt werden: %2")
        .arg(shortened(database), reason(error.kind));
}

QString reason(files::Failure failure) {
    for (const File_Entry& entry : refusals)
        if (entry.kind == failure) return QString::fromUtf16(entry.german);
    return QStringLiteral("Der Ordner ist nicht benutzbar.");
}

QString reason(store::Blocked blocked, const QString& journal_owner) {
    for (const Blocked_Entry& entry : blocks) {
        if (entry.why != blocked) continue;
        const QString form = QString::fromUtf16(entry.german);
        return form.contains(u"%1") ? form.arg(journal_owner) : form;
    }
    return {};
}

QString reason(const store::Opening& opening) {
    if (opening.blocked == store::Blocked::second_name && opening.recovered)
        return QStringLiteral(
            "Die Datei hat noch einen Namen (harter Link), und eine Änderung ist nicht zu Ende "
            "geschrieben. Bitte nicht kopieren, sondern den Namen löschen, neben dem kein "
            "Änderungsprotokoll (-journal) liegt, und die Datei neu öffnen.");
    return reason(opening.blocked, opening.journal_owner);
}

QString sentence_is_open_library() {
    return QStringLiteral(
        "Unter diesem Namen liegt die geöffnete Datenbank; bitte einen anderen wählen.");
}

QString shortened(const QString& name) {
    constexpr int longest = 60;
    return name.size() <= longest ? name : store::fitted_name(name, longest - 1) + u'…';
}

} // namespace ui_parts
