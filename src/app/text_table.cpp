#include "app/text_table.h"

#include "app/mod_main.h"

namespace app {
namespace {

struct Row {
    int number;
    std::array<const char16_t*, Text_Table::languages> texts;
};

constexpr Row rows[] = {
    {12, {u"Samples", u"Samples", u"Échantillons"}},
    {18, {u"Lautstärke", u"Volume", u"Volume"}},
    {90, {u"Fahrsound", u"Drive Sounds", u"Son en marche"}},
    {103, {u"aus", u"off", u"Off"}},
    {173, {u"Ein", u"On", u"ON"}},
    {175, {u"Ja", u"Yes", u"Oui"}},
    {176, {u"Nein", u"No", u"Non"}},
    {182, {u"Taste", u"Key", u"Touche"}},
    {197, {u"Hinzufügen", u"Add", u"Ajouter"}},
    {198, {u"Änderungen Speichern?", u"Save changes?", u"Enregistrer les modifications ?"}},
    {199, {u"Script löschen?", u"Delete script", u"Supprimer le script"}},
    {225, {u"0 (Aus/Links)", u"0 (Off/Left)", u"0 (off/gauche)"}},
    {226, {u"1 (Ein/Rechts)", u"1 (On/Right)", u"1 (on/droite)"}},
    {227, {u"2 (Servo Mitte)", u"2 (Servo center)", u"2 (servo milieu)"}},
    {242, {u"Richtung", u"Direction", u"Diréction"}},
    {248, {u"Aktiv", u"Active", u"Actif"}},
    {269, {u"Exportieren", u"Export to file", u"Exporter vers un fichier"}},
    {270, {u"Importieren", u"Import from file", u"Importer d'un fichier"}},
    {280, {u"Vw", u"Fw", u"Av."}},
    {281, {u"Rw", u"Bw", u"Arr."}},
    {305,
     {u"Änderungen im Script speichern?", u"Save the changes to the script?",
      u"Enregistrer les modifications du script ?"}},
    {314, {u"Funktionen", u"Functions", u"Fonctions"}},
    {398, {u"Öffnen mit Doppelklick", u"Open with double-click", u"Ouvrir par double-clic"}},
    {399,
     {u"Löschen mit Entf-Taste", u"Delete script with Del key", u"Supprimer avec la touche Suppr"}},
    {400,
     {u"Umbenennen mit rechter Maustaste auf Name", u"Rename by right mouse click on name",
      u"Renommer par clic droit sur le nom"}},
    {402, {u"Name", u"Name", u"Nom"}},
    {403, {u"Tasten", u"Keys", u"Touches"}},
    {404, {u"Ausgänge", u"Outputs", u"Sorties"}},
    {522,
     {u"Bitte zuerst Script-Fenster schließen!", u"Please close script first!",
      u"Veuillez d'abord fermer le script !"}},
    {523, {u"Wenn Taste aus", u"If key from", u"Si touche de"}},
    {524, {u"Test", u"Test", u"Test"}},
    {527, {u"Parameter", u"Parameter", u"Paramètre"}},
    {531, {u"State löschen?", u"Delete state?", u"Supprimer l'état ?"}},
    {532, {u"VOR", u"FWD", u"avant"}},
    {533, {u"RÜCK", u"BWD", u"arrière"}},
    {534,
     {u"Interne Decoder-Werte (teilweise auch manuell änderbar)",
      u"Internal decoder values (partly changeable)",
      u"Valeurs internes du décodeur (partiellement modifiables)"}},
    {535, {u"Eingänge", u"Inputs", u"Entrées"}},
    {536, {u"Timer-Wert", u"Timer value", u"Timer valeur"}},
};

std::size_t place(int number, std::size_t language) {
    return language * Text_Table::texts_per_language + static_cast<std::size_t>(number);
}

} // namespace

void Text_Table::fill() {
    for (const auto& row : rows) {
        for (std::size_t language = 0; language < languages; ++language) {
            texts_[place(row.number, language)] = QString::fromUtf16(row.texts[language]);
        }
    }
}

QString Text_Table::text(int number) const { return text(number, globals.LanguageIndex); }

QString Text_Table::text(int number, int language) const {
    if (number < 0 || number >= texts_per_language || language < 0 || language >= languages)
        return {};
    return texts_[place(number, static_cast<std::size_t>(language))];
}

} // namespace app
