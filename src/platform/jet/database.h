#pragma once

#include "platform/files/disk.h"
#include "platform/jet/format/error.h"
#include "platform/jet/format/schema.h"
#include "platform/jet/format/value.h"
#include "platform/jet/pages/pager.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Jet database files. Everything here throws jet::Error. Names of tables, columns and indexes are
/// found without regard to case, as Jet does; whoever wants the exact spelling compares it himself.
namespace jet {

namespace check {
struct Report;
}
class Engine; // what stands behind this face
struct Table_State;

using Mode = Open_Mode;

/// A column (position in Table::columns()) and its value: what to store, or what to look for.
struct Cell {
    std::size_t column = 0;
    Value value;
};

/// What a file has lost that was not copied to its end.
struct Lost_End {
    std::uint64_t bytes = 0;            ///< missing at least
    std::uint64_t whole = 0;            ///< that the file has had at least
    std::vector<std::u16string> tables; ///< user tables of which something is missing
};

/// How a file was found.
struct Status {
    bool jet3 = false;
    Blocked blocked = Blocked::no;    ///< for the whole file; see also Table::blocked()
    std::string detail;               ///< the reason in plain English, for the log
    std::string journal_owner;        ///< whose journal it is that keeps it from being written
    std::optional<Lost_End> lost_end; ///< as it was at opening
    bool recovered = false;           ///< an interrupted change was undone at opening
    std::string set_aside; ///< new name of a journal that could not be applied to this file
    /// One of this file was spoiled (and may be the one set aside): a change may be half written.
    bool journal_spoiled = false;
};

enum class Order {
    key, ///< ascending primary key; without one as `file`
    file ///< ascending page, then slot
};

/// Rows one after the other; decodes only the cells that are asked for. It holds the shared lock
/// from its making to its end: keep it short. It ends with the next change of the database (next()
/// throws std::logic_error then), so collect first, then change.
class [[nodiscard]] Cursor {
public:
    Cursor(Cursor&&) noexcept;
    Cursor& operator=(Cursor&&) noexcept;
    ~Cursor();

    /// Goes to the first row, then to the next one. @return false at the end.
    bool next();

