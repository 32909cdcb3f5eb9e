#pragma once

#include "platform/ado/catalog.h"
#include "platform/ado/connection.h"
#include "platform/ado/error.h"
#include "platform/ado/recordset.h"
#include "store/trouble.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace store {

/// The database file that is open, whether there are CV sets in it, and the latest reason for not
/// having done something.
class Library_File {
public:
    explicit Library_File(files::Disk& disk);

    /// Opens a file, whatever is in it; a failure is noted. None must be open.
    void open(const QString& path);
    void close(); ///< its path stays known
    bool active() const { return active_; }
    const QString& path() const { return path_; }
    /// Throws ado::Error (replaced) when the path names another file by now.
    void expect_same_file();
    /// Whether a path leads to the file or to its journal.
    bool is_its(const QString& path) const;
    Opening opening() const;
    Blocked blocked() const; ///< with what was met since it was opened

    ado::Connection& connection() { return connection_; }
    ado::Catalog& catalog() { return catalog_; }
    /// The rows of a query. @param wanted columns that are going to be read; none: all
    ado::Recordset rows(const QString& sql, std::vector<QString> wanted = {});
    void erase_rows(const QString& sql); ///< all that the query finds
    int execute(const QString& sql);

    // What is in it
    struct Contents {
        bool sets = false; ///< it is a library
        bool cvs = true;   ///< false: the table CVs is missing, or a column of it
        Trouble no_sets;   ///< why there are none
    };
    void found(Contents contents) { contents_ = std::move(contents); }
    bool is_library() const { return contents_.sets; }
    [[nodiscard]] bool expect_library(); ///< @return false: it is none, and why is noted
    Failure without_sets() const;        ///< what it is where there are none
    bool is_cut_off() const { return connection_.status().lost_end.has_value(); }

    // Troubles
    void note(Failure kind, const QString& subject, const QString& detail);
    void note(const ado::Error& error);
    /// The latest one; stays until it is taken or a newer comes.
    std::optional<Trouble> trouble;
    bool is_lost() const { return lost_; } ///< the path names another file by now: to be closed

private:
    bool has_lock_file();
    std::optional<files::Identity> file_now(); ///< which the path names by now
    Lost_End lost_end() const;

    files::Disk& disk_;
    ado::Connection connection_;
    ado::Catalog catalog_;
    QString path_;
    bool active_ = false;
    bool lost_ = false;
    bool ldb_beside_ = false;
    std::optional<files::Identity> identity_; ///< of the file that is open
    Contents contents_;
};

/// A row as the subject of an Error.
std::string row_name(const QString& table, std::int32_t key);
/// A row that is not there (any more).
ado::Error gone(const QString& table, std::int32_t key);

} // namespace store
