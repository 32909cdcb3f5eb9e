#pragma once

#include "platform/jet/engine.h"
#include "platform/jet/index/index_tree.h"
#include "platform/jet/rows/row_heap.h"
#include "platform/jet/rows/row_layout.h"

#include <vector>

namespace jet {

/// A row as it stands in the file, located once for all that is done with it.
struct Stored_Row {
    Row_Place id;
    Row_Place place;           ///< where its bytes are
    std::vector<Value> values; ///< those of indexes; others only where somebody wants them
    Raw_Cells cells;
    std::size_t size = 0; ///< of the whole row, in bytes
};

/// Stores, changes and removes rows of one table with everything that hangs on them: long values,
/// all indexes, maps and counts. It checks nothing: whatever may be refused was refused before.
class Table_Writer {
public:
    Table_Writer(Pager& pager, Heap_Hints& hints, const Table_State& table)
        : pager_(&pager), space_(pager), hints_(&hints), table_(&table),
          definition_(table.definition.get()) {}

    /// @param all also the values that are in no index. @return nothing when there is no such row
    std::optional<Stored_Row> stored(Row_Place id, bool all) const;
    Row_Place insert(const New_Row& row);
    /// The cells that are not set keep their bytes.
    void update(const Stored_Row& before, const New_Row& row);
    void erase(const Stored_Row& row);

    /// Writes the row anew with all columns of the table, for a table that has got its first
    /// variable column. @param before the definition by which the rows were written.
    void rewrite(Row_Place id, const Definition& before);
    void set_auto_number(std::int32_t last);
    std::int32_t last_auto_number() const;

    /// The tree of a real index.
    Index_Tree tree(std::size_t real) const;
    /// The entry of a row in a real index; nothing where nulls keep it out.
    std::optional<Bytes> key(std::size_t real, const std::vector<Value>& values) const;

private:
    Row_Heap heap() const;
    Row_Heap long_heap(const Column_Record& column) const;
    std::optional<Bytes> stored_cell(const New_Row& row, std::size_t column) const;
    Bytes store_long(const Column_Record& column, const Bytes& data) const;
    void free_long(const Column_Record& column, const Bytes& cell) const;
    void free_long_values(const Raw_Cells& cells) const;
    void replace_row(Row_Place id, Row_Place place, const Bytes& row);
    void add_entry(std::size_t real, const Bytes& key, Row_Place id);
    void add_to_count(std::size_t at, std::int32_t by);

    Pager* pager_;
    mutable Page_Space space_;
    Heap_Hints* hints_;
    const Table_State* table_;
    const Definition* definition_;
};

} // namespace jet
