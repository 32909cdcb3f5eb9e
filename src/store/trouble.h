#pragma once

#include <QString>

#include <cstdint>

namespace store {

/// What kept an operation from doing what it was asked for.
enum class Failure {
    not_open,         ///< no database is open
    no_set,           ///< no set is current
    not_found,        ///< the file is not there (any more)
    denied,           ///< the rights are missing to look at the file
    not_a_database,   ///< another kind of file
    no_library,       ///< a database of another kind: it has no CV sets
    cut_off,          ///< the end of the file is missing, and the CV sets with it
    no_cvs,           ///< a library without the table of its CVs
    unsupported,      ///< another generation of the format, a password, enciphered pages
    damaged,          ///< the file; it is read-only from then on
    read_only,        ///< and why, in the detail
    locked_elsewhere, ///< another running copy or program holds the file
    replaced,         ///< the path no longer names the file that was open; it has been closed
    disk_full,
    device,  ///< any other failure of the medium
    gone,    ///< a row, table or column: another program has taken it away
    changed, ///< a row that is no longer as it was when it was read
    refused  ///< for its data: too long, out of range, forbidden by a relation
};

/// The reason that an operation keeps where it must be silent; the window makes a sentence of it.
struct Trouble {
    Failure kind = Failure::device;
    QString subject; ///< path, table, column or relation
    QString detail;  ///< plain English, for the log
};

/// Why a library cannot be changed.
enum class Blocked {
    no,
    write_protected, ///< the file or the medium
    jet3,            ///< the format of Access 97 is only read
    damaged,
    cut_off,         ///< the end of the file is missing
    no_cvs,          ///< the table CVs, or a column of it, is missing
    foreign_index,   ///< a table with an index whose keys we cannot compute
    replaced,        ///< the path no longer names the file that is open
    second_name,     ///< a hard link
    journal_doubted, ///< a journal with a change in it, by somebody who may not write the library
    journal_barred,  ///< what lies in its place is another user's
    journal_no_file, ///< a folder, a pipe or a link lies in its place
    journal_name,    ///< its name would be too long
    journal_rights,  ///< it cannot get the rights that all who write the library need
    folder_hidden    ///< names in the folder cannot be made safe
};

/// Whether what is shown may be only a part of the library.
constexpr bool is_incomplete(Blocked why) {
    return why == Blocked::cut_off || why == Blocked::no_cvs;
}

/// Whether nothing that was read may only mean that nothing could be read.
constexpr bool is_doubtful(Blocked why) { return why == Blocked::damaged || is_incomplete(why); }

/// What a library has lost that was not copied to its end.
struct Lost_End {
    std::int64_t bytes = 0; ///< missing at least
    std::int64_t whole = 0; ///< that the file has had at least
    bool sets = false;      ///< something of them is missing
    bool cvs = false;
    bool scripts = false;
};

/// How a library was found when it was opened.
struct Opening {
    bool jet3 = false; ///< else Jet 4 (Access 2000 to 2003)
    Blocked blocked = Blocked::no;
    QString blocked_detail;
    QString journal_owner;        ///< of the journal that stands in the way
    Lost_End lost_end;            ///< for Blocked::cut_off
    bool recovered = false;       ///< an interrupted change was undone
    QString journal_set_aside;    ///< new name of a journal that could not be applied, else empty
    bool journal_spoiled = false; ///< it was the file's own: a change may be half written
    bool ldb_beside = false;      ///< another program may have the file open
};

} // namespace store
