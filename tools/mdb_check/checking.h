#pragma once

#include "platform/files/disk.h"

#include <iosfwd>
#include <span>
#include <string>

namespace mdb_check {

/// Exit status of the program; of several files the highest one counts.
enum Status : int {
    sound = 0,
    faulty = 1,    ///< a fault of the structure, or rows that break a rule
    unreadable = 2 ///< not there, not allowed, being written to, or no database that we know
};

/// Checks one file after the other and says what is wrong, one line for each finding. Changes
/// nothing. @param quiet warnings are only counted
Status check_files(files::Disk& disk, std::span<const std::string> paths, bool quiet,
                   std::ostream& out);

} // namespace mdb_check
