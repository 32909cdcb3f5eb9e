#include "platform/jet/schema_rules.h"

#include "platform/jet/format/text.h"
#include "platform/jet/lookup.h"
#include "platform/jet/rows/scan.h"

#include <algorithm>

namespace jet {
namespace {

const Column* find_column(const std::vector<Column>& columns, std::u16string_view name) {
    for (const auto& column : columns)
        if (same_name(column.name, name)) return &column;
    return nullptr;
}

void check_length(const Column& column, std::size_t most) {
    if (column.length < 1 || column.length > most)
        refuse(column.name, "its length must be 1 to " + std::to_string(most));
}

} // namespace

void check_name(std::u16string_view name) {
    const bool long_enough = !name.empty() && name.size() <= 64 && name.front() != u' ';
    const bool allowed = std::all_of(name.begin(), name.end(), [](char16_t c) {
        return c >= 0x20 && c != 0xFEFF &&
               std::u16string_view(u".!`[]").find(c) == std::u16string_view::npos;
    });
    if (!long_enough || !allowed) refuse(name, "is no name that the format allows");
}

void check_new_column(const Column& column) {
    check_name(column.name);
    switch (column.type) {
    case Column_Type::boolean:
    case Column_Type::byte:
    case Column_Type::integer:
    case Column_Type::long_integer:
    case Column_Type::currency:
    case Column_Type::single_float:
    case Column_Type::double_float:
    case Column_Type::date:
    case Column_Type::memo:
    case Column_Type::ole:
    case Column_Type::guid:
        break;
    case Column_Type::text:
        check_length(column, 255);
        break;
    case Column_Type::binary:
        check_length(column, 510);
        break;
    case Column_Type::decimal:
        if (column.precision < 1 || column.precision > 28 || column.scale > column.precision)
            refuse(column.name, "its precision must be 1 to 28");
        break;
    default:
        refuse(column.name, "its type is not one that can be made");
    }
    if (column.auto_number && column.type != Column_Type::long_integer)
        refuse(column.name, "only whole numbers can count up");
}

void check_new_index(const std::vector<Column>& columns, const std::vector<Index>& others,
                     const Index& index) {
    check_name(index.name);
    if (index.columns.empty() || index.columns.size() > most_index_columns)
        refuse(index.name, "an index is over 1 to 10 columns");
    for (auto part = index.columns.begin(); part != index.columns.end(); ++part) {
        const auto* column = find_column(columns, part->name);
        if (column == nullptr) refuse(index.name, "is over a column that is not there");
        if (column->type == Column_Type::ole) refuse(index.name, "is over a column without order");
        if (std::any_of(index.columns.begin(), part,
                        [&](const auto& other) { return same_name(other.name, part->name); }))
            refuse(index.name, "names a column twice");
    }
    if (others.size() >= most_indexes) refuse(index.name, "the table has 32 indexes already");
    for (const auto& other : others) {
        if (same_name(other.name, index.name)) refuse(index.name, "the name is taken");
        if (index.primary && other.primary) refuse(index.name, "the table has a primary key");
    }
}

void add_properties(Properties& properties, const Column& column) {
    if (!column.description.empty())
        properties.add_text(column.name, u"Description", column.description, false);
    if (column.required) properties.add_boolean(column.name, u"Required", true);
    const bool text = column.type == Column_Type::text || column.type == Column_Type::memo;
    if (text && column.allow_zero_length)
        properties.add_boolean(column.name, u"AllowZeroLength", true);
    if (!column.default_value.empty())
        properties.add_text(column.name, u"DefaultValue", column.default_value, true);
}

std::vector<Index_Part> parts_of(const Definition& definition, const Index& index) {
    std::vector<Index_Part> parts;
    for (const auto& part : index.columns)
        for (const auto& column : definition.columns)
            if (same_name(column.name, part.name)) parts.push_back({column.number, part.ascending});
    return parts;
}

std::optional<std::uint32_t> real_with(const Definition& definition,
                                       const std::vector<Index_Part>& parts, std::uint8_t flags) {
    for (std::size_t real = 0; real < definition.reals.size(); ++real)
        if (definition.reals[real].columns == parts && definition.reals[real].flags == flags)
            return static_cast<std::uint32_t>(real);
    return std::nullopt;
}

Key_Shape shape_of(const Definition& definition, const std::vector<Index_Part>& parts,
                   std::uint8_t flags) {
    Real_Index index;
    index.columns = parts;
    index.flags = flags;
    return key_shape(definition, index);
}

std::vector<Index_Tree::Entry> entries_of(Engine& engine, const Table_State& table,
                                          const std::vector<Index_Part>& parts,
                                          const Key_Shape& shape, std::u16string_view name) {
    const auto& definition = *table.definition;
    if (!can_compute(shape)) refuse(name, "the keys of such an index cannot be computed");
    std::vector<Index_Tree::Entry> entries;
    std::vector<Bytes> unique;
    for_each_row(engine.pager(), definition, [&](Row_Source& source) {
        const std::vector<Value> values = values_at(source, parts);
        const auto rule = null_rule(shape, values);
        if (rule == Null_Rule::left_out) return;
        if (rule == Null_Rule::refused) refuse(name, "there are rows with null");
        auto key = key_of(shape.columns, values);
        if (key.size() > Index_Tree::longest_key) refuse(name, "there are keys that are too long");
        if (shape.unique && rule == Null_Rule::entry) unique.push_back(key);
        entries.push_back({std::move(key), {source.id().page, source.id().slot}});
    });
    std::sort(unique.begin(), unique.end());
    if (std::adjacent_find(unique.begin(), unique.end()) != unique.end())
        refuse(name, "there are rows with the same key");
    return entries;
}

} // namespace jet
