#pragma once

#include "platform/jet/engine.h"
#include "platform/jet/table_writer.h"

#include <deque>
#include <map>
#include <set>
#include <span>
#include <vector>

namespace jet {

/// One insert, update or delete with all that relations entail. First everything is planned, and
/// whatever must be refused is refused; apply() then changes the file and can only fail when the
/// file or the medium does.
class Statement {
public:
    explicit Statement(Engine& engine, Origin origin = Origin::typed)
        : engine_(engine), origin_(origin == Origin::orphan ? Origin::restored : origin),
          orphan_(origin == Origin::orphan) {}

    void insert(Page_Number table, std::span<const Cell> cells);
    void update(Page_Number table, Row_Place row, std::span<const Cell> cells);
    void erase(Page_Number table, Row_Place row);
    /// Refuses what insert() would for the values alone, whatever the other rows hold.
    void check(Page_Number table, std::span<const Cell> cells);
    void check(Page_Number table, Row_Place row, std::span<const Cell> cells);
    /// @return the row that was inserted, if any.
    Inserted apply();
    /// Tells the engine's watcher what has been changed, rows that a relation took along first.
    void tell() const;

private:
    enum class Kind { insert, update, erase };
    struct Planned : New_Row {
        Kind kind = Kind::insert;
        Page_Number table = 0;
        Stored_Row stored; ///< as it was; of one that is inserted only the place, once it has one
        std::optional<std::int32_t> auto_number; ///< set by this statement
        /// The number is the next one, and those behind it are free up to this.
        std::optional<std::int32_t> free_numbers;
    };
    /// Autonumbers that no row has, those behind `last` up to `end`.
    struct Numbers {
        std::int32_t last, end;
    };
    /// A row that refers to one that goes or gets another key, in a relation without cascades.
    struct Forbidding {
        Page_Number table;
        Row_Place row;
        std::size_t real;
        Bytes reference;
        std::u16string relation;
    };

    [[noreturn]] static void refuse_for_others(std::u16string_view subject,
                                               const std::string& reason);
    const Table_State& writable_table(Page_Number id);
    Table_Writer writer(const Table_State& table);
    std::vector<Value> values_after(const Planned& row) const;
    Planned* planned(Page_Number table, Row_Place row);
    Planned& plan(const Table_State& table, Row_Place row, Kind kind);
    void plan_update(const Table_State& table, Row_Place row, std::span<const Cell> cells);

    void set_cell(const Table_State& table, Planned& row, std::size_t column, const Value& value);
    Planned& plan_insert(const Table_State& table, std::span<const Cell> cells);
    void number_row(const Table_State& table, Planned& row);
    Numbers free_numbers(const Table_State& table, std::size_t column);
    std::int32_t highest_number(const Table_State& table, std::size_t column);
    Numbers gap_in_numbers(const Table_State& table, std::size_t column, std::int32_t last);

    void finish_plan();
    void follow_relations(Planned& row);
    void follow(const Table_State& table, Planned& row, const Logical_Index& index);
    void follow_to(const Table_State& child, Row_Place child_row, const Planned& row,
                   const Logical_Index& index, const std::vector<Cell>& new_reference,
                   const Bytes& reference);
    const Logical_Index& partner(const Logical_Index& index, const Table_State& other) const;

    void check_row(Planned& row);
    void check_values(const Table_State& table, Planned& row);
    void check_index(const Table_State& table, const Planned& row, std::size_t real);
    void check_reference(const Table_State& table, const Planned& row, const Logical_Index& index);
    bool keeps_key(const Table_State& table, Row_Place row, std::size_t real, const Bytes& key);
    bool will_have_key(const Table_State& table, std::size_t real, const Bytes& key);

    Engine& engine_;
    Origin origin_;
    bool orphan_;              ///< relations are not asked for a partner
    std::deque<Planned> plan_; ///< references stay valid while it grows
    std::map<std::pair<Page_Number, Row_Place>, std::size_t> places_;
    std::deque<std::size_t> to_follow_;
    std::vector<Forbidding> forbidding_;
    std::map<std::pair<Page_Number, std::size_t>, std::set<Bytes>> new_keys_; ///< of unique indexes
};

} // namespace jet
