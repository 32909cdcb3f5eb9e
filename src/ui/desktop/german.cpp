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

// What a user of this program can meet.
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
    {"Parent Directory", u"Übergeordneter Ordner"},
    {"Go to the parent directory", u"Gehe zum übergeordneten Ordner"},
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
    {"Directories", u"Ordner"},
    {"All Files (*)", u"Alle Dateien (*)"},
    {"Directory:", u"Ordner:"},
    {"Find Directory", u"Ordner suchen"},
    {"Recent Places", u"Zuletzt besucht"},
    {"Show ", u"Anzeigen "},
    {"My Computer", u"Mein Computer"},
    {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     u"%1\nDer Ordner konnte nicht gefunden werden.\n"
     u"Stellen Sie sicher, dass der Ordnername richtig ist."},
    {"'%1' is write protected.\nDo you want to delete it anyway?",
     u"'%1' ist schreibgeschützt.\nMöchten Sie die Datei trotzdem löschen?"},
    {"Could not delete directory.", u"Der Ordner konnte nicht gelöscht werden."},
    {"File", u"Datei"},
    {"%1 File", u"%1-Datei"},
    {"Folder", u"Ordner"},
    {"File Folder", u"Ordner"},
    {"Drive", u"Laufwerk"},
    {"Shortcut", u"Symbolischer Link"},
    {"Alias", u"Alias"},
    {"Unknown", u"Unbekannt"},
    {"Show &hidden files", u"&Versteckte Dateien anzeigen"},
    {"&Rename", u"&Umbenennen"},
    {"&Delete", u"&Löschen"},
    {"Remove", u"Löschen"},
    {"Are you sure you want to delete '%1'?", u"Sind Sie sicher, dass Sie '%1' löschen möchten?"},
    {"%1\nFile not found.\nPlease verify the correct file name was given.",
     u"%1\nDie Datei konnte nicht gefunden werden.\n"
     u"Stellen Sie sicher, dass der Dateiname richtig ist."},
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
    {"&Select All", u"&Alles auswählen"},
    {"Copy &Link Location", u"&Link-Adresse kopieren"},
    {"Insert Unicode control character", u"Unicode-Kontrollzeichen einfügen"},
    // bars beside lists
    {"Scroll here", u"Hierher scrollen"},
    {"Top", u"Anfang"},
    {"Bottom", u"Ende"},
    {"Left edge", u"Linker Rand"},
    {"Right edge", u"Rechter Rand"},
    {"Page up", u"Eine Seite nach oben"},
    {"Page down", u"Eine Seite nach unten"},
    {"Page left", u"Eine Seite nach links"},
    {"Page right", u"Eine Seite nach rechts"},
    {"Scroll up", u"Nach oben scrollen"},
    {"Scroll down", u"Nach unten scrollen"},
    {"Scroll left", u"Nach links scrollen"},
    {"Scroll right", u"Nach rechts scrollen"},
    // keys
    {"Ctrl", u"Strg"},
    {"Shift", u"Umschalt"},
    {"Alt", u"Alt"},
    {"Meta", u"Meta"},
    {"Num", u"Zahlenblock"},
    {"+", u"+"},
    {"F%1", u"F%1"},
    {"Del", u"Entf"},
    {"Ins", u"Einfg"},
    {"Home", u"Pos1"},
    {"End", u"Ende"},
    {"PgUp", u"Bild aufwärts"},
    {"PgDown", u"Bild abwärts"},
    {"Backspace", u"Rücktaste"},
    {"Space", u"Leertaste"},
    {"Return", u"Return"},
    {"Enter", u"Enter"},
    {"Esc", u"Esc"},
    {"Tab", u"Tab"},
    {"Backtab", u"Rück-Tab"},
    {"Left", u"Links"},
    {"Right", u"Rechts"},
    {"Up", u"Hoch"},
    {"Down", u"Herunter"},
    // what screen readers are told
    {"Open the combo box selection popup", u"Öffnet das Auswahlfenster"},
    {"Press", u"Drücken"},
    {"Triggers the action", u"Aktion auslösen"},
    {"Toggle", u"Umschalten"},
    {"Toggles the state", u"Schaltet den Zustand um"},
    {"ShowMenu", u"Menü anzeigen"},
    {"Shows the menu", u"Zeigt das Menü an"},
    {"SetFocus", u"Fokus setzen"},
    {"Sets the focus", u"Setzt den Fokus"},
    {"Increase", u"Erhöhen"},
    {"Increase the value", u"Wert erhöhen"},
    {"Decrease", u"Senken"},
    {"Decrease the value", u"Wert absenken"},
    {"Scroll Left", u"Nach links scrollen"},
    {"Scrolls to the left", u"Scrollt nach links"},
    {"Scroll Right", u"Nach rechts scrollen"},
    {"Scrolls to the right", u"Scrollt nach rechts"},
    {"Scroll Up", u"Nach oben scrollen"},
    {"Scrolls up", u"Scrollt nach oben"},
    {"Scroll Down", u"Nach unten scrollen"},
    {"Scrolls down", u"Scrollt nach unten"},
    {"Previous Page", u"Vorige Seite"},
    {"Goes back a page", u"Geht zur vorigen Seite"},
    {"Next Page", u"Nächste Seite"},
    {"Goes to the next page", u"Geht zur nächsten Seite"},
    {"application", u"Anwendung"},
    {"check box", u"Kontrollkästchen"},
    {"column header", u"Spaltentitel"},
    {"combo box", u"Auswahlfeld"},
    {"dialog", u"Dialog"},
    {"filler", u"Füller"},
    {"frame", u"Rahmen"},
    {"label", u"Beschriftung"},
    {"list", u"Liste"},
    {"list item", u"Listenelement"},
    {"menu bar", u"Menüleiste"},
    {"menu item", u"Menüeintrag"},
    {"panel", u"Feld"},
    {"popup menu", u"Menü"},
    {"push button", u"Schaltfläche"},
    {"radio button", u"Optionsfeld"},
    {"row header", u"Zeilentitel"},
    {"scroll bar", u"Bildlaufleiste"},
    {"separator", u"Trennlinie"},
    {"splitter", u"Fensterteiler"},
    {"status bar", u"Statuszeile"},
    {"text", u"Text"},
    {"title bar", u"Titelleiste"},
    {"tool bar", u"Werkzeugleiste"},
    {"tool tip", u"Kurzhinweis"},
    {"tree", u"Baum"},
    {"tree item", u"Baumelement"},
    {"window", u"Fenster"},
    {"unknown", u"unbekannt"},
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

void speak_german() { speak_german(QLibraryInfo::path(QLibraryInfo::TranslationsPath)); }

void speak_german(const QString& translations) {
    auto* application = QCoreApplication::instance();
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    // The translator installed last is asked first: ours answers what Qt's leaves open.
    QCoreApplication::installTranslator(new Own_German(application));
    auto* qt_texts = new QTranslator(application);
    if (qt_texts->load(QStringLiteral("qtbase_de"), translations)) {
        QCoreApplication::installTranslator(qt_texts);
    }
}

} // namespace ui_desktop
