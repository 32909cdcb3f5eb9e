#pragma once

#include <stdexcept>
#include <string>

namespace jet {

/// What a database refused or broke at; the kind decides what the program does next.
enum class Failure {
    not_found,      ///< no such file, table or column
    denied,         ///< the rights are missing to look at it
    not_a_database, ///< another kind of file
    unsupported,    ///< another generation of the format, password, enciphered pages
    damaged,
    read_only, ///< and why, in the detail
    locked_elsewhere,
    replaced, ///< the path no longer names the file that is open
    disk_full,
    device,
    refused ///< for its data: too long, out of range, duplicate key, forbidden by a relation
};

/// Why nothing can be changed in a file or in a table.
enum class Blocked {
    no,
    write_protected, ///< the file or the medium, or opened read-only
    jet3,            ///< the format of 1997 is only read
    damaged,         ///< found by the check before the first write, or met later
    cut_off,         ///< the end of the file is missing; Status::lost_end says more
    foreign_index,   ///< an index whose keys we cannot compute (another collation or unknown type)
    replaced,        ///< the path no longer names the file that is open
    second_name,     ///< a hard link: whoever opens the file by it would not find the journal
    journal_doubted, ///< one that holds a change, made by somebody who may not write the file
    journal_barred,  ///< what lies in its place is another user's and cannot be opened or removed
    journal_no_file, ///< a folder, a pipe or a link lies in its place
    journal_name,    ///< the name would be too long
    journal_rights,  ///< it cannot get the rights that all who write the file need
    folder_hidden    ///< the folder cannot be opened, so that names in it are not safe
};

/// Thrown by everything in this folder. `subject` names the file, table or column.
struct Error : std::runtime_error {
    Error(Failure kind_, std::string subject_, const std::string& detail_)
        : std::runtime_error(subject_ + ": " + detail_), kind(kind_), subject(std::move(subject_)),
          detail(detail_) {}
    Failure kind;
    std::string subject;
    std::string detail;
    bool by_others = false; ///< refused because of other rows: a key that is taken, a relation
};

} // namespace jet
