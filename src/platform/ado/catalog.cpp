#include "platform/ado/catalog.h"

#include "platform/ado/error.h"
#include "platform/jet/format/text.h"

#include <algorithm>

namespace ado {

namespace {

jet::Column made(const Column& column) {
    jet::Column made;
    made.name = column.name.toStdU16String();
    made.auto_number = column.auto_increment;
    made.required = !column.nullable;
    made.description = column.description.toStdU16String();
    made.fixed = column.kind == Column_Kind::whole;
    if (column.kind == Column_Kind::text) {
        made.type = jet::Column_Type::text;
        made.length = column.length;
        made.allow_zero_length = true;
        made.compressed = true;
    }
    return made;
}

jet::Index made(const Index& index) {
    jet::Index made;
    made.name = index.name.toStdU16String();
    made.columns = {{index.column.toStdU16String(), true}};
    made.primary = index.primary_key;
    made.unique = index.primary_key;
    made.required = index.primary_key;
    return made;
}

jet::Relation made(const Foreign_Key& key, const QString& table) {
    jet::Relation made;
    made.name = key.name.toStdU16String();
    made.table = key.related_table.toStdU16String();
    made.columns = {key.related_column.toStdU16String()};
    made.foreign_table = table.toStdU16String();
    made.foreign_columns = {key.column.toStdU16String()};
    return made;
}

bool is(const std::u16string& name, const QString& other) {
    return other.compare(QStringView(name), Qt::CaseInsensitive) == 0;
}

bool forbids_deletion(const jet::Relation& relation, const QString& table, const QString& column) {
    return relation.enforced && !relation.cascade_delete && !relation.null_on_delete &&
           is(relation.table, table) && relation.columns.size() == 1 &&
           is(relation.columns.front(), column);
}

/// Asked before the table is made: one without its keys must not stay behind.
void refuse_unless_key(jet::Database& database, const Foreign_Key& key) {
    const auto table = database.table(key.related_table.toStdU16String());
    const auto place = table ? table->column(key.related_column.toStdU16String()) : std::nullopt;
    const bool unique =
        place && table->columns()[*place].type == jet::Column_Type::long_integer &&
        std::any_of(table->indexes().begin(), table->indexes().end(), [&](const jet::Index& index) {
            return index.unique && index.columns.size() == 1 &&
                   is(index.columns.front().name, key.related_column);
        });
    if (!unique)
        throw Error(Failure::refused, key.name.toStdString(),
                    (key.related_table + u'.' + key.related_column).toStdString() + " is no key");
}

} // namespace

std::vector<QString> Catalog::tables() const { return connection_.session().tables(); }

std::vector<QString> Catalog::columns(const QString& table) const {
    return connection_.session().columns(table);
}

std::size_t Catalog::text_width(const QString& table, const QString& column) const {
    const auto found = connection_.session().database().table(table.toStdU16String());
    const auto place = found ? found->column(column.toStdU16String()) : std::nullopt;
    if (!place) return 0;
    const jet::Column& stored = found->columns()[*place];
    if (stored.type == jet::Column_Type::memo) return 255;
    return stored.type == jet::Column_Type::text ? stored.length : 0;
}

void Catalog::refuse_if_referred(const QString& table, const QString& column, std::int32_t key,
                                 const std::vector<QString>& known) const {
    jet::Database& database = connection_.session().database();
    for (const jet::Relation& relation : database.relations()) {
        const auto other = database.table(relation.foreign_table);
        const bool is_known = std::any_of(known.begin(), known.end(), [&](const QString& name) {
            return is(relation.foreign_table, name);
        });
        if (is_known || !other || !forbids_deletion(relation, table, column)) continue;
        const auto referring = other->column(relation.foreign_columns.front());
        if (referring && other->find({{*referring, key}}).next())
            throw Error(Failure::refused, jet::to_utf8(relation.name),
                        "rows of " + jet::to_utf8(relation.foreign_table) + " refer to it");
    }
}

void Catalog::append(const Table& table) {
    Transaction transaction(connection_);
    jet::Database& database = connection_.session().database();
    for (const Foreign_Key& key : table.keys) refuse_unless_key(database, key);
    std::vector<jet::Column> columns;
    for (const Column& column : table.columns) columns.push_back(made(column));
    std::vector<jet::Index> indexes;
    for (const Index& index : table.indexes) indexes.push_back(made(index));
    database.create_table(table.name.toStdU16String(), columns, indexes);
    for (const Foreign_Key& key : table.keys) database.add_relation(made(key, table.name));
    transaction.commit();
}

void Catalog::append(const QString& table, const Column& column) {
    Transaction transaction(connection_);
    connection_.session().database().add_column(table.toStdU16String(), made(column));
    transaction.commit();
}

void Catalog::append_in_memory(const Table& table) {
    std::vector<QString> names;
    for (const Column& column : table.columns) names.push_back(column.name);
    connection_.session().complete_in_memory(table.name, names);
}

void Catalog::append_in_memory(const QString& table, const Column& column) {
    connection_.session().complete_in_memory(table, {column.name});
}

} // namespace ado
