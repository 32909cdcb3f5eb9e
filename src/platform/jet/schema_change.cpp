#include "platform/jet/schema_change.h"

#include "platform/jet/catalogue/definition_chain.h"
#include "platform/jet/format/text.h"
#include "platform/jet/lookup.h"
#include "platform/jet/rows/scan.h"
#include "platform/jet/schema_rules.h"

#include <algorithm>

namespace jet {
namespace {

/// Maps for a Memo or OLE column, on a page of map rows if there is room.
Long_Maps new_long_maps(Pager& pager, Page_Space& space, std::uint16_t column, Page_Number near) {
    const auto owned = Usage_Map::make(pager, space, near).place();
    return {column, owned, Usage_Map::make(pager, space, owned.page).place()};
}

} // namespace

void check_name_free(Engine& engine, std::u16string_view name, std::int32_t container) {
    if (engine.object(name, container) != nullptr) refuse(name, "the name is taken");
}

/// Rows of system tables are written beside every change of structure.
void check_catalogue(Engine& engine) {
    for (const auto* name : {u"MSysObjects", u"MSysACEs", u"MSysRelationships"})
        if (!engine.system_table(name).computable)
            throw Error(Failure::read_only, to_utf8(name), "has an index of a foreign collation");
}

std::uint32_t add_tree(Pager& pager, Page_Space& space, Definition& definition,
                       std::vector<Index_Part> parts, std::uint8_t flags,
                       std::vector<Index_Tree::Entry> entries) {
    auto tree = Index_Tree::make(pager, space, definition.page(), definition.owned.page);
    const auto keys = tree.build(space, std::move(entries));
    const auto real = append_real(definition, std::move(parts), flags, tree.map(), tree.root());
    store_u32(definition.entry_counts.data() + real * jet4_layout.entry_count_size + 4, keys);
    return real;
}

New_Table::New_Table(Engine& engine, std::u16string_view name, std::span<const Column> columns,
                     std::span<const Index> indexes)
    : engine_(engine), name_(name), columns_(columns.begin(), columns.end()),
      indexes_(indexes.begin(), indexes.end()) {
    check_name(name_);
    check_catalogue(engine);
    check_name_free(engine, name_, object_ids::tables);
    if (columns_.empty() || columns_.size() > most_columns)
        refuse(name_, "a table has 1 to 255 columns");
    for (auto column = columns_.begin(); column != columns_.end(); ++column) {
        check_new_column(*column);
        if (std::any_of(columns_.begin(), column,
                        [&](const Column& other) { return same_name(other.name, column->name); }))
            refuse(column->name, "the name is taken");
    }
    auto definition = new_definition(0, false);
    for (const auto& column : columns_) append_column(definition, column);
    if (definition.fixed_end() + 2 * definition.variable_slots > longest_row)
        refuse(name_, "its rows would be too long");
    std::vector<Index> others;
    for (const auto& index : indexes_) {
        check_new_index(columns_, others, index);
        others.push_back(index);
    }
}

void New_Table::add_columns(Definition& definition, Page_Space& space) {
    for (const auto& column : columns_) append_column(definition, column);
    auto& pager = engine_.pager();
    definition.owned = Usage_Map::make(pager, space, 0).place();
    definition.free = Usage_Map::make(pager, space, definition.owned.page).place();
    store_u32(definition.head.data() + jet4_layout.owned_map, definition.owned.number());
    store_u32(definition.head.data() + jet4_layout.free_map, definition.free.number());
}

void New_Table::add_index(Definition& definition, Page_Space& space, const Index& index) {
    const auto parts = parts_of(definition, index);
    const auto flags = flags_of(index);
    auto real = real_with(definition, parts, flags);
    if (!real) real = add_tree(engine_.pager(), space, definition, parts, flags, {});
    insert_logical(definition, index.name, *real,
                   index.primary ? Index_Kind::primary : Index_Kind::other);
}

Page_Number New_Table::apply() {
    auto& pager = engine_.pager();
    Page_Space space(pager);
    auto definition = new_definition(space.allocate(), false);
    add_columns(definition, space);
    for (const auto& index : indexes_) add_index(definition, space, index);
    for (const auto& column : definition.columns)
        if (column.long_value())
            definition.long_maps.push_back(
                new_long_maps(pager, space, column.number, definition.owned.page));
    write_definition(pager, space, definition);
    Properties properties;
    for (const auto& column : columns_) add_properties(properties, column);
    Catalogue_Writer(engine_).add_table(definition.page(), name_, properties.stored());
    engine_.forget();
    return definition.page();
}

New_Column::New_Column(Engine& engine, Page_Number table, const Column& column)
    : engine_(engine), table_(table), column_(column) {
    const auto& state = engine.table(table);
    check_new_column(column);
    check_catalogue(engine);
    for (const auto& other : state.columns)
        if (same_name(other.name, column.name)) refuse(column.name, "the name is taken");
    auto definition = *state.definition;
    if (definition.max_columns >= most_columns)
        refuse(column.name, "the table has had 255 columns already");
    append_column(definition, column);
    if (definition.fixed_end() + 2 * definition.variable_slots > longest_row)
        refuse(column.name, "the rows would be too long");
    if (!column.required && !column.auto_number) return;
    if (!data_pages(engine.pager(), *state.definition).empty())
        refuse(column.name, "there are rows, which cannot get a value");
}

void New_Column::apply() {
    auto& pager = engine_.pager();
    Page_Space space(pager);
    const auto& state = engine_.table(table_);
    const auto object = state.object;
    const auto before = read_definition(pager, jet4_layout, table_);
    auto definition = before;
    const auto& record = append_column(definition, column_);
    if (record.long_value())
        definition.long_maps.push_back(
            new_long_maps(pager, space, record.number, definition.owned.page));
    write_definition(pager, space, definition);
    auto properties = read_properties(pager, *engine_.table(objects_page).definition, object.row);
    properties.remove_column(column_.name); // of a deleted one that had its name
    add_properties(properties, column_);
    Catalogue_Writer(engine_).note_change(object, &properties);
    engine_.forget();
    if (before.variable_slots == 0 && definition.variable_slots > 0) rewrite_rows(before);
}

/// Rows that were written without offsets would be taken for damaged by other programs.
void New_Column::rewrite_rows(const Definition& before) {
    auto& pager = engine_.pager();
    std::vector<Row_Place> rows;
    for_each_row(pager, before, [&](Row_Source& source) { rows.push_back(source.id()); });
    Table_Writer writer(pager, engine_.hints(), engine_.table(table_));
    for (const auto row : rows) writer.rewrite(row, before);
}

New_Index::New_Index(Engine& engine, Page_Number table, const Index& index)
    : engine_(engine), table_(table), index_(index) {
    const auto& state = engine.table(table);
    check_catalogue(engine);
    check_new_index(state.columns, state.indexes, index);
    const auto parts = parts_of(*state.definition, index);
    const auto flags = flags_of(index);
    entries_ =
        entries_of(engine, state, parts, shape_of(*state.definition, parts, flags), index.name);
}

void New_Index::apply() {
    auto& pager = engine_.pager();
    Page_Space space(pager);
    const auto object = engine_.table(table_).object;
    auto definition = read_definition(pager, jet4_layout, table_);
    const auto parts = parts_of(definition, index_);
    const auto flags = flags_of(index_);
    auto real = real_with(definition, parts, flags);
    if (!real) real = add_tree(pager, space, definition, parts, flags, std::move(entries_));
    insert_logical(definition, index_.name, *real,
                   index_.primary ? Index_Kind::primary : Index_Kind::other);
    write_definition(pager, space, definition);
    Catalogue_Writer(engine_).note_change(object, nullptr);
    engine_.forget();
}

} // namespace jet
