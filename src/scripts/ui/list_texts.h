#pragma once

#include "scripts/catalogue/text.h"

namespace scripts_ui {

/// Texts of the program's table that the script list uses.
namespace list_table {
constexpr int add = 197;
constexpr int active = 248;
constexpr int export_to_file = 269;
constexpr int import_from_file = 270;
constexpr int how_to_open = 398;
constexpr int how_to_delete = 399;
constexpr int how_to_rename = 400;
constexpr int name = 402;
constexpr int keys = 403;
constexpr int outputs = 404;
} // namespace list_table

/// The list's own texts.
namespace list_own {
using scripts_catalogue::Text;
constexpr Text spoken{u"Scripte des Sets", u"Scripts of the set", u"Scripts du set"};
constexpr Text cvs{u"CVs"};
constexpr Text with_keys{
    u"Mit der Tastatur: Eingabetaste öffnet, F2 benennt um, Leertaste schaltet „Aktiv“ um",
    u"By keyboard: Return opens, F2 renames, the space bar switches “Active”",
    u"Au clavier : Entrée ouvre, F2 renomme, la barre d’espace change « Actif »"};
} // namespace list_own

} // namespace scripts_ui
