#pragma once

#include <QString>

#include <stdexcept>
#include <utility>

namespace jet {
struct Error;
}

namespace ado {

enum class Failure {
    closed,         ///< the connection or the recordset is not open
    statement,      ///< SQL beyond what is understood; the subject is its text
    not_found,      ///< no such file, table, column or row
    denied,         ///< the rights are missing to look at the file
    not_a_database, ///< another kind of file
    unsupported,    ///< another generation of the format, a password, enciphered pages
    damaged,
    read_only, ///< and why, in the detail
    locked_elsewhere,
    replaced, ///< the path no longer names the file that is open
    disk_full,
    device,  ///< any other failure of the medium
    changed, ///< what was read before is no longer so
    refused  ///< for its data: too long, out of range, duplicate key, forbidden by a relation
};

/// Thrown by everything in this folder. `subject` names the file, table, column or statement.
struct Error : std::runtime_error {
    Error(Failure kind_, const QString& subject_, const QString& detail_);
    explicit Error(const jet::Error& error);
    Failure kind;
    QString subject;
    QString detail;
    bool by_others = false; ///< refused because of other rows: a key that is taken, a relation
};

} // namespace ado
