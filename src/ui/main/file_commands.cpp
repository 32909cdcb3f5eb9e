#include "app/mod_fileverwaltung.h"
#include "export/export_project.h"
#include "scripts/cls_Script_Sets.h"
#include "store/backups.h"
#include "ui/main/Frm_Main.h"
#include "ui/main/main_form.h"
#include "ui/main/project_texts.h"
#include "ui/main/status_line.h"
#include "ui/main/texts.h"

#include <QApplication>
#include <QMenu>
#include <QStringList>

namespace ui_main {
namespace {

const QString database_extension = QStringLiteral(".mdb");
const QString project_extension = QStringLiteral(".vqx");

/// Shows the pointer of a busy program while it lives.
class Busy {
public:
    Busy() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Busy() { QGuiApplication::restoreOverrideCursor(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
};

/// The library's name with the other extension; a name without one gets it.
QString project_name(const QString& database_file) {
    const qsizetype point = database_file.lastIndexOf(u'.');
    return database_file.left(point < 0 ? database_file.size() : point) + project_extension;
}

desktop::File_Choice database_choice(const QString& file) {
    return {app::globals.Database_Path, file, database_extension, text(Text::database_filter)};
}

} // namespace

void Frm_Main::Open_Database() {
    const Busy busy;
    const QString path = app::current_database();
    app::Add_Last_File(path);
    Fill_Last_Files_Menu();
    backups();
    database_.take_trouble(); // of what was done before
    database_.Connection_Start(path);
    const std::optional<store::Trouble> trouble = database_.take_trouble();
    Refresh_Sets();
    const bool of_another_kind = trouble && trouble->kind == store::Failure::no_library;
    const bool cut_off = database_.opening().blocked == store::Blocked::cut_off;
    if (database_.Connection_Active() && (database_.is_library() || of_another_kind || cut_off))
        say_opening();
    else if (trouble)
        say(why_not_opened(path, *trouble));
    say_and_log(status_->last_sentence(), trouble ? path + u": "_qs + trouble->detail : path);
    database_.take_trouble(); // a database of another kind has no sets to count; that is said
    shown_state_ = database_.foreign_changes().value_or(0);
}

// The floors below know the file only by what the medium says of it.
files::Failure Frm_Main::true_reason(const QString& path, files::Failure told) {
    const std::string name = path.toStdString();
    try {
        if (const std::optional<files::Look> look = disk_.look(disk_.resolve(name)))
            return look->is_file ? told : files::Failure::no_file;
        disk_.open(name, files::Access::read); // for its refusal: nothing stands there
    } catch (const files::Error& error) {
        if (error.kind == files::Failure::name_too_long) return error.kind;
    }
    return told;
}

QString Frm_Main::why_not_opened(const QString& path, const store::Trouble& trouble) {
    switch (true_reason(path, files::Failure::device)) {
    case files::Failure::no_file:
        return text(Text::opens_no_file).arg(shortened(app::FileOf(path)));
    case files::Failure::name_too_long:
        return text(Text::opens_too_long).arg(shortened(app::FileOf(path)));
    default:
        return sentence(trouble);
    }
}

void Frm_Main::default_database_made() { backups().made_now(app::current_database()); }

void Frm_Main::say_opening() {
    const store::Opening opening = database_.opening();
    const bool cut_off = opening.blocked == store::Blocked::cut_off;
    const QString file = shortened(app::globals.Database_File);
    QStringList parts;
    if (database_.is_library()) {
        const int sets = database_.Get_Anz_CVSets();
        parts.append(sets_unreadable() ? text(Text::opened_unreadable).arg(file)
                                       : text(Text::opened).arg(file, QString::number(sets)));
    } else {
        const Text form = cut_off ? Text::opened_sets_lost : Text::opened_without_sets;
        parts.append(text(form).arg(file));
    }
    if (database_.is_library() || cut_off) append_protection(parts, opening);
    if (opening.recovered) parts.append(text(Text::recovered));
    if (opening.journal_spoiled) parts.append(text(Text::journal_spoiled));
    if (!opening.journal_set_aside.isEmpty()) {
        const Text form =
            opening.journal_spoiled ? Text::spoiled_set_aside : Text::journal_set_aside;
        parts.append(text(form).arg(app::FileOf(opening.journal_set_aside)));
    }
    if (opening.ldb_beside) parts.append(text(Text::ldb_beside));
    append_count(parts, Text::sets_in_no_view, database_.sets_in_no_view());
    append_count(parts, Text::sets_completed, database_.sets_completed_in_memory());
    if (const auto no_copy = backups().take_trouble())
        parts.append(text(Text::backup_failed).arg(sentence(*no_copy)));
    say(with_left_out(parts.join(u' ')));
}

void Frm_Main::append_protection(QStringList& parts, const store::Opening& opening) const {
    if (database_.writable()) return;
    parts.append(text(Text::write_protected) + u": "_qs +
                 reason(opening.blocked, opening.journal_owner));
    const store::Lost_End& lost = opening.lost_end;
    if (lost.bytes == 0) return;
    constexpr std::int64_t kilobyte = 1024;
    parts.append(text(Text::lost_end).arg(lost.bytes / kilobyte).arg(lost.whole / kilobyte));
    QStringList of;
    if (lost.sets) of.append(text(Text::lost_sets));
    if (lost.cvs) of.append(text(Text::lost_cvs));
    if (lost.scripts) of.append(text(Text::lost_scripts));
    if (!of.isEmpty()) parts.append(text(Text::lost_of).arg(of.join(u", "_qs)));
}

void Frm_Main::open_database() {
    const auto path = desktop_.ask_open_file(database_choice(app::globals.Database_File));
    if (!path) return;
    app::set_current_database(*path);
    Open_Database();
}

void Frm_Main::reopen(int entry) {
    const QString path = mnu_open_last_->actions().at(entry)->data().toString();
    if (!app::is_database_name(path)) {
        say(text(Text::not_a_database_name).arg(shortened(app::FileOf(path))));
        return;
    }
    app::set_current_database(path);
    Open_Database();
}

void Frm_Main::create_database() {
    const auto path = desktop_.ask_save_file(database_choice({}));
    if (!path) return;
    if (app::FileExists(disk_, *path) &&
        !desktop_.ask_yes_no(text(Text::attention), text(Text::ask_overwrite_database))) {
        return;
    }
    if (!make_database(*path)) return;
    app::set_current_database(*path);
    Open_Database();
}

// The open library must not be overwritten while it is held open: it is closed first, and opened
// again when the copy fails.
bool Frm_Main::make_database(const QString& path) {
    const bool over_itself = database_.Connection_Active() && path == app::current_database();
    if (over_itself) database_.Connection_Close();
    try {
        backups().make_new(path, app::globals.EmptyDBTemplate);
        return true;
    } catch (const files::Error& error) {
        if (over_itself) Open_Database();
        say_not_made(path, error);
        return false;
    }
}

void Frm_Main::no_default_database(const files::Error& reason) {
    say_not_made(app::current_database(), reason);
}

void Frm_Main::say_not_made(const QString& path, files::Error reason) {
    reason.kind = true_reason(path, reason.kind);
    say_and_log(sentence(reason, app::FileOf(path), app::globals.EmptyDBTemplate),
                QString::fromUtf8(reason.what()));
}

void Frm_Main::export_oem() { export_project(false); }

void Frm_Main::export_user() { export_project(true); }

void Frm_Main::export_project(bool user) {
    if (!expect_library()) return;
    if (const store::Blocked why = database_.opening().blocked; is_incomplete(why)) {
        say(text(Text::project_refused) + u' ' + reason(why, {}));
        return;
    }
    const QString proposed = project_name(app::globals.Database_File);
    const auto path = desktop_.ask_save_file(
        {app::globals.Database_Path, proposed, project_extension, text(Text::project_filter)});
    if (!path) return;
    if (app::FileExists(disk_, *path) &&
        !desktop_.ask_yes_no(text(Text::attention), text(Text::ask_overwrite_file))) {
        return;
    }
    write_project(*path, user ? vqx_export::File_Type::user : vqx_export::File_Type::oem);
}

// What could not be read in full is not exported: a project without some of its sets would look
// like a whole one.
void Frm_Main::write_project(const QString& path, vqx_export::File_Type type) {
    const Busy busy;
    scripts::cls_Script_Sets script_sets;
    database_.Fill_Sets_in_SetObj(store::SetsObj());
    database_.Fill_Scripts_in_ScriptsObj(script_sets);
    if (say_trouble()) return;
    vqx_export::Report report =
        vqx_export::export_project(store::SetsObj(), script_sets, type, disk_, path.toStdString());
    if (report.failure) report.failure->kind = true_reason(path, report.failure->kind);
    say_and_log(sentence(app::FileOf(path), report),
                report.failure ? QString::fromUtf8(report.failure->what()) : path);
    if (report.refusals.empty()) return;
    desktop_.inform(text(Text::information),
                    sentences(report.refusals, [this](std::int32_t ScriptID) {
                        return database_.script_name(ScriptID);
                    }));
}

} // namespace ui_main
