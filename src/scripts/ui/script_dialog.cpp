#include "scripts/ui/script_dialog.h"

#include "app/mod_fileverwaltung.h"
#include "app/mod_main.h"
#include "platform/files/replace.h"
#include "scripts/script_file.h"
#include "ui/parts/trouble_texts.h"

#include <span>

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
            desktop.inform(QStringLiteral("Achtung"), ui_parts::sentence_is_open_library());
        } else if (!is_there ||
                   desktop.ask_yes_no(QStringLiteral("Achtung"),
                                      QStringLiteral("Script vorhanden. Überschreiben?"))) {
            app::globals.LastScriptdir = app::PathOf(*path);
            return path;
        }
    }
}

QString write_script_file(files::Disk& disk, const scripts::cls_script& in_file_form,
                          const QString& path) {
    int replaced = 0;
    const QByteArray bytes = scripts::script_file_of(in_file_form, replaced);
    files::replace_file(disk, path.toStdString(),
                        std::as_bytes(std::span(bytes.begin(), bytes.end())));
    if (replaced == 0) return {};
    return QStringLiteral(" Zeichen, die eine Scriptdatei nicht kennt („?“): %1.").arg(replaced);
}

} // namespace scripts_ui
