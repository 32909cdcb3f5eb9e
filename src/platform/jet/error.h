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