    Row_Place id() const;
    bool is_null(std::size_t column) const;
    /// Byte, Integer, Long, Boolean (0 or 1); null reads as 0. Other types: std::logic_error.
    std::int32_t integer(std::size_t column) const;
    /// Text and Memo; null reads as empty. Other types: std::logic_error.
    std::u16string text(std::size_t column) const;
    /// The same without a new string each time.
    void text(std::size_t column, std::u16string& into) const;
    Value value(std::size_t column) const;
    std::vector<Value> values() const; ///< all, in the order of Table::columns()

private:
    friend class Table;
    struct State;
    explicit Cursor(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

struct Inserted {
    Row_Place id;
    std::int32_t auto_number = 0; ///< 0 where the table has no such column
};

/// A table; cheap to copy, must not outlive its Database. After a change of its columns or indexes
/// (by this copy or another) the same object shows the new ones; references that it has given out
/// end then.
class Table {
public:
    const std::u16string& name() const; ///< as it stands in the catalogue
    const std::vector<Column>& columns() const;
    const std::vector<Index>& indexes() const; ///< with those of relations
    std::vector<std::size_t> key() const;      ///< columns of the primary key; empty without one
    std::optional<std::size_t> column(std::u16string_view name) const;
    std::size_t row_count() const;
    /// Whether rows of this table can be changed: Status::blocked or a reason of its own.
    Blocked blocked() const;

    Cursor rows(Order order = Order::key) const;
    /// Rows whose cells equal all the given ones (null equals null, texts are compared unit by
    /// unit). Uses an index whose first columns are among them; see quick(). Order: by that index,
    /// or of the file, so sort where it matters.
    Cursor find(std::span<const Cell> equal) const;
    Cursor find(std::initializer_list<Cell> equal) const {
        return find(std::span<const Cell>(equal.begin(), equal.size()));
    }
    /// Whether find() over these columns goes through an index.
    bool quick(std::span<const std::size_t> columns) const;
    /// @return nothing when there is no such row (any more).
    std::optional<std::vector<Value>> row(Row_Place id) const;

    /// Adds a row. A column that is not given gets its autonumber, its default value if that is a
    /// plain number or a quoted text, else null. Nothing is changed when the row is refused: a
    /// value out of range or too long, null where it is required, a key that is taken, no partner
    /// in a relation (Failure::refused, subject: the column, index or relation).
    Inserted insert(std::span<const Cell> cells, Origin origin = Origin::typed) const;
    Inserted insert(std::initializer_list<Cell> cells) const {
        return insert(std::span<const Cell>(cells.begin(), cells.size()));
    }
    /// Changes the given cells; refuses as insert() does. Cascades of relations are followed.
    void update(Row_Place id, std::span<const Cell> cells, Origin origin = Origin::typed) const;
    void update(Row_Place id, std::initializer_list<Cell> cells) const {
        update(id, std::span<const Cell>(cells.begin(), cells.size()));
    }
    /// Refuses what insert() would for the values alone, whatever other rows hold.
    void check(std::span<const Cell> cells) const;
    void check(Row_Place id, std::span<const Cell> cells) const; ///< the same of update()
    /// Refused when rows of an enforced relation refer to it, unless the relation cascades.
    void erase(Row_Place id) const;

private:
    friend class Database;
    std::optional<std::vector<Row_Place>> candidates(const Table_State& table,
                                                     std::span<const Cell> equal) const;
    Table(Engine& engine, std::uint32_t id) : engine_(&engine), id_(id) {}
    Engine* engine_;
    std::uint32_t id_;
};

/// Told of every row that is added (nothing before), changed or deleted (nothing after) by this
/// copy, with all of its values. Rows that a relation takes along are told before the row that they
/// follow. The change may still be rolled back with the transaction around it.
class Change_Watcher {
public:
    virtual ~Change_Watcher() = default;
    /// @param table see Database::table(number)
    virtual void row_changed(std::uint32_t table, Row_Place row, const std::vector<Value>& before,
                             const std::vector<Value>& after) = 0;
};

class Database {
public:
    /// Opens a file. What cannot be written (write-protected, Jet 3) opens read-only, and status()
    /// tells. Throws not_found, not_a_database, unsupported (another generation, a password,
    /// enciphered pages), damaged (header, catalogue or a definition), locked_elsewhere.
    static Database open(files::Disk& disk, const std::string& path, Mode mode);
    /// Makes an empty Jet 4 file, replacing one of that name in one step, and opens it.
    /// @param days the date that its catalogue notes (Date::days); nothing: the clock's.
    static Database create(files::Disk& disk, const std::string& path,
                           std::optional<double> days = std::nullopt);
    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database(); ///< rolls back what is open

    Status status() const;
    const std::string& path() const;
    /// The date that the catalogue notes for tables made or changed from now on; nothing: the
    /// clock's.
    void set_date(std::optional<double> days);
    /// Differs whenever somebody else may have changed rows since it was last asked for.
    std::uint64_t foreign_changes();
    bool in_transaction() const;

    /// User tables in the order of the catalogue; with `system` the others too.
    std::vector<Table> tables(bool system = false);
    std::optional<Table> table(std::u16string_view name);            ///< system tables too
    Table table(std::uint32_t number) { return {*engine_, number}; } ///< one that was told
    void watch(Change_Watcher* watcher);                             ///< at most one; nullptr: none
    std::vector<Relation> relations();

    /// Makes a table with its indexes; lengths and types as in Column.
    Table create_table(std::u16string_view name, std::span<const Column> columns,
                       std::span<const Index> indexes);
    /// Rows that are there read as null (Boolean: false). Refused: a required column in a table
    /// with rows, a name that is taken.
    void add_column(std::u16string_view table, const Column& column);
    /// Refused: double keys or nulls that the index forbids, a second primary key, a taken name.
    void add_index(std::u16string_view table, const Index& index);
    /// Refused where the rows do not hold it (enforced), where there is no unique index over the
    /// columns of the key, or types differ.
    void add_relation(const Relation& relation);

    /// Walks the whole file as it is on disk (platform/jet/check). Not inside a transaction.
    check::Report check();

private:
    friend class Transaction;
    friend class Read_Guard;
    std::uint32_t page_of(std::u16string_view table);
    explicit Database(std::unique_ptr<Engine> engine);
    std::unique_ptr<Engine> engine_;
};

/// Several changes as one: all or nothing on disk. An inner one joins the outer one; only the
/// outermost commits, and what an inner one has changed goes the way of the outermost. A refused
/// statement leaves everything as it was before that statement, and the transaction can go on.
/// After any other failure the transaction can only be rolled back; commit() does that and throws.
class Transaction {
public:
    /// Takes the exclusive lock. The first one on an existing file runs check() (once) and throws
    /// damaged when it finds a fault; read_only when status() says so.
    [[nodiscard]] explicit Transaction(Database& database);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction(); ///< rolls back unless committed
    void commit();

private:
    Engine* engine_;
};

/// Keeps the shared lock over several reads, so that they see one state.
class Read_Guard {
public:
    [[nodiscard]] explicit Read_Guard(Database& database);
    Read_Guard(const Read_Guard&) = delete;
    Read_Guard& operator=(const Read_Guard&) = delete;
    ~Read_Guard();

private:
    Engine* engine_;
};

} // namespace jet
