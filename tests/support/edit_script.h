#pragma once

#include "platform/jet/database.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <stdexcept>

/// Bytes that drive a run of changes: any bytes are a valid script.
class Edit_Script {
public:
    explicit Edit_Script(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool at_end() const { return at_ >= bytes_.size(); }
    std::uint32_t byte() { return at_end() ? 0U : bytes_[at_++]; }
    std::uint32_t number() { return byte() | byte() << 8 | byte() << 16 | byte() << 24; }
    /// 0 up to, not including, `end`.
    std::size_t below(std::size_t end) { return end == 0 ? 0 : number() % end; }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

namespace edits {

using jet::Cell;
using jet::Column_Type;
using jet::Value;

constexpr std::size_t most_rows = 200; ///< looked at when one is chosen

inline std::u16string random_text(Edit_Script& script, std::size_t most) {
    constexpr char16_t units[] = {u'a',   u'Z',   u' ',   u'-',   u'ä', u'ß',  u'ö',  0x20AC,
                                  0x0416, 0x3042, 0x0301, 0x00AD, u'0', u'\'', u'\t', 0x4E2D};
    const std::size_t length = script.byte() % 4 == 0 ? script.below(most + 3) : script.byte() % 24;
    std::u16string text;
    while (text.size() < std::min<std::size_t>(length, 24)) {
        text += units[script.byte() % std::size(units)];
        if (script.byte() % 64 == 0) text += u"\xD83D\xDE00";
    }
    text.resize(std::max(text.size(), length), units[script.byte() % std::size(units)]);
    return text;
}

inline jet::Bytes random_bytes(Edit_Script& script, std::size_t most) {
    const std::size_t size = script.byte() % 4 == 0 ? script.below(most + 3) : script.byte() % 24;
    return jet::Bytes(size, static_cast<std::byte>(script.byte()));
}

inline std::int32_t random_number(Edit_Script& script) {
    constexpr std::int32_t edges[] = {0, 1, -1, 127, 255, 256, 32767, 32768, -32768, 0x7FFFFFFF};
    const std::uint32_t kind = script.byte();
    if (kind < 40) return edges[kind % std::size(edges)];
    if (kind < 200) return static_cast<std::int32_t>(script.byte() % 64);
    return static_cast<std::int32_t>(script.number());
}

inline Value random_value(const jet::Column& column, Edit_Script& script) {
    if (script.byte() % 12 == 0) return jet::Null{};
    switch (column.type) {
    case Column_Type::boolean:
        return script.byte() % 2 == 0;
    case Column_Type::byte:
        return static_cast<std::int32_t>(script.byte());
    case Column_Type::integer:
        return static_cast<std::int32_t>(static_cast<std::int16_t>(random_number(script)));
    case Column_Type::long_integer:
        return random_number(script);
    case Column_Type::single_float:
        return (random_number(script) % 4096) / 8.0; // what four bytes can hold
    case Column_Type::double_float:
        return random_number(script) / 3.0;
    case Column_Type::currency:
        return jet::Currency{random_number(script)};
    case Column_Type::date:
        return jet::Date{random_number(script) % 60000 + 0.25};
    case Column_Type::binary:
        return random_bytes(script, column.length);
    case Column_Type::ole:
        return random_bytes(script, 9000);
    case Column_Type::text:
        return random_text(script, column.length);
    case Column_Type::memo:
        return random_text(script, 5000);
    case Column_Type::guid: {
        jet::Guid guid;
        guid.bytes.fill(static_cast<std::byte>(script.byte()));
        return guid;
    }
    case Column_Type::decimal:
        return jet::Decimal{.negative = script.byte() % 2 == 0,
                            .magnitude = {0, 0, 0, script.number() % 1000 + 1},
                            .scale = column.scale};
    }
    return jet::Null{};
}

inline std::vector<Cell> random_cells(const jet::Table& table, Edit_Script& script) {
    std::vector<Cell> cells;
    const auto& columns = table.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (script.byte() % 8 == 0) continue;
        if (!columns[i].auto_number)
            cells.push_back({i, random_value(columns[i], script)});
        else if (script.byte() % 16 == 0) // small ones, or soon no number is left to give
            cells.push_back({i, static_cast<std::int32_t>(script.byte())});
    }
    return cells;
}

inline std::optional<jet::Row_Place> random_row(const jet::Table& table, Edit_Script& script) {
    std::vector<jet::Row_Place> ids;
    auto rows = table.rows(jet::Order::file);
    const std::size_t skip = script.below(std::max<std::size_t>(table.row_count(), 1));
    for (std::size_t i = 0; rows.next() && ids.size() < most_rows; ++i)
        if (i >= skip / 2) ids.push_back(rows.id());
    if (ids.empty()) return {};
    return ids[script.below(ids.size())];
}

// An empty text becomes null where the column forbids it, a Boolean is never null.
inline bool reads_as(const jet::Column& column, const Value& written, const Value& read) {
    if (written == read) return true;
    if (column.type == Column_Type::boolean) return jet::is_null(written) && read == Value(false);
    if (jet::is_null(written)) return true; // a default value or an autonumber may stand there
    const auto* text = std::get_if<std::u16string>(&written);
    return text != nullptr && text->empty() && !column.allow_zero_length && jet::is_null(read);
}

inline void expect_cells(const jet::Table& table, jet::Row_Place id,
                         const std::vector<Cell>& cells) {
    const auto row = table.row(id);
    if (!row) throw std::logic_error("a row is gone right after it was written");
    for (const Cell& cell : cells)
        if (!reads_as(table.columns()[cell.column], cell.value, (*row)[cell.column]))
            throw std::logic_error("cell " + std::to_string(cell.column) +
                                   " reads otherwise than it was written");
}

inline void change_row(const jet::Table& table, Edit_Script& script) {
    const std::uint32_t kind = script.byte() % 8;
    const std::vector<Cell> cells = random_cells(table, script);
    if (kind < 4) {
        expect_cells(table, table.insert(cells).id, cells);
        return;
    }
    const auto id = random_row(table, script);
    if (!id) return;
    if (kind < 7) {
        table.update(*id, cells);
        expect_cells(table, *id, cells);
    } else {
        table.erase(*id);
    }
}

inline void change_or_be_refused(const jet::Table& table, Edit_Script& script) {
    try {
        change_row(table, script);
    } catch (const jet::Error& error) {
        if (error.kind != jet::Failure::refused) throw;
    }
}

} // namespace edits

/// Inserts, changes and deletes rows of all tables that can be written, in transactions that are
/// kept or given up, until the script ends. What the database refuses for its data is no failure;
/// anything else that it throws goes on to the caller, and so does std::logic_error when a row
/// reads otherwise than it was written.
inline void run_edits(jet::Database& database, Edit_Script& script) {
    std::vector<jet::Table> tables;
    for (const jet::Table& table : database.tables())
        if (table.blocked() == jet::Blocked::no) tables.push_back(table);
    while (!script.at_end() && !tables.empty()) {
        jet::Transaction transaction(database);
        const std::size_t changes = 1 + script.byte() % 24;
        for (std::size_t i = 0; i < changes && !script.at_end(); ++i)
            edits::change_or_be_refused(tables[script.byte() % tables.size()], script);
        if (script.byte() % 8 != 0) transaction.commit();
    }
}

namespace edits {

inline jet::Column column(const std::u16string& name,
                          jet::Column_Type type = jet::Column_Type::long_integer,
                          std::size_t length = 0) {
    jet::Column column;
    column.name = name;
    column.type = type;
    column.length = length;
    column.auto_number = name == u"ID";
    if (type == jet::Column_Type::decimal) {
        column.precision = 18;
        column.scale = 2;
    }
    return column;
}

inline jet::Index index(const std::u16string& name, std::vector<jet::Index_Column> columns) {
    jet::Index index;
    index.name = name;
    index.columns = std::move(columns);
    index.primary = name == u"PrimaryKey";
    return index;
}

/// From column Above of one table to the key of another.
inline jet::Relation relation(const std::u16string& above, const std::u16string& below,
                              bool cascades) {
    jet::Relation relation;
    relation.name = above + below;
    relation.table = above;
    relation.columns = {u"ID"};
    relation.foreign_table = below;
    relation.foreign_columns = {u"Above"};
    relation.cascade_update = relation.cascade_delete = cascades;
    return relation;
}

/// A table with a column of each type; all that can have one have an index in each direction.
inline void make_kinds(jet::Database& database) {
    using Type = jet::Column_Type;
    std::vector<jet::Column> columns{column(u"ID"), column(u"Ole", Type::ole),
                                     column(u"Memo", Type::memo)};
    std::vector<jet::Index> indexes{index(u"PrimaryKey", {{u"ID"}})};
    for (const jet::Column& kind :
         {column(u"Yes", Type::boolean), column(u"Byte", Type::byte),
          column(u"Integer", Type::integer), column(u"Long"), column(u"Currency", Type::currency),
          column(u"Single", Type::single_float), column(u"Double", Type::double_float),
          column(u"Date", Type::date), column(u"Binary", Type::binary, 100),
          column(u"Text", Type::text, 120), column(u"Decimal", Type::decimal),
          column(u"Guid", Type::guid)}) {
        columns.push_back(kind);
        indexes.push_back(index(u"Up" + kind.name, {{kind.name}}));
        indexes.push_back(index(
            u"Down" + kind.name,
            kind.name == u"Long" ? std::vector<jet::Index_Column>{{kind.name, false}}
                                 : std::vector<jet::Index_Column>{{kind.name, false}, {u"Long"}}));
        indexes.back().ignore_nulls = true;
    }
    database.create_table(u"Kinds", columns, indexes);
}

} // namespace edits

/// Makes tables of every type, with keys in both directions, and a chain of relations.
inline void make_tables_of_all_kinds(jet::Database& database) {
    edits::make_kinds(database);
    for (const std::u16string name : {u"Upper", u"Middle", u"Lower"}) {
        jet::Column title = edits::column(u"Title", jet::Column_Type::text, 60);
        title.allow_zero_length = title.compressed = true;
        jet::Index titles = edits::index(u"Title", {{u"Title"}});
        titles.unique = name == u"Upper";
        database.create_table(name,
                              std::vector{edits::column(u"ID"), edits::column(u"Above"), title},
                              std::vector{edits::index(u"PrimaryKey", {{u"ID"}}), titles});
    }
    database.add_relation(edits::relation(u"Upper", u"Middle", true));
    database.add_relation(edits::relation(u"Middle", u"Lower", false));
}
