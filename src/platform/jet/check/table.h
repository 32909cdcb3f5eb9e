#pragma once

#include "platform/jet/check/long_value.h"
#include "platform/jet/check/tree.h"

#include <set>

namespace jet::check {

class Table_Check;
/// Gets every row that can be read.
using Row_Visitor = std::function<void(Table_Check&, const Row&, Row_Place)>;

/// A table that was checked.
struct Table {
    Definition definition;
    std::vector<Tree_State> trees; ///< one for each real index; empty if the check stopped early
};

/// Checks pages, rows, values, trees and counters of one table.
class Table_Check {
public:
    Table_Check(Inspection& inspection, const Definition& table);
    /// @return the state of its trees.
    std::vector<Tree_State> run(const Row_Visitor& visit);

    const Definition& definition() const { return table_; }
    /// For visitors: UTF-16 of a Text or Memo, empty for null.
    std::u16string text(const Row& row, const Column& column);
    /// For visitors: the first bytes of a Memo or OLE value that the check found good.
    std::vector<std::byte> long_value(const Row& row, const Column& column, std::size_t limit);

private:
    /// What is compared between the rows and one tree.
    struct Keys {
        std::vector<std::pair<const Column*, bool>> columns; ///< with "ascending"
        bool known = true; ///< false: only the places of rows are compared
        Tally tally;
    };
    using Seen_Row = std::function<void(const Row&, Row_Place)>;

    void claim_pages();
    void scan(bool first_time, const Seen_Row& seen);
    bool check_target(Row_Place from, Row_Place to);
    bool is_loop(Row_Place place);
    void report_unreached();
    void check_row(const Row& row, Row_Place place);
    void check_value(const Column& column, const Value& value, const Row_Name& where);
    void check_text_rules(const Column& column, const Value& value, const Row_Name& where);
    void count_autonumber(const Column& column, const Value& value);
    bool make_entry(std::uint32_t number, const Row& row, Row_Place place, Key& entry);
    void check_nulls(std::uint32_t number, const Row& row, const Row_Name& where);
    void check_trees();
    void explain(std::uint32_t number);
    void report_differences(std::uint32_t number, std::vector<Key>& rows, std::vector<Key>& tree);
    void check_counts();
    Long_Values* long_values(const Column& column);
    void row_fault(const Row_Name& where, const Problem& problem);

    Inspection& inspection_;
    const Definition& table_;
    std::vector<Long_Values> long_values_;
    std::vector<Keys> keys_;
    std::vector<Tree_State> trees_;
    Page_List pages_;           ///< data pages whose slots may be used
    Slot_Marks targets_;        ///< rows that have moved and were reached
    bool rows_complete_ = true; ///< every row could be read
    bool pages_complete_ = true;
    std::uint32_t rows_ = 0;
    std::uint32_t moved_ = 0, moved_in_ = 0; ///< rows reached by pointers, slots that should be
    std::int32_t highest_autonumber_ = 0;
    std::set<std::uint32_t> broken_values_; ///< long values of the row at hand: column numbers
};

} // namespace jet::check
