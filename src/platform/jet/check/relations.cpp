#include "platform/jet/check/relations.h"

namespace jet::check {

namespace {

/// Bits of the flags of a relation.
constexpr std::uint32_t not_enforced = 0x2, cascades_updates = 0x100, cascades_deletes = 0x1000,
                        deletes_set_null = 0x2000;

/// The pairs of columns of one relation, in their order.
using Relation = std::vector<Relation_Row>;

/// One side of a relation: a logical index and its table.
struct Side {
    const Table& table;
    const Logical_Index& index;
    const Real_Index& real() const { return table.definition.reals[index.real]; }
    const Tree_State& tree() const { return table.trees[index.real]; }
    bool usable() const {
        return index.real < table.trees.size() && tree().complete && tree().sorted;
    }
    std::string words() const {
        return check::words("index ", quoted(index.name), " of table ",
                            quoted(table.definition.name));
    }
};

class Relations {
public:
    Relations(Inspection& inspection, const Catalogue& catalogue)
        : inspection_(inspection), catalogue_(catalogue) {}

    void check() {
        for (const Table& table : catalogue_.tables)
            for (const Logical_Index& index : table.definition.logicals)
                if (index.type == Logical_Index::relation) check_index({table, index});
        for (Relation& relation : grouped()) check_rows(relation);
    }

private:
    void fault(What what, std::uint32_t page, const std::string& sentence) {
        inspection_.findings.fault(what, page, sentence);
    }

    void check_index(const Side& side) {
        const std::uint32_t page = side.table.definition.page;
        const Table* other = catalogue_.table(side.index.partner_table);
        if (other == nullptr) {
            if (inspection_.all_seen)
                fault(What::relation_partner, page,
                      words("The ", side.words(), " belongs to a relation with the table on page ",
                            side.index.partner_table, ", which is not there."));
            return;
        }
        const Logical_Index* partner = other->definition.logical(side.index.partner_number);
        if (partner == nullptr || partner->type != Logical_Index::relation ||
            partner->partner_table != page || partner->partner_number != side.index.number)
            return fault(What::relation_partner, page,
                         words("The ", side.words(), " belongs to a relation with index ",
                               side.index.partner_number, " of table ",
                               quoted(other->definition.name), ", which does not name it back."));
        if (side.index.side + partner->side !=
                Logical_Index::referenced + Logical_Index::referencing ||
            side.index.side == 0 || partner->side == 0)
            return fault(What::relation_side, page,
                         words("The ", side.words(), " and its partner are not the two sides of ",
                               "a relation."));
        if (side.index.side == Logical_Index::referencing) check_pair(side, {*other, *partner});
    }

    void check_pair(const Side& foreign, const Side& primary) {
        const std::uint32_t page = foreign.table.definition.page;
        const std::string who =
            words("The ", foreign.words(), " and its partner, the ", primary.words());
        if (foreign.index.cascade_update != primary.index.cascade_update ||
            foreign.index.cascade_delete != primary.index.cascade_delete)
            fault(What::relation_cascade, page, who + ", differ in what they cascade.");
        if (!primary.real().unique())
            fault(What::relation_index, page, who + ", make a relation to keys that may repeat.");
        if (!same_types(foreign, primary))
            return fault(What::relation_types, page, who + ", stand on columns of other types.");
        if (foreign.usable() && primary.usable() && same_directions(foreign, primary))
            find_orphans(foreign, primary);
    }

    static bool same_types(const Side& a, const Side& b) {
        const auto& first = a.real().columns;
        const auto& second = b.real().columns;
        return std::ranges::equal(first, second, [&](const Key_Column& x, const Key_Column& y) {
            return a.table.definition.column(x.number)->type ==
                   b.table.definition.column(y.number)->type;
        });
    }

    static bool same_directions(const Side& a, const Side& b) {
        return std::ranges::equal(a.real().columns, b.real().columns, {}, &Key_Column::ascending,
                                  &Key_Column::ascending);
    }

    /// Both trees are in the order of their keys, so one walk along both finds every foreign key
    /// that has no primary one.
    void find_orphans(const Side& foreign, const Side& primary) {
        constexpr std::size_t most_told = 5;
        Leaf_Cursor keys(inspection_, primary.real().root), rows(inspection_, foreign.real().root);
        Key key, row;
        bool more = next(keys, key);
        std::size_t orphans = 0;
        for (Row_Place place; next(rows, row, &place);) {
            while (more && precedes(key, row)) more = next(keys, key);
            if ((more && key == row) || is_null(row, foreign)) continue;
            if (orphans++ < most_told)
                inspection_.findings.content(
                    What::relation_orphan, place.page,
                    words(Row_Name{foreign.table.definition.words, place},
                          " refers to a row of table ", quoted(primary.table.definition.name),
                          " that is not there (relation ", quoted(foreign.index.name), ")."));
        }
        if (orphans > most_told)
            inspection_.findings.content(What::relation_orphan, foreign.table.definition.page,
                                         words(foreign.table.definition.words, ": in all, ",
                                               orphans,
                                               " rows refer to rows that are not there (relation ",
                                               quoted(foreign.index.name), ")."));
    }

