#pragma once

#include "platform/ado/session.h"
#include "platform/files/disk.h"
#include "platform/jet/database.h"

#include <QString>

#include <memory>
#include <optional>

namespace ado {

using failure::Blocked;
using Status = jet::Status;

enum class State { closed = 0, open = 1 };

/// A connection to one database file.
class Connection {
public:
    explicit Connection(files::Disk& disk) : disk_(disk) {}

    /// "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=PATH;Persist Security Info=False"
    static QString string_for(const QString& path);
    /// Closes what is open, and opens for writing where that is possible. Throws Error.
    void open(const QString& connection_string);
    void close(); ///< rolls back an open transaction; nothing when closed
    State state() const { return session_ ? State::open : State::closed; }

    /// How the file was found, and whether it can be written by now.
    Status status() const;
    /// Whether rows of the table can be changed; `no` also for one that is not in the file.
    Blocked blocked(const QString& table) const;
    /// Differs whenever somebody else may have changed rows since it was last asked for. Throws
    /// Error.
    std::uint64_t foreign_changes() const;
    /// Told of every changed row from now on, also of connections opened later; nullptr: nobody.
    void watch(Row_Watcher* watcher);

    /// Throws Error (not_open).
    Session& session() const;

private:
    files::Disk& disk_;
    std::unique_ptr<Session> session_;
    Row_Watcher* watcher_ = nullptr;
};

/// Several changes as one; an inner transaction joins the outer one, which alone writes to disk.
/// Rolled back unless committed. Must not outlive the open connection.
class Transaction {
public:
    [[nodiscard]] explicit Transaction(Connection& connection);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();
    void commit();

private:
    Session& session_;
    std::optional<jet::Transaction> changes_;
    bool committed_ = false;
};

/// Several reads of one state of the file: nobody else changes it meanwhile.
class Reading {
public:
    [[nodiscard]] explicit Reading(const Connection& connection, Extent extent = Extent::some);
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading();

private:
    Session& session_;
    Extent extent_;
    std::optional<jet::Read_Guard> guard_;
};

} // namespace ado
