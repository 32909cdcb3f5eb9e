#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace failure {

/// What was refused or went wrong, the same on all floors; decides what the program does next.
enum class Kind {
    // A file or folder
    not_found, ///< no such file; inside a database or a model: no such table, column, row or entry
    exists,    ///< a name or a key that is taken
    denied,    ///< the rights are missing
    read_only, ///< write-protected, or not to be changed for a reason that the detail tells
    locked_elsewhere, ///< another program, or another running copy, holds it
    no_file,          ///< a folder, a pipe, or a link where none is followed
    name_too_long,
    disk_full,
    device, ///< any other failure of the medium
    // A database
    not_a_database, ///< another kind of file
    unsupported,    ///< another generation of the format, a password, enciphered pages
    damaged,        ///< it is read-only from then on
    replaced,       ///< the path no longer names the file that was open
    refused,        ///< for its data: too long, out of range, duplicate key, against a relation
    changed,        ///< what was read before is no longer so
    not_open,       ///< the database, the connection or the recordset
    statement,      ///< SQL beyond what is understood; the subject is its text
    // A serial port
    no_port,  ///< what has the number is no serial port
    settings, ///< a settings text that is none, or one that the driver does not take
    vanished, ///< was open and is gone: unplugged, hung up
    // A library
    no_library, ///< a database of another kind: it has no CV sets
    cut_off,    ///< the end of the file is missing, and the CV sets with it
    no_cvs,     ///< a library without the table of its CVs
    no_set,     ///< no set is current
    gone,       ///< a row, table or column: another program has taken it away
    // What is written out for a decoder
    full,     ///< 256 states or 16 scripts are the end
    unfit,    ///< a number that its place in the script block cannot hold
    overflow, ///< a count, length or address beyond what its bytes can hold
    negative, ///< there is no encoding for numbers below 0
    outside   ///< no such address slot, or a target array too short for the stream
};

/// Thrown on all floors. `subject` names what it happened to: a path, a table, a column, "script 2,
/// line 17"; `detail` says in plain English what is wrong, for the log.
struct [[nodiscard]] Error : std::runtime_error {
    [[nodiscard]] Error(Kind kind_, std::string subject_, std::string detail_)
        : std::runtime_error(subject_ + ": " + detail_), kind(kind_), subject(std::move(subject_)),
          detail(std::move(detail_)) {}
    Kind kind;
    std::string subject;
    std::string detail;
    bool by_others = false; ///< refused because of other rows: a key that is taken, a relation
};

} // namespace failure
