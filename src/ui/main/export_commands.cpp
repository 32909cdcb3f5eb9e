#include "ui/main/export_commands.h"

#include "app/mod_fileverwaltung.h"
#include "app/mod_main.h"
#include "export/export_project.h"
#include "scripts/cls_Script_Sets.h"
#include "store/clsDBConn.h"
#include "ui/main/file_reasons.h"
#include "ui/main/menus.h"
#include "ui/main/messages.h"
#include "ui/main/project_texts.h"
#include "ui/main/texts.h"
#include "ui/parts/busy.h"
#include "ui/parts/trouble_texts.h"

namespace ui_main {
namespace {

const QString project_extension = u".vqx"_qs;

/// The library's name with the other extension; a name without one gets it.
QString project_name(const QString& database_file) {
    const qsizetype point = database_file.lastIndexOf(u'.');
    return database_file.left(point < 0 ? database_file.size() : point) + project_extension;
}

} // namespace

Export_Commands::Export_Commands(const Surroundings& at) : at_(at) {
    const auto run = [this](vqx_export::File_Type type) {
        return at_.messages.command([this, type] { export_project(type); });
    };
    at.menus.bring({
        {"mnu_export_oem", run(vqx_export::File_Type::oem), Family::qr},
        {"mnu_export_user", run(vqx_export::File_Type::user), Family::qr},
    });
}

void Export_Commands::export_project(vqx_export::File_Type type) {
    if (!at_.messages.expect_library()) return;
    if (const store::Blocked why = at_.database.opening().blocked; is_incomplete(why)) {
        at_.messages.say(text(Text::project_refused) + u' ' + ui_parts::reason(why, {}));
        return;
    }
    if (app::globals.ScriptWindowOpen && !at_.gate.pass()) return; // it may hold what belongs in
    const QString proposed = project_name(app::globals.Database_File);
    const auto path = at_.desktop.ask_save_file(
        {app::globals.Database_Path, proposed, project_extension, text(Text::project_filter)});
    if (!path) return;
    if (at_.database.is_its_file(*path)) {
        at_.desktop.inform(text(Text::attention), ui_parts::sentence_is_open_library());
        return;
    }
    if (app::FileExists(at_.disk, *path) &&
        !at_.desktop.ask_yes_no(text(Text::attention), text(Text::ask_overwrite_file))) {
        return;
    }
    write_project(*path, type);
}

// What could not be read in full is not exported: a project without some of its sets would look
// like a whole one.
void Export_Commands::write_project(const QString& path, vqx_export::File_Type type) {
    const ui_parts::Busy busy;
    scripts::cls_Script_Sets script_sets;
    at_.database.Fill_Sets_in_SetObj(store::SetsObj());
    at_.database.Fill_Scripts_in_ScriptsObj(script_sets);
    if (at_.messages.say_trouble()) return;
    vqx_export::Report report = vqx_export::export_project(store::SetsObj(), script_sets, type,
                                                           at_.disk, path.toStdString());
    if (report.failure) report.failure->kind = true_reason(at_.disk, path, report.failure->kind);
    at_.messages.say_and_log(sentence(app::FileOf(path), report),
                             report.failure ? QString::fromUtf8(report.failure->what()) : path);
    if (report.refusals.empty()) return;
    at_.desktop.inform(text(Text::information),
                       sentences(report.refusals, [this](std::int32_t ScriptID) {
                           return at_.database.script_name(ScriptID);
                       }));
}

} // namespace ui_main
