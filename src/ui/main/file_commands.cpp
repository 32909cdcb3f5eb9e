#include "ui/main/file_commands.h"

#include "app/mod_fileverwaltung.h"
#include "app/mod_main.h"
#include "ui/main/file_reasons.h"
#include "ui/main/kept_copies.h"
#include "ui/main/library_view.h"
#include "ui/main/menus.h"
#include "ui/main/texts.h"
#include "ui/parts/busy.h"
#include "ui/parts/trouble_texts.h"

#include <QAction>
#include <QMenu>
#include <QStringList>

namespace ui_main {
namespace {

desktop::File_Choice database_choice(const QString& file) {
    return {app::globals.Database_Path, file, u".mdb"_qs, text(Text::database_filter)};
}

// The path as a caption: "&" is no mnemonic in it.
QString caption_of(QString path) { return path.replace(u'&', u"&&"_qs); }

} // namespace

File_Commands::File_Commands(const Surroundings& at)
    : at_(at), mnu_open_last_(at.menus.menu("mnu_open_last")) {
    at.menus.bring({
        {"mnu_open_database", at.messages.command([this] { open_database(); })},
        {"mnu_create_database", at.messages.command([this] { create_database(); })},
    });
    Fill_Last_Files_Menu();
}

void File_Commands::Open_Database() {
    const ui_parts::Busy busy;
    const QString path = app::current_database();
    app::Add_Last_File(path);
    Fill_Last_Files_Menu();
    at_.copies.get();
    at_.database.take_trouble(); // of what was done before
    at_.database.Connection_Start(path);
    const std::optional<store::Trouble> trouble = at_.database.take_trouble();
    if (at_.database.Connection_Active()) at_.view.note_state(); // before it is read
    at_.view.Refresh_Sets();
    const bool of_another_kind = trouble && trouble->kind == store::Failure::no_library;
    const bool cut_off = at_.database.opening().blocked == store::Blocked::cut_off;
    if (at_.database.Connection_Active() &&
        (at_.database.is_library() || of_another_kind || cut_off))
        say_opening();
    else if (trouble)
        at_.messages.say(why_not_opened(path, *trouble));
    at_.messages.say_and_log(at_.messages.last_sentence(),
                             trouble ? path + u": "_qs + trouble->detail : path);
    at_.database.take_trouble(); // a database of another kind has no sets to count; that is said
}

QString File_Commands::why_not_opened(const QString& path, const store::Trouble& trouble) {
    switch (true_reason(at_.disk, path, files::Failure::device)) {
    case files::Failure::no_file:
        return text(Text::opens_no_file).arg(ui_parts::shortened(app::FileOf(path)));
    case files::Failure::name_too_long:
        return text(Text::opens_too_long).arg(ui_parts::shortened(app::FileOf(path)));
    default:
        return ui_parts::sentence(trouble);
    }
}

void File_Commands::default_database_made() { at_.copies.get().made_now(app::current_database()); }

void File_Commands::say_opening() {
    const store::Opening opening = at_.database.opening();
    const bool cut_off = opening.blocked == store::Blocked::cut_off;
    const QString file = ui_parts::shortened(app::globals.Database_File);
    QStringList parts;
    if (at_.database.is_library()) {
        const int sets = at_.database.Get_Anz_CVSets();
        parts.append(at_.view.sets_unreadable()
                         ? text(Text::opened_unreadable).arg(file)
                         : text(Text::opened).arg(file, QString::number(sets)));
    } else {
        const Text form = cut_off ? Text::opened_sets_lost : Text::opened_without_sets;
        parts.append(text(form).arg(file));
    }
    if (at_.database.is_library() || cut_off) append_protection(parts, opening);
    if (opening.recovered && opening.blocked != store::Blocked::second_name)
        parts.append(text(Text::recovered));
    if (opening.journal_spoiled) parts.append(text(Text::journal_spoiled));
    if (!opening.journal_set_aside.isEmpty()) {
        const Text form =
            opening.journal_spoiled ? Text::spoiled_set_aside : Text::journal_set_aside;
        parts.append(text(form).arg(app::FileOf(opening.journal_set_aside)));
    }
    if (opening.ldb_beside) parts.append(text(Text::ldb_beside));
    append_count(parts, Text::sets_in_no_view, at_.database.sets_in_no_view());
    append_count(parts, Text::sets_completed, at_.database.sets_completed_in_memory());
    if (const auto no_copy = at_.copies.get().take_trouble())
        parts.append(text(Text::backup_failed).arg(ui_parts::sentence(*no_copy)));
    at_.messages.say(Library_View::with_left_out(parts.join(u' ')));
}

void File_Commands::append_protection(QStringList& parts, const store::Opening& opening) const {
    if (at_.database.writable()) return;
    parts.append(text(Text::write_protected) + u": "_qs + ui_parts::reason(opening));
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

void File_Commands::open_database() {
    const auto path = at_.desktop.ask_open_file(database_choice(app::globals.Database_File));
    if (!path || !at_.gate.pass()) return;
    app::set_current_database(*path);
    Open_Database();
}

void File_Commands::reopen(int entry) {
    const QString path = mnu_open_last_.actions().at(entry)->data().toString();
    if (!app::is_database_name(path)) {
        at_.messages.say(
            text(Text::not_a_database_name).arg(ui_parts::shortened(app::FileOf(path))));
        return;
    }
    if (!at_.gate.pass()) return;
    app::set_current_database(path);
    Open_Database();
}

void File_Commands::create_database() {
    const auto path = at_.desktop.ask_save_file(database_choice({}));
    if (!path) return;
    if (app::FileExists(at_.disk, *path) &&
        !at_.desktop.ask_yes_no(text(Text::attention), text(Text::ask_overwrite_database))) {
        return;
    }
    if (!at_.gate.pass() || !make_database(*path)) return;
    app::set_current_database(*path);
    Open_Database();
}

// The open library must not be overwritten while it is held open: it is closed first, and opened
// again when the copy fails.
bool File_Commands::make_database(const QString& path) {
    const bool over_itself = at_.database.Connection_Active() && path == app::current_database();
    if (over_itself) at_.database.Connection_Close();
    try {
        at_.copies.get().make_new(path, app::globals.EmptyDBTemplate);
        return true;
    } catch (const files::Error& error) {
        if (over_itself) Open_Database();
        say_not_made(path, error);
        return false;
    }
}

void File_Commands::no_default_database(const files::Error& reason) {
    say_not_made(app::current_database(), reason);
}

void File_Commands::say_not_made(const QString& path, files::Error reason) {
    reason.kind = true_reason(at_.disk, path, reason.kind);
    at_.messages.say_and_log(
        ui_parts::sentence(reason, app::FileOf(path), app::globals.EmptyDBTemplate),
        QString::fromUtf8(reason.what()));
}

// Entries beyond the list stay as they are; one without a path says so by its dashes.
void File_Commands::Fill_Last_Files_Menu() {
    QStringList paths = app::last_files_newest_first();
    if (paths.isEmpty() && mnu_open_last_.isEmpty()) paths.append(u"---"_qs);
    for (int i = 0; i < paths.size(); ++i) {
        if (i == mnu_open_last_.actions().size()) {
            QAction* action = mnu_open_last_.addAction(QString());
            action->setObjectName(u"mnu_last_files_%1"_qs.arg(i));
            connect(action, &QAction::triggered, this,
                    at_.messages.command([this, i] { reopen(i); }));
        }
        QAction* entry = mnu_open_last_.actions().at(i);
        entry->setText(caption_of(paths[i]));
        entry->setData(paths[i]);
    }
}

} // namespace ui_main
