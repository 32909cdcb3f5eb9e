// Finding rows: conditions, order, and the tables held in memory.

#include "platform/ado/session.h"
#include "platform/ado/translated.h"

#include <algorithm>
#include <array>
#include <set>

using namespace Qt::Literals::StringLiterals;

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

bool holds(const Row_Block& block, std::uint32_t row, const Statement& statement) {
    return std::all_of(statement.where.begin(), statement.where.end(), [&](const Condition& test) {
        return block.number(row, *block.column(test.column)) == test.number;
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
            throw Error(Failure::not_found, shape.name + QLatin1Char('.') + name,
                        u"no such column"_s);
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
    return translated([&] {
        if (statement.kind == Statement::Kind::select_joined) return select_joined(statement);
        const Shape table = shape(statement.table);
        Columns columns = chosen(table, statement, wanted);
        const bool never =
            !table.table ||
            std::any_of(statement.where.begin(), statement.where.end(), [&](const auto& condition) {
                return !table.columns[*table.column(condition.column)].source;
            });
        if (never) return Found_Rows{std::make_shared<Row_Block>(std::move(columns)), {}};
        Found_Rows found = worth_holding(table, statement)
                               ? select_held(table, statement, columns)
                               : select_stored(table, statement, std::move(columns));
        sort(table, statement, found);
        return found;
    });
}

bool Session::worth_holding(const Shape& shape, const Statement& statement) {
    if (guards_ == 0 || statement.where.empty()) return false;
    if (!sortable_key(*shape.table, shape.columns)) return false;
    if (whole_guards_ > 0) return true;
    std::vector<std::size_t> columns;
    for (const Condition& condition : statement.where)
        columns.push_back(*shape.columns[*shape.column(condition.column)].source);
    return !shape.table->quick(columns) && ++asked_[shape.name.toLower()] > 1;
}

Session::Held_Table& Session::held(const Shape& shape, const Columns& columns) {
    Held_Table& table = held_[shape.name.toLower()];
    if (table.block && covers(table.block->columns(), columns)) return table;
    const bool for_reading =
        whole_guards_ > 0 && !shape.table->key().empty(); // else their places order rows
    table = {std::make_shared<Row_Block>(table.block ? shape.columns : columns, for_reading), {}};
    for (jet::Cursor rows = shape.table->rows(jet::Order::file); rows.next();)
        table.block->append(rows);
    return table;
}

Found_Rows Session::select_held(const Shape& shape, const Statement& statement,
                                const Columns& columns) {
    Held_Table& table = held(shape, columns);
    const std::size_t column = *table.block->column(statement.where.front().column);
    const auto [lookup, is_new] = table.lookups.try_emplace(column);
    if (is_new) {
        const Row_Block& block = *table.block;
        for (std::uint32_t row = 0; row < block.size(); ++row)
            if (const auto number = block.number(row, column))
                lookup->second[*number].push_back(row);
        for (auto& [number, rows] : lookup->second) rows.shrink_to_fit();
    }
    Found_Rows found{table.block, {}};
    const auto bucket = lookup->second.find(statement.where.front().number);
    if (bucket == lookup->second.end()) return found;
    if (statement.where.size() == 1) {
        found.order = bucket->second;
        return found;
    }
    std::copy_if(bucket->second.begin(), bucket->second.end(), std::back_inserter(found.order),
                 [&](std::uint32_t row) { return holds(*table.block, row, statement); });
    return found;
}

Found_Rows Session::select_stored(const Shape& shape, const Statement& statement, Columns columns) {
    Found_Rows found{std::make_shared<Row_Block>(std::move(columns)), {}};
    std::vector<Test> tests;
    for (const Condition& condition : statement.where) {
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
    for (const QString& name : statement.order_by) columns.push_back(*block.column(name));
    const auto key = shape.table->key();
    if (sortable_key(*shape.table, shape.columns)) // otherwise read in that order
        for (const std::size_t part : key)
            columns.push_back(
                *block.column(QString::fromStdU16String(shape.table->columns()[part].name)));
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
        if (const auto number = joined.number(row, *joined.column(statement.joined_column)))
            shown.emplace(*number, joined.number(row, *joined.column(statement.shown_column)));
    std::set<std::pair<Number, Number>> distinct;
    for (const std::uint32_t row : rows.order) {
        const Number number = rows.block->number(row, *rows.block->column(column));
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
