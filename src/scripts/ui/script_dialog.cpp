#include "scripts/ui/script_dialog.h"

#include "app/mod_fileverwaltung.h"
#include "app/mod_main.h"

namespace scripts_ui {

std::optional<QString> ask_script_file(desktop::Desktop& desktop, files::Disk& disk,
                                       const store::clsDBConn& database, const QString& proposed) {
    const QString& last = app::globals.LastScriptdir;
    for (;;) {
        auto path =
            desktop.ask_save_file({last.isEmpty() ? app::globals.DocDir : last, proposed,
                                   QStringLiteral(".vqs"), QStringLiteral("KELDA Script (*.vqs)")});
        if (!path) return path;
        const bool is_there = app::FileExists(disk, *path);
        if (is_there && database.is_its_file(*path)) {
            desktop.inform(QStringLiteral("Achtung"),
                           QStringLiteral("Unter diesem Namen liegt die geöffnete Datenbank; "
                                          "bitte einen anderen wählen."));
        } else if (!is_there ||
                   desktop.ask_yes_no(QStringLiteral("Achtung"),
                                      QStringLiteral("Script vorhanden. Überschreiben?"))) {
            app::globals.LastScriptdir = app::PathOf(*path);
            return path;
        }
    }
}

} // namespace scripts_ui
