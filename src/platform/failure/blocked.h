#pragma once

namespace failure {

/// Why nothing can be changed in a file or in a table.
enum class Blocked {
    no,
    write_protected, ///< the file or the medium, or opened read-only
    jet3,            ///< the format of 1997 is only read
    damaged,         ///< found by the check before the first write, or met later
    cut_off,         ///< the end of the file is missing
    no_cvs,          ///< of a library: the table CVs, or a column of it, is missing
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

/// Whether what is shown may be only a part of the library.
constexpr bool is_incomplete(Blocked why) {
    return why == Blocked::cut_off || why == Blocked::no_cvs;
}

/// Whether nothing that was read may only mean that nothing could be read.
constexpr bool is_doubtful(Blocked why) { return why == Blocked::damaged || is_incomplete(why); }

} // namespace failure
