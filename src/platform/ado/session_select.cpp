// Finding rows: conditions, order, and the tables held in memory.

#include "platform/ado/error.h"
#include "platform/ado/session.h"

#include <algorithm>
#include <array>
#include <set>

namespace ado {

namespace {

using Columns = std::vector<Row_Block::Column>;

/// A condition on a column of the table.
struct Test {
    std::size_t column = 0;
    std::int32_t number = 0;
    bool whole = false;
};

/// Whether the table order can be had by sorting: the columns of the key are whole numbers.
bool sortable_key(const jet::Table& table, const Columns& columns) {
    const auto key = table.key();
    return std::all_of(key.begin(), key.end(), [&](std::size_t column) {
        return std::any_of(columns.begin(), columns.end(),
                           [&](const auto& c) { return c.source == column && c.whole; });
    });
}

jet::Cursor cursor_for(const jet::Table& table, const std::vector<Test>& tests, bool sortable) {
    const bool whole =
        std::all_of(tests.begin(), tests.end(), [](const Test& test) { return test.whole; });
    if (!sortable || !whole || tests.empty())
        return table.rows(sortable ? jet::Order::file : jet::Order::key);
    std::vector<jet::Cell> cells;
    for (const Test& test : tests) cells.push_back({test.column, test.number});
    return table.find(cells);
}

bool holds(const jet::Cursor& row, const std::vector<Test>& tests) {
    return std::all_of(tests.begin(), tests.end(), [&](const Test& test) {
        if (test.whole) return row.integer(test.column) == test.number && !row.is_null(test.column);
        return number(row.value(test.column)) == test.number;
    });
}

/// The same in a block, whose columns they name.
bool holds(const Row_Block& block, std::uint32_t row, const std::vector<Test>& tests) {
    return std::all_of(tests.begin(), tests.end(), [&](const Test& test) {
        return block.number(row, test.column) == test.number;
    });
}

bool contains(const std::vector<QString>& names, const QString& name) {
    return std::any_of(names.begin(), names.end(), [&](const QString& other) {
        return name.compare(other, Qt::CaseInsensitive) == 0;
    });
}

bool covers(const Columns& columns, const Columns& wanted) {
    return std::all_of(wanted.begin(), wanted.end(), [&](const auto& column) {
        return std::any_of(columns.begin(), columns.end(),
                           [&](const auto& other) { return other.name == column.name; });
    });
}

/// Rows with the numbers to sort by side by side: most of the time of loading a library would go
/// into looking them up at each comparison.
bool sort_by_numbers(const Row_Block& block, const std::vector<std::size_t>& columns,
                     std::vector<std::uint32_t>& order) {
    constexpr std::size_t most = 4;
    using Numbered_Row = std::pair<std::array<std::int32_t, most>, std::uint32_t>;
    const bool possible =
        columns.size() <= most && std::all_of(columns.begin(), columns.end(),
                                              [&](std::size_t c) { return block.all_whole(c); });
    if (!possible) return false;
    std::vector<Numbered_Row> rows(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        rows[i].second = order[i];
        for (std::size_t c = 0; c < columns.size(); ++c)
            rows[i].first[c] = block.whole(order[i], columns[c]);
    }
    if (std::is_sorted(rows.begin(), rows.end())) return true;
    std::sort(rows.begin(), rows.end());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = rows[i].second;
    return true;
}

} // namespace

Columns Session::chosen(const Shape& shape, const Statement& statement,
                        const std::vector<QString>& wanted) {
    std::vector<QString> names = wanted;
    names.insert(names.end(), statement.order_by.begin(), statement.order_by.end());
    for (const Condition& condition : statement.where) names.push_back(condition.column);
    for (const QString& name : names)
        if (!shape.column(name))
            throw Error(Failure::not_found, (shape.name + u'.' + name).toStdString(),
                        "no such column");
    if (wanted.empty()) return shape.columns;
    const auto key = shape.table ? shape.table->key() : std::vector<std::size_t>();
    Columns columns;
    for (const auto& column : shape.columns) {
        const bool in_key =
            column.source && std::find(key.begin(), key.end(), *column.source) != key.end();
        if (in_key || contains(names, column.name)) columns.push_back(column);
    }
    return columns;
}

Found_Rows Session::select(const Statement& statement, const std::vector<QString>& wanted) {
    if (statement.kind == Statement::Kind::select_joined) return select_joined(statement);
    const Shape table = shape(statement.table);
    Columns columns = chosen(table, statement, wanted);
    const bool never =
        !table.table ||
        std::any_of(statement.where.begin(), statement.where.end(), [&](const auto& condition) {
            return !table.columns[*table.column(condition.column)].source;
        });
    if (never) return Found_Rows{std::make_shared<Row_Block>(std::move(columns)), {}};
    Held_Rows* const held = rows_in_memory(table, statement.where, columns);
    Found_Rows found = held != nullptr ? select_held(*held, statement.where)
                                       : select_stored(table, statement.where, std::move(columns));
    sort(table, statement, found);
    return found;
}

/// The first condition whose rows an index finds.
Session::Part Session::quick_part(const Shape& shape, const std::vector<Condition>& where) {
    for (const Condition& condition : where) {
        const auto& column = shape.columns[*shape.column(condition.column)];
        if (column.whole && shape.table->quick(std::array{*column.source})) return condition;
    }
    return std::nullopt;
}

Session::Held_Rows* Session::rows_in_memory(const Shape& shape, const std::vector<Condition>& where,
                                            const Columns& columns) {
    if (guards_ == 0 || where.empty()) return nullptr;
    if (!sortable_key(*shape.table, shape.columns)) return nullptr;
    if (whole_guards_ > 0) return &hold(shape, std::nullopt, columns);
    const Part part = quick_part(shape, where);
    if (part && where.size() == 1) return nullptr; // the index leads to no others
    Asked& asked = asked_[shape.name.toLower()];
    if (asked.part != part) asked = {part};
    return ++asked.times > 1 ? &hold(shape, part, columns) : nullptr;
}

Session::Held_Rows& Session::hold(const Shape& shape, const Part& part, const Columns& columns) {
    Held_Rows& held = held_[shape.name.toLower()];
    const bool same = held.block && held.part == part;
    if (same && covers(held.block->columns(), columns)) return held;
    const Columns& kept = same ? shape.columns : columns;
    if (part) {
        held = {part, select_stored(shape, {*part}, kept).block, {}, {}};
        return held;
    }
    const bool for_reading =
        whole_guards_ > 0 && !shape.table->key().empty(); // else their places order rows
    held = {part, std::make_shared<Row_Block>(kept, for_reading), {}, {}};
    for (jet::Cursor rows = shape.table->rows(jet::Order::file); rows.next();)
        held.block->append(rows);
    return held;
}

Session::Lookup& Session::Held_Rows::lookup(std::size_t column) {
    const auto [found, is_new] = lookups.try_emplace(column);
    if (!is_new) return found->second;
    std::vector<std::uint32_t>* bucket = nullptr;
    std::optional<std::int32_t> last; // rows of one set mostly stand together
    for (std::uint32_t row = 0; row < block->size(); ++row) {
        const auto number = block->number(row, column);
        if (!number || gone.contains(row)) continue;
        if (number != last) bucket = &found->second[*number];
        last = number;
        bucket->push_back(row);
    }
    for (auto& [number, rows] : found->second) rows.shrink_to_fit();
    return found->second;
}

Found_Rows Session::select_held(Held_Rows& held, const std::vector<Condition>& where) {
    Found_Rows found{held.block, {}};
    std::vector<Test> tests;
    for (const Condition& condition : where)
        tests.push_back({held.block->known_column(condition.column), condition.number});
    // all rows of a part hold its own condition, so that another one narrows the search
    const Test& narrow = held.part ? tests.back() : tests.front();
    const Lookup& lookup = held.lookup(narrow.column);
    const auto bucket = lookup.find(narrow.number);
    if (bucket == lookup.end()) return found;
    if (tests.size() == 1) {
        found.order = bucket->second;
        return found;
    }
    std::copy_if(bucket->second.begin(), bucket->second.end(), std::back_inserter(found.order),
                 [&](std::uint32_t row) { return holds(*held.block, row, tests); });
    return found;
}

Found_Rows Session::select_stored(const Shape& shape, const std::vector<Condition>& where,
                                  Columns columns) {
    Found_Rows found{std::make_shared<Row_Block>(std::move(columns)), {}};
    std::vector<Test> tests;
    for (const Condition& condition : where) {
        const auto& column = shape.columns[*shape.column(condition.column)];
        if (!fits(condition.number, shape.table->columns()[*column.source].type)) return found;
        tests.push_back({*column.source, condition.number, column.whole});
    }
    jet::Cursor rows = cursor_for(*shape.table, tests, sortable_key(*shape.table, shape.columns));
    while (rows.next())
        if (holds(rows, tests)) found.block->append(rows);
    found.order.resize(found.block->size());
    for (std::uint32_t row = 0; row < found.order.size(); ++row) found.order[row] = row;
    return found;
}

void Session::sort(const Shape& shape, const Statement& statement, Found_Rows& found) {
    const Row_Block& block = *found.block;
    std::vector<std::size_t> columns;
    for (const QString& name : statement.order_by) columns.push_back(block.known_column(name));
    const auto key = shape.table->key();
    if (sortable_key(*shape.table, shape.columns)) // otherwise read in that order
        for (const std::size_t part : key)
            columns.push_back(
                block.known_column(QString::fromStdU16String(shape.table->columns()[part].name)));
    if (!key.empty() && sort_by_numbers(block, columns, found.order)) return;
    const auto before = [&](std::uint32_t one, std::uint32_t other) {
        for (const std::size_t column : columns)
            if (const int order = block.compare(one, other, column); order != 0) return order < 0;
        return key.empty() && block.id(one) < block.id(other);
    };
    if (!std::is_sorted(found.order.begin(), found.order.end(), before))
        std::stable_sort(found.order.begin(), found.order.end(), before);
}

Found_Rows Session::select_joined(const Statement& statement) {
    using Number = std::optional<std::int32_t>;
    const QString& column = statement.order_by.front();
    Statement all;
    all.table = statement.table;
    const Found_Rows rows = select(all, {column});
    all.table = statement.joined_table;
    const Found_Rows partners = select(all, {statement.joined_column, statement.shown_column});
    std::multimap<std::int32_t, Number> shown;
    const Row_Block& joined = *partners.block;
    for (const std::uint32_t row : partners.order)
        if (const auto number = joined.number(row, joined.known_column(statement.joined_column)))
            shown.emplace(*number, joined.number(row, joined.known_column(statement.shown_column)));
    std::set<std::pair<Number, Number>> distinct;
    for (const std::uint32_t row : rows.order) {
        const Number number = rows.block->number(row, rows.block->known_column(column));
        const auto [first, last] =
            number ? shown.equal_range(*number) : std::pair(shown.end(), shown.end());
        if (first == last) distinct.emplace(number, std::nullopt);
        for (auto partner = first; partner != last; ++partner)
            distinct.emplace(number, partner->second);
    }
    Found_Rows found{std::make_shared<Row_Block>(
                         Columns{{column, 0, false}, {statement.shown_column, 1, false}}),
                     {}};
    const auto value_of = [](Number number) { return number ? value(*number) : null(); };
    for (const auto& [left, right] : distinct) {
        found.order.push_back(static_cast<std::uint32_t>(found.block->size()));
        found.block->append({}, std::vector<Value>{value_of(left), value_of(right)});
    }
    return found;
}

} // namespace ado