    static bool next(Leaf_Cursor& cursor, Key& key, Row_Place* place = nullptr) {
        if (!cursor.next(key)) return false;
        if (place != nullptr) *place = place_of(key);
        cut_place(key);
        return true;
    }

    // A key of nulls only has one byte for each column.
    static bool is_null(const Key& key, const Side& side) {
        return key.size() == side.real().columns.size();
    }

    std::vector<Relation> grouped() const {
        std::vector<Relation> out;
        for (const Relation_Row& row : catalogue_.relation_rows) {
            const auto found = std::ranges::find_if(out, [&](const Relation& relation) {
                return same_name(relation.front().relation, row.relation);
            });
            if (found == out.end())
                out.push_back({row});
            else
                found->push_back(row);
        }
        for (Relation& relation : out) std::ranges::sort(relation, {}, &Relation_Row::position);
        return out;
    }

    void check_rows(const Relation& relation) {
        const Relation_Row& first = relation.front();
        const auto refuse = [&](What what, std::string_view why) {
            const Table* rows = catalogue_.table(u"MSysRelationships");
            fault(what, rows == nullptr ? 0 : rows->definition.page,
                  words("Relation ", quoted(first.relation), " ", why, "."));
        };
        for (std::uint32_t i = 0; i < relation.size(); ++i) {
            const Relation_Row& row = relation[i];
            if (row.position != i || row.count != relation.size() || row.flags != first.flags ||
                !same_name(row.table, first.table) ||
                !same_name(row.referenced_table, first.referenced_table))
                return refuse(What::relation_rows, "has rows that do not fit together");
        }
        const Table* table = catalogue_.table(first.table);
        const Table* referenced = catalogue_.table(first.referenced_table);
        if (table == nullptr || referenced == nullptr) {
            if (inspection_.all_seen)
                refuse(What::relation_rows, "names a table that is not there");
            return;
        }
        for (const Relation_Row& row : relation)
            if (table->definition.column(row.column) == nullptr ||
                referenced->definition.column(row.referenced_column) == nullptr)
                return refuse(What::relation_rows, "names a column that is not there");
        check_enforcement(relation, *table, *referenced, refuse);
    }

    template <typename Refuse>
    void check_enforcement(const Relation& relation, const Table& table, const Table& referenced,
                           const Refuse& refuse) {
        const Relation_Row& first = relation.front();
        const auto& logicals = table.definition.logicals;
        const auto found = std::ranges::find_if(logicals, [&](const Logical_Index& index) {
            return index.type == Logical_Index::relation &&
                   index.side == Logical_Index::referencing &&
                   same_name(index.name, first.relation);
        });
        const bool enforced = (first.flags & not_enforced) == 0;
        if (enforced != (found != logicals.end()))
            return refuse(What::relation_index, enforced ? "is enforced, but has no index"
                                                         : "is not enforced, but has an index");
        if (!enforced) return;
        if (found->partner_table != referenced.definition.page)
            return refuse(What::relation_index, "has an index that leads to another table");
        if (!stands_on(relation, {table, *found}, &Relation_Row::column))
            return refuse(What::relation_index, "has an index over other columns");
        const Logical_Index* partner = referenced.definition.logical(found->partner_number);
        if (partner != nullptr &&
            !stands_on(relation, {referenced, *partner}, &Relation_Row::referenced_column))
            return refuse(What::relation_index, "leads to an index over other columns");
        if (found->cascade_update != update_byte(first.flags) ||
            found->cascade_delete != delete_byte(first.flags))
            refuse(What::relation_cascade, "has an index that cascades otherwise");
    }

    static bool stands_on(const Relation& relation, const Side& side,
                          std::u16string Relation_Row::*name) {
        return std::ranges::equal(
            relation, side.real().columns, [&](const Relation_Row& row, const Key_Column& key) {
                return same_name(row.*name, side.table.definition.column(key.number)->name);
            });
    }

    static std::uint32_t update_byte(std::uint32_t flags) {
        return (flags & cascades_updates) != 0 ? 1 : 0;
    }
    static std::uint32_t delete_byte(std::uint32_t flags) {
        if ((flags & cascades_deletes) != 0) return 1;
        return (flags & deletes_set_null) != 0 ? 2 : 0;
    }

    Inspection& inspection_;
    const Catalogue& catalogue_;
};

} // namespace

void check_relations(Inspection& inspection, const Catalogue& catalogue) {
    Relations(inspection, catalogue).check();
}

} // namespace jet::check
