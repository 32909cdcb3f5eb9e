#include "platform/jet/database.h"
#include "platform/jet/engine.h"
#include "platform/jet/lookup.h"
#include "platform/jet/rows/cell.h"
#include "platform/jet/rows/scan.h"

#include <algorithm>
#include <stdexcept>

namespace jet {

/// Either a list of rows or the pages of the table, one after the other.
struct Cursor::State {
    State(Engine& engine_, const Table_State& table)
        : engine(engine_), reading(engine_), definition(table.definition),
          source(engine_.pager(), *definition), stamp(engine_.changes()) {}

    bool advance();
    bool next_slot();
    bool fits() const;
    const Column_Record& column(std::size_t position) const {
        return definition->columns.at(position);
    }

    Engine& engine;
    Reading reading;
    std::shared_ptr<const Definition> definition;
    Row_Source source;
    std::uint64_t stamp;
    bool listed = false; ///< `rows` says what comes, not `pages`
    std::vector<Row_Place> rows;
    std::vector<Page_Number> pages;
    std::size_t place = 0; ///< in `rows` or `pages`
    std::size_t slot = 0;
    std::vector<Cell> filter;
};

bool Cursor::State::next_slot() {
    for (; place < pages.size(); ++place, slot = 0) {
        const auto count = source.page(pages[place]).count();
        while (slot < count)
            if (source.find({pages[place], static_cast<std::uint8_t>(slot++)})) return true;
    }
    return false;
}

bool Cursor::State::advance() {
    if (!listed) return next_slot();
    if (place == rows.size()) return false;
    const auto id = rows[place++];
    if (!source.find(id)) throw damaged(id.page, "an index refers to a row that is not there");
    return true;
}

bool Cursor::State::fits() const {
    return std::all_of(filter.begin(), filter.end(), [&](const Cell& cell) {
        return same_value(value_at(source, cell.column), cell.value);
    });
}

Cursor::Cursor(std::unique_ptr<State> state) : state_(std::move(state)) {}
Cursor::Cursor(Cursor&&) noexcept = default;
Cursor& Cursor::operator=(Cursor&&) noexcept = default;
Cursor::~Cursor() = default;

bool Cursor::next() {
    if (state_->stamp != state_->engine.changes())
        throw std::logic_error("a cursor that has outlived a change of the database");
    return state_->engine.watch([&] {
        while (state_->advance())
            if (state_->fits()) return true;
        return false;
    });
}

Row_Place Cursor::id() const { return state_->source.id(); }

bool Cursor::is_null(std::size_t column) const {
    const auto& record = state_->column(column);
    return !record.boolean() && !state_->source.row().has(record);
}

std::int32_t Cursor::integer(std::size_t column) const {
    const auto& record = state_->column(column);
    const auto& row = state_->source.row();
    switch (record.type) {
    case Column_Type::boolean:
        return row.has(record) ? 1 : 0;
    case Column_Type::byte:
    case Column_Type::integer:
    case Column_Type::long_integer:
        return row.has(record) ? decode_integer(record, row.cell(record)) : 0;
    default:
        throw std::logic_error("the column holds no whole numbers");
    }
}

void Cursor::text(std::size_t column, std::u16string& into) const {
    const auto& record = state_->column(column);
    if (record.type != Column_Type::text && record.type != Column_Type::memo)
        throw std::logic_error("the column holds no text");
    const auto& row = state_->source.row();
    into.clear();
    if (!row.has(record)) return;
    state_->engine.watch([&] {
        decode_text_cell(state_->source.pager(), *state_->definition->layout, record,
                         row.cell(record), into);
    });
}

std::u16string Cursor::text(std::size_t column) const {
    std::u16string text_;
    text(column, text_);
    return text_;
}

Value Cursor::value(std::size_t column) const {
    return state_->engine.watch([&] { return value_at(state_->source, column); });
}

std::vector<Value> Cursor::values() const {
    std::vector<Value> values;
    for (std::size_t i = 0; i < state_->definition->columns.size(); ++i) values.push_back(value(i));
    return values;
}

Cursor Table::rows(Order order) const {
    return engine_->watch([&] {
        const Reading reading(*engine_);
        const auto& table = engine_->table(id_);
        auto state = std::make_unique<Cursor::State>(*engine_, table);
        if (order == Order::key)
            if (auto rows = rows_in_key_order(*engine_, table)) {
                state->listed = true;
                state->rows = std::move(*rows);
            }
        if (!state->listed) state->pages = data_pages(engine_->pager(), *table.definition);
        return Cursor(std::move(state));
    });
}

/// Rows through an index; nothing where there is none, or where its tree is broken.
std::optional<std::vector<Row_Place>> Table::candidates(const Table_State& table,
                                                        std::span<const Cell> equal) const {
    std::vector<std::size_t> columns;
    for (const auto& cell : equal) columns.push_back(cell.column);
    const auto path = access_path(table, columns);
    if (!path) return std::nullopt;
    std::vector<Value> values;
    for (const auto column : path->columns)
        for (const auto& cell : equal)
            if (cell.column == column) {
                values.push_back(cell.value);
                break;
            }
    const bool left_out = table.shapes[path->real].ignore_nulls;
    if (left_out && std::all_of(values.begin(), values.end(), is_null)) return std::nullopt;
    try {
        return rows_with_key(*engine_, table, path->real, values);
    } catch (const Error& error) {
        if (error.kind != Failure::damaged) throw;
        engine_->note_damage(error);
        return std::nullopt;
    }
}

Cursor Table::find(std::span<const Cell> equal) const {
    return engine_->watch([&] {
        const Reading reading(*engine_);
        const auto& table = engine_->table(id_);
        auto state = std::make_unique<Cursor::State>(*engine_, table);
        state->filter.assign(equal.begin(), equal.end());
        if (auto rows = candidates(table, equal)) {
            state->listed = true;
            state->rows = std::move(*rows);
        } else {
            state->pages = data_pages(engine_->pager(), *table.definition);
        }
        return Cursor(std::move(state));
    });
}

} // namespace jet
