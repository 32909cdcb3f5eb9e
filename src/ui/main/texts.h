#pragma once

#include "platform/files/disk.h"
#include "store/trouble.h"
#include "store/undo_name.h"

#include <QString>
#include <QStringList>

namespace ui_main {

/// Captions and sentences of this room that stand in no menu.
enum class Text {
    frame_sets,
    frame_cvs,
    frame_scripts,
    frame_reset,
    frame_decoder,
    cv8,
    cv265,
    qr,
    qd,
    cv_number,
    cv_value,
    cv_page_hi,
    cv_page_lo,
    cv_count,
    list_of_sets,
    list_of_cvs,
    title_open, ///< %1 path
    title_damaged,
    title_incomplete,
    title_closed,
    attention,
    information,
    database_filter,
    project_filter,
    ask_overwrite_database,
    ask_overwrite_file,
    ask_delete_set,
    new_set,
    rename_set,
    new_set_name,
    set_number,
    ok,
    cancel,
    name_cut,        ///< %1 characters
    name_full,       ///< %1 characters
    number_too_high, ///< %1 highest

    opened,              ///< %1 file, %2 number of sets
    opened_without_sets, ///< %1 file
    opened_sets_lost,    ///< %1 file, whose end is missing
    opened_unreadable,   ///< %1 file
    opens_no_file,       ///< %1 name of a folder, or of something else that is no file
    opens_too_long,      ///< %1 name that no file can have
    lost_end,            ///< %1 missing, %2 whole, in KB
    lost_of,             ///< %1 what the missing end held
    lost_sets,
    lost_cvs,
    lost_scripts,
    recovered,         ///< an interrupted change was undone
    journal_set_aside, ///< %1 file
    journal_spoiled,
    spoiled_set_aside, ///< %1 file
    ldb_beside,
    sets_in_no_view,        ///< %1 sets
    sets_completed,         ///< %1 sets
    script_states_left_out, ///< %1 states
    write_protected,

    no_set_selected,
    set_added,        ///< %1 number and name
    set_renamed,      ///< %1 name
    set_deleted,      ///< %1 name
    cv_stored,        ///< %1 number, %2 value
    cv_number_beyond, ///< nothing stored, number outside 1..1024
    cv_value_beyond,  ///< nothing stored, value above 255
    number_beyond,    ///< nothing stored, no advance
    page_beyond,
    cvs_deleted, ///< %1 CVs
    no_cv_selected,
    not_a_database_name, ///< %1 path

    nothing_selected_to_copy,
    nothing_copied,
    maybe_more,     ///< of what was copied, %1 reason
    set_gone,       ///< %1 number and name
    cvs_gone,       ///< %1 CVs
    set_chosen_now, ///< %1 number and name
    cvs_copied,     ///< %1 CVs
    set_copied,     ///< %1 number and name
    listing_copied, ///< %1 number and name
    clipboard_refused,
    clipboard_empty,
    nothing_to_paste,
    cvs_pasted,      ///< %1 CVs
    sets_pasted,     ///< %1 sets, %2 CVs
    lines_skipped,   ///< %1 lines, %2 CVs or sets
    cvs_without_set, ///< %1 CVs
    names_cut,       ///< %1 names

    step_undone, ///< %1 step
    step_redone, ///< %1 step
    stored_first,
    nothing_to_undo,
    nothing_to_redo,
    step_changed_elsewhere, ///< %1 step

    backup_failed, ///< %1 reason
    backups_title, ///< %1 file
    backups_hint,
    backups_none, ///< %1 file
    backup_date,
    backup_sets,
    backup_unreadable,
    backup_cut_off, ///< %1 number of sets
    backup_damaged, ///< %1 number of sets
    backup_restore,
    backup_cancel,
    backup_restored, ///< %1 date
    backup_was_cut_off,
    backup_was_damaged,
    backup_not_restored, ///< %1 reason
    settings_not_saved,
    log_lost, ///< %1 folder
    settings_lost,

    project_written,          ///< %1 file, %2 sets, %3 sets with scripts
    project_left_out_cvs,     ///< %1 CVs
    project_left_out_scripts, ///< %1 scripts
    project_left_out_states,  ///< %1 script lines
    project_equal_keys,       ///< %1 sets
    project_equal_scripts,    ///< %1 sets
    project_failed,           ///< %1 file, %2 reason
    project_refused,

    hint_no_database, ///< of an empty list: what to do first
    hint_sets_unreadable,
    hint_cvs_unreadable,
    hint_scripts_unreadable,
    hint_no_sets,
    hint_no_sets_here, ///< and none can be added
    hint_other_view,
    hint_other_view_only, ///< and none can be added to this one
    hint_other_family,    ///< the sets are those of QR decoders
    hint_cvs,
    hint_choose_set,
    hint_no_cvs,
    hint_no_cvs_here, ///< and none can be added
    hint_scripts,
    hint_no_scripts,
    tip_reset_cv, ///< what a word of the trade means
    tip_qr,
    tip_qd,
    tip_cv31,
    tip_cv32,
};

QString text(Text which);
/// Adds the sentence that counts something, if there is any of it.
void append_count(QStringList& sentences, Text form, int count);

/// What a step has done: "14 CVs gelöscht".
QString sentence(const store::Undo_Name& step);
} // namespace ui_main
