#include "platform/jet/database.h"

#include "platform/jet/check/check.h"
#include "platform/jet/creation.h"
#include "platform/jet/engine.h"
#include "platform/jet/format/text.h"
#include "platform/jet/lookup.h"
#include "platform/jet/schema_change.h"
#include "platform/jet/statement.h"

#include <algorithm>

namespace jet {

const std::u16string& Table::name() const { return engine_->table(id_).object.name; }
const std::vector<Column>& Table::columns() const { return engine_->table(id_).columns; }
const std::vector<Index>& Table::indexes() const { return engine_->table(id_).indexes; }

std::optional<std::size_t> Table::column(std::u16string_view name) const {
    const auto& all = columns();
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const Column& column) { return same_name(column.name, name); });
    if (found == all.end()) return std::nullopt;
    return static_cast<std::size_t>(found - all.begin());
}

std::vector<std::size_t> Table::key() const {
    const auto& definition = *engine_->table(id_).definition;
    std::vector<std::size_t> columns;
    if (const auto* primary = definition.primary_key())
        for (const auto& part : definition.reals[primary->real].columns)
            columns.push_back(position_of(definition, part.column));
    return columns;
}

std::size_t Table::row_count() const {
    return engine_->watch([&] {
        const Reading reading(*engine_);
        const auto& layout = engine_->layout();
        return std::size_t{View(*engine_->pager().read(id_), id_).u32(layout.row_count)};
    });
}

Blocked Table::blocked() const {
    const auto file = engine_->status().blocked;
    if (file != Blocked::no) return file;
    return engine_->table(id_).computable ? Blocked::no : Blocked::foreign_index;
}

bool Table::quick(std::span<const std::size_t> columns) const {
    return access_path(engine_->table(id_), columns).has_value();
}

std::optional<std::vector<Value>> Table::row(Row_Place id) const {
    return engine_->watch([&]() -> std::optional<std::vector<Value>> {
        const Reading reading(*engine_);
        const auto& table = engine_->table(id_);
        Row_Source source(engine_->pager(), *table.definition);
        if (!source.find(id)) return std::nullopt;
        std::vector<Value> values;
        for (std::size_t i = 0; i < table.columns.size(); ++i)
            values.push_back(value_at(source, i));
        return values;
    });
}

Inserted Table::insert(std::span<const Cell> cells, Origin origin) const {
    Statement statement(*engine_, origin);
    Inserted inserted;
    engine_->change([&] { statement.insert(id_, cells); }, [&] { inserted = statement.apply(); });
    statement.tell();
    return inserted;
}

void Table::update(Row_Place id, std::span<const Cell> cells, Origin origin) const {
    Statement statement(*engine_, origin);
    engine_->change([&] { statement.update(id_, id, cells); }, [&] { statement.apply(); });
    statement.tell();
}

void Table::check(std::span<const Cell> cells) const {
    const Reading reading(*engine_);
    Statement(*engine_).check(id_, cells);
}

void Table::check(Row_Place id, std::span<const Cell> cells) const {
    const Reading reading(*engine_);
    Statement(*engine_).check(id_, id, cells);
}

void Table::erase(Row_Place id) const {
    Statement statement(*engine_);
    engine_->change([&] { statement.erase(id_, id); }, [&] { statement.apply(); });
    statement.tell();
}

Database::Database(std::unique_ptr<Engine> engine) : engine_(std::move(engine)) {}
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

Database Database::open(files::Disk& disk, const std::string& path, Mode mode) {
    return Database(std::make_unique<Engine>(disk, path, open_pager(disk, path, mode), false));
}

Database Database::create(files::Disk& disk, const std::string& path, std::optional<double> days) {
    auto pager = create_pager(disk, path, empty_file(days.value_or(Engine::clock())));
    Database database(std::make_unique<Engine>(disk, path, std::move(pager), true));
    return database;
}

void Database::watch(Change_Watcher* watcher) { engine_->watcher = watcher; }
void Database::set_date(std::optional<double> days) { engine_->set_date(days); }

Status Database::status() const { return engine_->status(); }
const std::string& Database::path() const { return engine_->path(); }
std::uint64_t Database::foreign_changes() { return engine_->foreign_changes(); }
bool Database::in_transaction() const { return engine_->writing(); }
check::Report Database::check() { return engine_->check(); }

std::vector<Table> Database::tables(bool system) {
    std::vector<Table> found;
    for (const auto& object : engine_->objects())
        if (object.table() && (system || !object.system()))
            found.push_back(Table(*engine_, object.page()));
    return found;
}

std::optional<Table> Database::table(std::u16string_view name) {
    for (const auto& object : engine_->objects())
        if (object.table() && same_name(object.name, name)) return Table(*engine_, object.page());
    return std::nullopt;
}

std::vector<Relation> Database::relations() {
    return engine_->watch([&] { return engine_->relations(); });
}

Table Database::create_table(std::u16string_view name, std::span<const Column> columns,
                             std::span<const Index> indexes) {
    std::optional<New_Table> made;
    Page_Number page = 0;
    engine_->change([&] { made.emplace(*engine_, name, columns, indexes); },
                    [&] { page = made->apply(); });
    return {*engine_, page};
}

Page_Number Database::page_of(std::u16string_view name) {
    const auto* object = engine_->object(name, object_ids::tables);
    if (object == nullptr || !object->table())
        throw Error(Failure::not_found, to_utf8(name), "no such table");
    return object->page();
}

void Database::add_column(std::u16string_view table, const Column& column) {
    std::optional<New_Column> made;
    engine_->change([&] { made.emplace(*engine_, page_of(table), column); },
                    [&] { made->apply(); });
}

void Database::add_index(std::u16string_view table, const Index& index) {
    std::optional<New_Index> made;
    engine_->change([&] { made.emplace(*engine_, page_of(table), index); }, [&] { made->apply(); });
}

void Database::add_relation(const Relation& relation) {
    std::optional<New_Relation> made;
    engine_->change([&] { made.emplace(*engine_, relation); }, [&] { made->apply(); });
}

Transaction::Transaction(Database& database) : engine_(database.engine_.get()) {
    engine_->begin_write();
}

Transaction::~Transaction() {
    if (engine_ != nullptr) engine_->rollback();
}

void Transaction::commit() {
    if (engine_ == nullptr) throw std::logic_error("a transaction that is over");
    std::exchange(engine_, nullptr)->commit();
}

Read_Guard::Read_Guard(Database& database) : engine_(database.engine_.get()) {
    engine_->begin_read();
}

Read_Guard::~Read_Guard() { engine_->end_read(); }

} // namespace jet
