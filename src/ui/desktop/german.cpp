#include "ui/desktop/german.h"

#include <QCoreApplication>
#include <QHash>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace ui_desktop {
namespace {

struct Text {
    const char* english;
    const char16_t* german;
};

// What a user of this program can meet, in the words of Qt's own translation.
constexpr Text texts[] = {
    {"OK", u"OK"},
    {"&OK", u"&OK"},
    {"Cancel", u"Abbrechen"},
    {"&Cancel", u"&Abbrechen"},
    {"&Yes", u"&Ja"},
    {"&No", u"&Nein"},
    {"Open", u"Öffnen"},
    {"&Open", u"&Öffnen"},
    {"Save", u"Speichern"},
    {"&Save", u"S&peichern"},
    {"Save As", u"Speichern unter"},
    {"Close", u"Schließen"},
    {"&Close", u"Schl&ießen"},
    {"&Choose", u"&Auswählen"},
    {"Look in:", u"Suchen in:"},
    {"File &name:", u"Datei&name:"},
    {"Files of type:", u"Dateien des Typs:"},
    {"Back", u"Zurück"},
    {"Go back", u"Zurück"},
    {"Forward", u"Vorwärts"},
    {"Go forward", u"Vor"},
    {"Parent Directory", u"Übergeordnetes Verzeichnis"},
    {"Go to the parent directory", u"Gehe zum übergeordneten Verzeichnis"},
    {"Create New Folder", u"Neuen Ordner erstellen"},
    {"Create a New Folder", u"Neuen Ordner erstellen"},
    {"New Folder", u"Neuer Ordner"},
    {"&New Folder", u"&Neuer Ordner"},
    {"List View", u"Liste"},
    {"Change to list view mode", u"Wechsle zu Listenansicht"},
    {"Detail View", u"Details"},
    {"Change to detail view mode", u"Wechsle zu Detailansicht"},
    {"Sidebar", u"Seitenleiste"},
    {"List of places and bookmarks", u"Liste der Orte und Lesezeichen"},
    {"Files", u"Dateien"},
    {"Directories", u"Verzeichnisse"},
    {"All Files (*)", u"Alle Dateien (*)"},
    {"Show &hidden files", u"&Versteckte Dateien anzeigen"},
    {"&Rename", u"&Umbenennen"},
    {"&Delete", u"&Löschen"},
    {"Remove", u"Löschen"},
    {"Are you sure you want to delete '%1'?", u"Sind Sie sicher, dass Sie '%1' löschen möchten?"},
    {"%1\nFile not found.\nPlease verify the correct file name was given.",
     u"%1\nDie Datei konnte nicht gefunden werden.\n"
     u"Stellen Sie sicher, dass der Dateiname richtig ist."},
    {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     u"%1\nDas Verzeichnis konnte nicht gefunden werden.\n"
     u"Stellen Sie sicher, dass der Verzeichnisname richtig ist."},
    {"Name", u"Name"},
    {"Size", u"Größe"},
    {"Type", u"Typ"},
    {"Kind", u"Art"},
    {"Date Modified", u"Änderungsdatum"},
    {"Computer", u"Computer"},
    {"&Undo", u"&Rückgängig"},
    {"&Redo", u"Wieder&herstellen"},
    {"Cu&t", u"&Ausschneiden"},
    {"&Copy", u"&Kopieren"},
    {"&Paste", u"Einf&ügen"},
    {"Delete", u"Löschen"},
    {"Select All", u"Alles auswählen"},
};

class Own_German final : public QTranslator {
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* /*context*/, const char* source, const char* /*remark*/,
                      int /*number*/) const override {
        static const QHash<QByteArray, QString> table = [] {
            QHash<QByteArray, QString> made;
            for (const Text& text : texts) made[text.english] = QString::fromUtf16(text.german);
            return made;
        }();
        return table.value(source);
    }
};

} // namespace

void speak_german() {
    auto* application = QCoreApplication::instance();
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    // The translator installed last is asked first: ours answers what Qt's leaves open.
    QCoreApplication::installTranslator(new Own_German(application));
    auto* qt_texts = new QTranslator(application);
    if (qt_texts->load(QStringLiteral("qtbase_de"),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(qt_texts);
    }
}

} // namespace ui_desktop
