#pragma once

#include "platform/failure/blocked.h"
#include "platform/failure/error.h"

#include <QString>

#include <cstdint>

namespace store {

using failure::Blocked;
using failure::is_doubtful;
using failure::is_incomplete;
using Failure = failure::Kind;

/// The reason that an operation keeps where it must be silent; the window makes a sentence of it.
struct Trouble {
    Failure kind = Failure::device;
    QString subject; ///< path, table, column or relation
    QString detail;  ///< plain English, for the log
};

/// As the window tells it: kinds that only the floors below tell apart become one that it knows.
Trouble trouble_of(const failure::Error& error);

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
