#include "platform/jet/catalogue/catalogue.h"

#include "platform/jet/format/text.h"
#include "platform/jet/rows/cell.h"
#include "platform/jet/rows/long_value.h"
#include "platform/jet/rows/scan.h"

#include <algorithm>
#include <map>

namespace jet {
namespace {

/// Cells of system tables by the name of their column.
class Named_Cells {
public:
    Named_Cells(Row_Source& source) : source_(source) {}

    std::int32_t integer(std::u16string_view name) const {
        const auto& column = column_named(source_.definition(), name);
        if (column.type != Column_Type::long_integer && column.type != Column_Type::integer)
            throw damaged(source_.definition().page(), "a system column of a wrong type");
        return source_.row().has(column) ? decode_integer(column, source_.row().cell(column)) : 0;
    }
    std::u16string text(std::u16string_view name) const {
        const auto& column = column_named(source_.definition(), name);
        std::u16string text;
        if (source_.row().has(column))
            decode_text_cell(source_.pager(), *source_.definition().layout, column,
                             source_.row().cell(column), text);
        return text;
    }

private:
    Row_Source& source_;
};

Object object_of(Row_Source& source) {
    const Named_Cells cells(source);
    Object object;
    object.id = cells.integer(u"Id");
    object.parent = cells.integer(u"ParentId");
    object.name = cells.text(u"Name");
    object.type = static_cast<Object_Type>(cells.integer(u"Type"));
    object.flags = static_cast<std::uint32_t>(cells.integer(u"Flags"));
    object.row = source.id();
    return object;
}

struct Column_Pair {
    std::int32_t position;
    std::u16string column;
    std::u16string foreign_column;
};

void set_flags(Relation& relation, std::uint32_t bits) {
    relation.enforced = (bits & 0x2U) == 0;
    relation.cascade_update = (bits & 0x100U) != 0;
    relation.cascade_delete = (bits & 0x1000U) != 0;
    relation.null_on_delete = (bits & 0x2000U) != 0;
}

Column described(const Column_Record& record, const Properties& properties, bool jet3) {
    Column column;
    column.name = record.name;
    column.type = record.type;
    const bool text = record.type == Column_Type::text;
    if (text || record.type == Column_Type::binary)
        column.length = text && !jet3 ? record.length / 2U : record.length;
    column.auto_number = record.auto_number() || record.auto_guid();
    column.compressed = record.compressed() && (text || record.type == Column_Type::memo);
    column.fixed = record.fixed();
    column.required = properties.boolean(record.name, u"Required").value_or(false);
    column.allow_zero_length = properties.boolean(record.name, u"AllowZeroLength").value_or(false);
    column.default_value = properties.text(record.name, u"DefaultValue");
    column.description = properties.text(record.name, u"Description");
    if (record.type == Column_Type::decimal) {
        column.precision = static_cast<std::uint8_t>(record.extra);
        column.scale = static_cast<std::uint8_t>(record.extra >> 8U);
    }
    return column;
}

} // namespace

const Column_Record& column_named(const Definition& definition, std::u16string_view name) {
    for (const auto& column : definition.columns)
        if (same_name(column.name, name)) return column;
    throw damaged(definition.page(), "the system table lacks the column " + to_utf8(name));
}

std::vector<Object> read_objects(Pager& pager, const Definition& objects) {
    std::vector<Object> found;
    for_each_row(pager, objects, [&](Row_Source& source) { found.push_back(object_of(source)); });
    return found;
}

Properties read_properties(Pager& pager, const Definition& objects, Row_Place row) {
    Row_Source source(pager, objects);
    const auto& column = column_named(objects, u"LvProp");
    if (!source.find(row) || !source.row().has(column)) return {};
    return {read_long_value(pager, *objects.layout, source.row().cell(column)), row.page,
            objects.layout->jet3};
}

std::vector<Relation> read_relations(Pager& pager, const Definition& relationships) {
    std::vector<Relation> relations;
    std::map<std::u16string, std::vector<Column_Pair>> pairs;
    for_each_row(pager, relationships, [&](Row_Source& source) {
        const Named_Cells cells(source);
        const auto name = cells.text(u"szRelationship");
        auto& of_this = pairs[name];
        if (of_this.empty()) {
            auto& relation = relations.emplace_back();
            relation.name = name;
            relation.table = cells.text(u"szReferencedObject");
            relation.foreign_table = cells.text(u"szObject");
            set_flags(relation, static_cast<std::uint32_t>(cells.integer(u"grbit")));
        }
        of_this.push_back({cells.integer(u"icolumn"), cells.text(u"szReferencedColumn"),
                           cells.text(u"szColumn")});
    });
    for (auto& relation : relations) {
        auto& of_this = pairs[relation.name];
        std::sort(of_this.begin(), of_this.end(),
                  [](const auto& a, const auto& b) { return a.position < b.position; });
        for (auto& pair : of_this) {
            relation.columns.push_back(std::move(pair.column));
            relation.foreign_columns.push_back(std::move(pair.foreign_column));
        }
    }
    return relations;
}

std::vector<Column> described_columns(const Definition& definition, const Properties& properties) {
    std::vector<Column> columns;
    for (const auto& record : definition.columns)
        columns.push_back(described(record, properties, definition.layout->jet3));
    return columns;
}

std::vector<Index> described_indexes(const Definition& definition) {
    std::vector<Index> indexes;
    for (const auto& logical : definition.logicals) {
        const auto& real = definition.reals[logical.real];
        auto& index = indexes.emplace_back();
        index.name = logical.name;
        for (const auto& part : real.columns)
            index.columns.push_back({definition.by_number(part.column)->name, part.ascending});
        index.primary = logical.kind == Index_Kind::primary;
        index.relation = logical.kind == Index_Kind::relation;
        index.unique = real.unique();
        index.required = real.required();
        index.ignore_nulls = real.ignores_nulls();
    }
    return indexes;
}

Key_Shape key_shape(const Definition& definition, const Real_Index& index) {
    Key_Shape shape;
    for (const auto& part : index.columns) {
        const auto& column = *definition.by_number(part.column);
        shape.columns.push_back({column.type, part.ascending, column.extra});
    }
    shape.unique = index.unique();
    shape.required = index.required();
    shape.ignore_nulls = index.ignores_nulls();
    return shape;
}

} // namespace jet
