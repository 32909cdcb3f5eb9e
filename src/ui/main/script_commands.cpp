#include "ui/main/script_commands.h"

#include "app/mod_fileverwaltung.h"
#include "app/mod_main.h"
#include "app/one_line.h"
#include "app/text_table.h"
#include "platform/files/replace.h"
#include "scripts/ui/UC_Scripte.h"
#include "scripts/ui/script_dialog.h"
#include "store/active_scripts.h"
#include "store/script_import.h"
#include "ui/main/cv_panel.h"
#include "ui/main/file_reasons.h"
#include "ui/main/library_view.h"
#include "ui/main/main_form.h"
#include "ui/main/menus.h"
#include "ui/main/script_sentences.h"
#include "ui/main/texts.h"
#include "ui/parts/busy.h"
#include "ui/parts/trouble_texts.h"

#include <QDir>
#include <algorithm>
#include <utility>

namespace ui_main {
namespace {

using scripts::AktScripts;
using scripts::cls_script_coll;
using scripts_ui::UC_Scripte;
using ui_parts::shortened;

const QString script_extension = QStringLiteral(".vqs");
constexpr std::size_t longest_file = 16 << 20; ///< of a file that can be one of scripts

/// As a proposed file name; another one where no file could have it.
QString file_name(const QString& script) {
    constexpr qsizetype longest_name = 100;
    const bool possible = !script.trimmed().isEmpty() && script.size() <= longest_name &&
                          !script.contains(u'/') && !script.contains(u'\\') &&
                          !script.startsWith(u'.') && script == app::in_one_line(script);
    return possible ? script : QStringLiteral("Filename");
}

} // namespace

Script_Commands::Script_Commands(const Surroundings& at, Cv_Panel& cv_panel)
    : at_(at), cv_panel_(cv_panel) {
    const UC_Scripte* list = at.form.UC_Scripte1;
    connect(&at.menus, &Menus::opening, list, &UC_Scripte::end_edit);
    connect(list, &UC_Scripte::add_wanted, this, at.messages.command([this] { add_script(); }));
    connect(list, &UC_Scripte::import_wanted, this,
            at.messages.command([this] { ImportScripts(); }));
    const auto with_position = [this](void (Script_Commands::*work)(int)) {
        return [this, work](int position) {
            at_.messages.command([this, work, position] { (this->*work)(position); })();
        };
    };
    connect(list, &UC_Scripte::export_wanted, this, with_position(&Script_Commands::ExportScript));
    connect(list, &UC_Scripte::delete_wanted, this, with_position(&Script_Commands::DeleteScript));
    connect(list, &UC_Scripte::rename_wanted, this,
            [this](std::int32_t ScriptID, const QString& name) {
                const auto one = at_.messages.one_command();
                rename_script(ScriptID, name);
            });
    connect(list, &UC_Scripte::name_full, this, [this] {
        at_.messages.say(text(Text::name_full).arg(at_.database.script_name_width()));
    });
    connect(list, &UC_Scripte::active_wanted, this, [this](int position, bool active) {
        const auto one = at_.messages.one_command();
        make_active(position, active);
    });
}

// In the list

void Script_Commands::say_refusal() {
    const auto one = at_.messages.one_command();
    const auto& why = at_.database.last_trouble();
    const bool stale =
        why && (why->kind == store::Failure::gone || why->kind == store::Failure::changed);
    if (at_.view.leave_gone_set()) return;
    at_.messages.say_trouble();
    if (stale) at_.database.DB_Load_Scripts(); // what the list shows is what is there
    at_.view.Redraw_Script_List();
}

void Script_Commands::add_script() {
    if (at_.view.selected_set() == 0) {
        at_.messages.say_no_set();
        return;
    }
    const auto script = AktScripts().add_named_script();
    if (script == nullptr) {
        at_.desktop.inform(text(Text::information), sentence_too_many_scripts());
        return;
    }
    const int position = AktScripts().Count();
    if (!at_.database.DB_Add_Script(position)) {
        AktScripts().Remove(position);
        say_refusal();
        return;
    }
    at_.view.Redraw_Script_List();
    at_.form.UC_Scripte1->choose(position);
    at_.view.say_outcome(sentence_added(script->ScriptName));
}

// By its key: what stood at a position when the edit began may stand elsewhere now.
void Script_Commands::rename_script(std::int32_t ScriptID, const QString& name) {
    const auto scripts = AktScripts().NewEnum();
    const auto found = std::ranges::find(scripts, ScriptID, &scripts::cls_script::ScriptID);
    if (found == scripts.end()) return;
    if (name.trimmed().isEmpty()) {
        at_.messages.say(sentence_no_name());
        return;
    }
    const int position = static_cast<int>(found - scripts.begin()) + 1;
    const auto script = AktScripts().Item(position); // stays when the list is loaded anew
    const QString before = std::exchange(script->ScriptName, name);
    if (!at_.database.DB_Rename_Script(position)) {
        script->ScriptName = before;
        say_refusal();
        return;
    }
    at_.view.Redraw_Script_List();
    at_.form.UC_Scripte1->choose(position);
    at_.view.say_outcome(sentence_renamed(name));
}

void Script_Commands::make_active(int position, bool active) {
    if (!AktScripts().exists(position)) return;
    const store::CVRec cv = store::store_script_active(at_.database, position, active);
    if (cv.CVID == 0) {
        say_refusal();
        return;
    }
    Entry_List& list = *at_.form.lst_CVs;
    const std::vector<std::int32_t> chosen = list.selected_keys();
    const std::int32_t current = list.key(list.current_row());
    at_.view.Show_CVs(0);
    list.select_keys(chosen, current);
    if (list.selected_key() == cv.CVID) cv_panel_.load_selected(); // else Enter would put it back
    at_.view.say_outcome(sentence_active(AktScripts().Item(position)->ScriptName, active, cv));
}

// From a file

// Every question is asked before anything is changed.
void Script_Commands::ImportScripts() {
    if (at_.view.selected_set() == 0) {
        at_.messages.say_no_set();
        return;
    }
    if (!at_.database.writable()) {
        at_.messages.say(QStringLiteral("Nichts importiert: ") +
                         ui_parts::reason(at_.database.opening()));
        return;
    }
    const auto path = at_.desktop.ask_open_file({app::globals.LastScriptdir,
                                                 {},
                                                 script_extension,
                                                 QStringLiteral("KELDA Script/Projekt "
                                                                "(*.vqs;*.vqr)")});
    if (!path || at_.view.leave_gone_set()) return;
    at_.view.refill_if_changed(); // how many are there, and which CVs they use
    app::globals.LastScriptdir = app::PathOf(*path);
    auto file = read_scripts(*path);
    if (!file) return;
    const auto room =
        static_cast<std::size_t>(std::max(0, cls_script_coll::max_scripts - AktScripts().Count()));
    if (file->too_many || file->scripts.size() > room)
        at_.desktop.inform(text(Text::information), sentence_too_many_scripts());
    if (file->scripts.size() > room) file->scripts.resize(room);
    if (file->scripts.empty() && room == 0) return;
    MoveCollidingCVs(*file);
    keep_scripts(*file, shortened(app::FileOf(*path)));
}

std::optional<scripts::Script_File> Script_Commands::read_scripts(const QString& path) {
    const QString name = shortened(app::FileOf(path));
    try {
        const ui_parts::Busy busy;
        const std::string file = path.toStdString();
        if (at_.disk.open(file, files::Access::read)->size() <= longest_file) {
            const std::vector<std::byte> bytes = files::read_file(at_.disk, file);
            scripts::Script_File read = scripts::read_script_file(QByteArray(
                reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
            if (read.has_section) return read;
        }
        at_.messages.say(QStringLiteral("In „%1“ sind keine Scripte.").arg(name));
    } catch (const files::Error& error) {
        const auto kind = true_reason(at_.disk, path, error.kind);
        at_.messages.say_and_log(QStringLiteral("„%1“ kann nicht gelesen werden: ").arg(name) +
                                     ui_parts::reason(kind),
                                 QString::fromUtf8(error.what()));
    }
    return std::nullopt;
}

void Script_Commands::MoveCollidingCVs(scripts::Script_File& file) {
    const auto found = scripts::find_collisions(file.scripts, AktScripts().NewEnum());
    const QString title = QStringLiteral("CV Kollision");
    if (found.too_few_free)
        at_.desktop.inform(title, sentence_too_few_cvs(found));
    else if (!found.cvs.empty() && at_.desktop.ask_yes_no(title, question_move_cvs(found)))
        scripts::move_cvs(file.scripts, found);
    else if (found.cvs.empty() && !found.fixed.empty())
        at_.desktop.inform(title, sentence_fixed_cvs(found));
}

void Script_Commands::keep_scripts(const scripts::Script_File& file, const QString& name) {
    store::Script_Import_Report report;
    if (!file.scripts.empty()) {
        const ui_parts::Busy busy;
        report = store::import_scripts(at_.database, file.scripts);
    }
    at_.view.Redraw_Script_List();
    if (!file.scripts.empty() && !report.kept) {
        at_.messages.say_trouble();
        return;
    }
    if (report.kept) at_.form.UC_Scripte1->choose(AktScripts().Count());
    at_.view.say_outcome(sentence_imported(file, report, name));
}

// To a file

void Script_Commands::ExportScript(int position) {
    if (app::globals.ScriptWindowOpen && !at_.gate.pass()) return;
    if (!AktScripts().exists(position)) return;
    const auto script = AktScripts().Item(position); // the list may be filled anew meanwhile
    const auto path = scripts_ui::ask_script_file(at_.desktop, at_.disk, at_.database,
                                                  file_name(script->ScriptName));
    if (!path) return;
    write_script(*script, *path);
}

void Script_Commands::write_script(const scripts::cls_script& script, const QString& path) {
    scripts::cls_script in_file_form;
    in_file_form.Import_vqx_2_vqr(script);
    const QString name = shortened(app::FileOf(path));
    try {
        const QString lost = scripts_ui::write_script_file(at_.disk, in_file_form, path);
        at_.messages.say(sentence_exported(script.ScriptName, name) + lost);
    } catch (const files::Error& error) {
        const auto kind = true_reason(at_.disk, path, error.kind);
        at_.messages.say_and_log(text(Text::project_failed).arg(name, ui_parts::reason(kind)),
                                 QString::fromUtf8(error.what()));
    }
}

void Script_Commands::DeleteScript(int position) {
    if (app::globals.ScriptWindowOpen) {
        at_.desktop.inform(text(Text::information), app::TextTable.text(522));
        return;
    }
    if (!AktScripts().exists(position)) return;
    const auto script = AktScripts().Item(position);
    if (!at_.desktop.ask_yes_no(app::TextTable.text(199), question_delete(script->ScriptName)))
        return;
    const bool there = AktScripts().exists(position) && AktScripts().Item(position) == script;
    if (there && at_.database.DB_Delete_Script(position)) {
        AktScripts().Remove(position);
        at_.view.say_outcome(
            QStringLiteral("Script „%1“ gelöscht.").arg(shortened(script->ScriptName)));
    } else {
        at_.messages.say_trouble();
        at_.database.DB_Load_Scripts(); // what the list shows is what is there
    }
    at_.view.Redraw_Script_List();
    at_.form.UC_Scripte1->choose(std::min(position, AktScripts().Count()));
}

} // namespace ui_main
