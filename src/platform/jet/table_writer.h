#pragma once

#include "platform/jet/engine.h"
#include "platform/jet/index_tree.h"
#include "platform/jet/row_encoder.h"
#include "platform/jet/row_heap.h"

#include <vector>

namespace jet {

/// Stores, changes and removes rows of one table with everything that hangs on them: long values,
/// all indexes, maps and counts. It checks nothing: whatever may be refused was refused before.
class Table_Writer {
public:
    Table_Writer(Pager& pager, Heap_Hints& hints, const Table_State& table)
        : pager_(&pager), space_(pager), hints_(&hints), table_(&table),
          definition_(table.definition.get()) {}

    /// @param values fitted, one for each column of the definition.
    Row_Id insert(const std::vector<Value>& values);
    /// @param changed which of the values are new; the cells of the others keep their bytes.
    void update(Row_Id id, const std::vector<Value>& values, const std::vector<bool>& changed);
    void erase(Row_Id id);

    /// Writes the row anew with all columns of the table, for a table that has got its first
    /// variable column. @param before the definition by which the rows were written.
    void rewrite(Row_Id id, const Definition& before);
    /// Raises the counter of autonumbers to a number that was stored.
    void note_auto_number(std::int32_t number);
    std::int32_t last_auto_number() const;

    /// The tree of a real index.
    Index_Tree tree(std::size_t real) const;
    /// The entry of a row in a real index; nothing where nulls keep it out.
    std::optional<Bytes> key(std::size_t real, const std::vector<Value>& values) const;

private:
    Row_Heap heap() const;
    Row_Heap long_heap(const Column_Record& column) const;
    Bytes stored_cell(const Column_Record& column, const Value& value) const;
    Bytes store_long(const Column_Record& column, const Bytes& data) const;
    void free_long(const Column_Record& column, const Bytes& cell) const;
    void free_long_values(const Raw_Cells& cells) const;
    void replace_row(Row_Id id, Row_Id place, const Bytes& row);
    void add_entry(std::size_t real, const Bytes& key, Row_Id id);
    void add_to_count(std::size_t at, std::int32_t by);
    std::vector<Value> values_of(const Row_Source& source) const;

    Pager* pager_;
    mutable Page_Space space_;
    Heap_Hints* hints_;
    const Table_State* table_;
    const Definition* definition_;
};

} // namespace jet
