#pragma once

#include "platform/files/disk.h"
#include "store/trouble.h"

#include <QString>

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
    list_of_scripts,
    script_name,
    script_lines,
    script_add,
    script_import,
    script_export,
    title_open, ///< %1 path
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
    number_too_high, ///< %1 highest

    opened,            ///< %1 file, %2 number of sets
    recovered,         ///< an interrupted change was undone
    journal_set_aside, ///< %1 file
    ldb_beside,
    sets_in_no_view,        ///< %1 sets
    sets_completed,         ///< %1 sets
    script_states_left_out, ///< %1 states
    write_protected,
    blocked_write_protected,
    blocked_jet3,
    blocked_damaged,
    blocked_foreign_index,
    blocked_replaced,

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

    template_missing,  ///< %1 path
    database_not_made, ///< %1 file, %2 reason
    reason_denied,
    reason_full,
    reason_other,

    project_written,          ///< %1 file, %2 sets, %3 sets with scripts
    project_left_out_cvs,     ///< %1 CVs
    project_left_out_scripts, ///< %1 scripts
    project_equal_keys,       ///< %1 sets
    project_equal_scripts,    ///< %1 sets
    project_failed,           ///< %1 file, %2 reason
    project_refused,
};

QString text(Text which);

/// The sentence about what kept an operation from its work.
QString sentence(const store::Trouble& trouble);
/// The sentence about a default or new database that could not be made.
/// @param template_path an error about this file is about a missing template
QString sentence(const files::Error& error, const QString& database, const QString& template_path);
/// Why a file could not be written, as the end of a sentence.
QString reason(files::Failure failure);
/// Why a library cannot be changed, as the end of a sentence.
QString reason(store::Blocked blocked);

} // namespace ui_main
