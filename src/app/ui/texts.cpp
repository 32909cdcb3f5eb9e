#include "app/ui/texts.h"

#include <array>

namespace app_ui {

namespace {

constexpr std::array<const char16_t*, 8> german = {
    u"Einstellungen",
    u"Serieller Port:",
    u"Suchen",
    u"Datenbank-Ordner:",
    u"In diesem Ordner sucht das Programm beim nächsten Start die Datenbank „CV-Sets.mdb“, wenn "
    u"die "
    u"zuletzt benutzte fehlt.",
    u"Wählen...",
    u"OK",
    u"Abbrechen"};

} // namespace

QString text(Text which) { return QString::fromUtf16(german[static_cast<std::size_t>(which)]); }

} // namespace app_ui
