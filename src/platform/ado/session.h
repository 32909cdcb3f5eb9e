#pragma once

#include "platform/ado/row_block.h"
#include "platform/ado/statement.h"
#include "platform/jet/database.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

namespace ado {

using jet::Origin;

/// Told of every row that is added (nothing before), changed or deleted (nothing after), with all
/// columns of its table. Rows that a relation takes along are told before the row that they follow.
class Row_Watcher {
public:
    virtual ~Row_Watcher() = default;
    virtual void row_changed(const QString& table, const Row& before, const Row& after) = 0;
};

/// How much a guard is going to read.
enum class Extent {
    some, ///< a set, a script
    whole ///< table after table: equality goes through a lookup in memory, index or not. Nothing
          ///< is changed meanwhile
};

/// What a query found: places in a block, in the order asked for.
struct Found_Rows {
    std::shared_ptr<Row_Block> block;
    std::vector<std::uint32_t> order;
};

/// An open database as the objects of this folder share it: rows are found and changed here.
///
/// While a guard is open, rows that are asked for again and again are held in memory with a lookup
/// per column: the whole table where no index leads to them, so that loading a library set by set
/// is not quadratic in its size; else the part that the index leads to, so that storing a set CV by
/// CV is not quadratic in the set's. Own changes keep them right, nobody else's can happen
/// meanwhile, and they go with the last guard.
class Session : jet::Change_Watcher {
public:
    explicit Session(jet::Database database) : database_(std::move(database)) {
        database_.watch(this);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    jet::Database& database() { return database_; }
    Row_Watcher* watcher = nullptr;

    void enter(Extent extent);
    void leave(Extent extent);
    /// What is held in memory no longer says what the file does.
    void forget_held();

    /// Tables and columns that exist for reading only, without rows and values.
    void complete_in_memory(const QString& table, const std::vector<QString>& columns);
    /// Names of the columns, as they stand; throws not_found.
    std::vector<QString> columns(const QString& table);
    std::vector<QString> tables();

    /// @param wanted columns that are going to be read; none: all
    Found_Rows select(const Statement& statement, const std::vector<QString>& wanted);
    /// Throws Error (refused) when a new row could not hold these cells: text too long, number out
    /// of range, row too long, null where a value is required. Keys and relations are looked at by
    /// insert() and update().
    void check(const QString& table, const Row& cells);
    void check(const QString& table, const Row_Block& block, std::uint32_t row, const Row& cells);
    /// Rows that hold exactly these values, texts unit by unit. @param row all columns
    Found_Rows rows_equal(const QString& table, const Row& row);
    /// A block for rows that are going to be added.
    Found_Rows nothing_of(const QString& table);
    /// Adds a row and appends it to `block`. @return its place there.
    std::uint32_t insert(const QString& table, Row_Block& block, const Row& cells,
                         Origin origin = Origin::typed);
    void update(const QString& table, Row_Block& block, std::uint32_t row, const Row& cells,
                Origin origin = Origin::typed);
    void erase(const QString& table, Row_Block& block, std::uint32_t row);

private:
    struct Shape { // a table with the columns that are completed in memory
        QString name;
        std::optional<jet::Table> table;
        std::vector<Row_Block::Column> columns;
        std::optional<std::size_t> column(const QString& name) const;
    };
    using Lookup = std::unordered_map<std::int32_t, std::vector<std::uint32_t>>;
    using Part = std::optional<Condition>; // nothing: all rows
    struct Held_Rows {
        Part part;
        std::shared_ptr<Row_Block> block;
        std::map<std::size_t, Lookup> lookups; // by column of the block
        std::set<std::uint32_t> gone;          // deleted; they keep their places in the block
        Lookup& lookup(std::size_t column);
        void list(std::uint32_t row);
        void unlist(std::uint32_t row);
        void remove(std::uint32_t row);
    };
    struct Asked {
        Part part;
        int times = 0; // in turn
    };

    Shape shape(const QString& table);
    jet::Table stored_table(const QString& table);
    static std::vector<Row_Block::Column> chosen(const Shape& shape, const Statement& statement,
                                                 const std::vector<QString>& wanted);
    static Part quick_part(const Shape& shape, const std::vector<Condition>& where);
    /// @return nothing while reading the file is as good.
    Held_Rows* rows_in_memory(const Shape& shape, const std::vector<Condition>& where,
                              const std::vector<Row_Block::Column>& columns);
    Held_Rows& hold(const Shape& shape, const Part& part,
                    const std::vector<Row_Block::Column>& columns);
    static Found_Rows select_held(Held_Rows& held, const std::vector<Condition>& where);
    static Found_Rows select_stored(const Shape& shape, const std::vector<Condition>& where,
                                    std::vector<Row_Block::Column> columns);
    static void scan(const Shape& shape, const Statement& statement, Row_Block& block);
    static void sort(const Shape& shape, const Statement& statement, Found_Rows& found);
    Found_Rows select_joined(const Statement& statement);
    Held_Rows* held_with(const QString& table, const Row_Block& block);
    void let_go(const QString& table);
    struct Told {
        QString table;
        jet::Row_Place row;
        std::vector<Value> after;
    };
    void row_changed(std::uint32_t table, jet::Row_Place row, const std::vector<Value>& before,
                     const std::vector<Value>& after) override;
    /// What the change that was made last did to its own row. What a relation took along is no
    /// longer held.
    Told own_change();

    jet::Database database_;
    std::map<QString, std::vector<QString>> completed_; // by table, lower case
    std::map<QString, Held_Rows> held_;                 // by table, lower case
    std::map<QString, Asked> asked_;                    // by table, lower case
    std::vector<Told> told_;                            // by the change that is being made
    int guards_ = 0;
    int whole_guards_ = 0;
};

} // namespace ado
