#include "platform/jet/creation.h"

#include "platform/files/memory_disk.h"
#include "platform/jet/catalogue.h"
#include "platform/jet/definition_builder.h"
#include "platform/jet/table_writer.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>

namespace jet {
namespace {

using T = Column_Type;

/// In these four tables records stand in the order of their names, and all columns bear flag 0x10.
struct System_Column {
    std::u16string_view name;
    T type;
    std::uint16_t number;
    std::uint8_t flags = 0x12;
};

struct System_Index {
    std::u16string_view name;
    std::vector<std::uint16_t> columns;
    std::uint8_t flags;
    std::uint8_t map_row;
    Page_Number root;
    std::uint32_t number;
    Index_Kind kind = Index_Kind::other;
};

struct System_Table {
    Page_Number page;
    std::vector<System_Column> columns; ///< in the order of the numbers
    std::uint8_t owned_row;             ///< the row after it holds the map of free space
    std::vector<System_Index> reals;
    std::vector<std::u16string_view> logical_order;
    /// Columns with long values in the order of their records, and the rows of their two maps.
    std::vector<std::pair<std::uint16_t, std::uint8_t>> long_maps;
};

constexpr Page_Number maps_page = 6;
constexpr Page_Number first_data_page = 14;
constexpr std::size_t map_rows = 31;
constexpr std::size_t map_size = 69;

const std::array<System_Table, 4>& system_tables() {
    static const std::array<System_Table, 4> tables{{
        {2,
         {{u"Id", T::long_integer, 0},
          {u"ParentId", T::long_integer, 1},
          {u"Name", T::text, 2},
          {u"Type", T::integer, 3},
          {u"DateCreate", T::date, 4},
          {u"DateUpdate", T::date, 5},
          {u"Owner", T::binary, 6, 0x32},
          {u"Flags", T::long_integer, 7},
          {u"Database", T::memo, 8},
          {u"Connect", T::memo, 9},
          {u"ForeignName", T::text, 10},
          {u"RmtInfoShort", T::binary, 11},
          {u"RmtInfoLong", T::ole, 12},
          {u"Lv", T::ole, 13},
          {u"LvProp", T::ole, 14},
          {u"LvModule", T::ole, 15},
          {u"LvExtra", T::ole, 16}},
         0x00,
         {{u"ParentIdName", {1, 2}, 0x81, 0x10, 7, 0},
          {u"Id", {0}, 0x81, 0x11, 8, 1, Index_Kind::primary}},
         {u"Id", u"ParentIdName"},
         {{9, 0x04}, {8, 0x02}, {13, 0x08}, {16, 0x0E}, {15, 0x0C}, {14, 0x0A}, {12, 0x06}}},
        {3,
         {{u"ObjectId", T::long_integer, 0},
          {u"SID", T::binary, 1, 0x32},
          {u"ACM", T::long_integer, 2},
          {u"FInheritable", T::boolean, 3}},
         0x12,
         {{u"ObjectId", {0}, 0x88, 0x14, 9, 0}},
         {u"ObjectId"},
         {}},
        {4,
         {{u"ObjectId", T::long_integer, 0},
          {u"Attribute", T::byte, 1},
          {u"Order", T::binary, 2},
          {u"Name1", T::text, 3},
          {u"Name2", T::text, 4},
          {u"Expression", T::memo, 5},
          {u"Flag", T::integer, 6},
          {u"LvExtra", T::long_integer, 7}},
         0x15,
         {{u"ObjectIdAttribute", {0, 1, 2}, 0x81, 0x19, 10, 0, Index_Kind::primary}},
         {u"ObjectIdAttribute"},
         {{5, 0x17}}},
        {5,
         {{u"szRelationship", T::text, 0},
          {u"grbit", T::long_integer, 1},
          {u"ccolumn", T::long_integer, 2},
          {u"icolumn", T::long_integer, 3},
          {u"szObject", T::text, 4},
          {u"szColumn", T::text, 5},
          {u"szReferencedObject", T::text, 6},
          {u"szReferencedColumn", T::text, 7}},
         0x1A,
         {{u"szRelationship", {0}, 0x82, 0x1C, 11, 0},
          {u"szObject", {4}, 0x82, 0x1D, 12, 1},
          {u"szReferencedObject", {6}, 0x82, 0x1E, 13, 2}},
         {u"szObject", u"szReferencedObject", u"szRelationship"},
         {}},
    }};
    return tables;
}

/// Page and row of each map, and the one page that is set in it at the beginning.
Row_Pointer map_at(std::uint8_t row) { return {maps_page, row}; }

void add_columns(Definition& definition, const System_Table& table) {
    for (const auto& entry : table.columns) {
        Column column;
        column.name = entry.name;
        column.type = entry.type;
        if (entry.type == T::text) column.length = 255;
        if (entry.type == T::binary) column.length = 510;
        append_column(definition, column, entry.flags);
    }
    std::vector<Column_Record*> by_name;
    for (auto& column : definition.columns) by_name.push_back(&column);
    std::sort(by_name.begin(), by_name.end(),
              [](const auto* a, const auto* b) { return a->name < b->name; });
    for (std::size_t place = 0; place < by_name.size(); ++place) by_name[place]->place = place;
}

void add_indexes(Definition& definition, const System_Table& table) {
    for (const auto& index : table.reals) {
        std::vector<Index_Part> parts;
        for (const auto column : index.columns) parts.push_back({column, true});
        append_real(definition, std::move(parts), index.flags, map_at(index.map_row), index.root);
    }
    for (const auto& index : table.reals) // numbers follow the order in which they are entered
        insert_logical(definition, std::u16string(index.name), index.number, index.kind);
}

Definition system_definition(const System_Table& table) {
    auto definition = new_definition(table.page, true);
    definition.owned = map_at(table.owned_row);
    definition.free = map_at(static_cast<std::uint8_t>(table.owned_row + 1));
    store_u32(definition.head.data() + jet4_layout.owned_map, definition.owned.number());
    store_u32(definition.head.data() + jet4_layout.free_map, definition.free.number());
    add_columns(definition, table);
    add_indexes(definition, table);
    for (const auto& [column, row] : table.long_maps)
        definition.long_maps.push_back(
            {column, map_at(row), map_at(static_cast<std::uint8_t>(row + 1))});
    return definition;
}

/// A page of map rows of usual size; `fill(row, bits)` sets the bits of each.
template <typename Fill>
Page_Bytes map_page(std::uint32_t owner, std::size_t rows, Fill fill) {
    Page_Bytes page(jet4_layout.page_size);
    store_u16(page.data(), 0x0101);
    store_u32(page.data() + 4, owner);
    store_u16(page.data() + jet4_layout.slot_count, rows);
    for (std::size_t row = 0; row < rows; ++row) {
        const auto at = page.size() - map_size * (row + 1);
        store_u16(page.data() + jet4_layout.slots + 2 * row, at);
        fill(row, std::span(page).subspan(at + 5, map_size - 5));
    }
    const auto lowest = page.size() - map_size * rows;
    store_u16(page.data() + 2, lowest - jet4_layout.slots - 2 * rows);
    return page;
}

Page_Bytes empty_leaf(Page_Number table) {
    Page_Bytes page(jet4_layout.page_size);
    store_u16(page.data(), 0x0104);
    store_u16(page.data() + 2, 3616);
    store_u32(page.data() + 4, table);
    return page;
}

Page_Bytes global_map() {
    return map_page(1, 2, [](std::size_t row, std::span<std::byte> bits) {
        if (row != 0) return;
        std::fill(bits.begin(), bits.end(), std::byte{0xFF});
        store_u16(bits.data(), ~((1U << first_data_page) - 1U));
    });
}

/// The system tables without rows; everything else is put in as into any other file.
std::vector<Page_Bytes> skeleton() {
    std::vector<Page_Bytes> pages(first_data_page);
    pages[0] = new_header();
    pages[1] = global_map();
    std::map<std::size_t, Page_Number> roots;
    for (const auto& table : system_tables()) {
        const auto joined = join_definition(system_definition(table));
        auto& page = pages[table.page];
        page = joined;
        store_u16(page.data() + 2, jet4_layout.page_size - joined.size() - 8);
        page.resize(jet4_layout.page_size);
        for (const auto& index : table.reals) {
            pages[index.root] = empty_leaf(table.page);
            roots[index.map_row] = index.root;
        }
    }
    pages[maps_page] = map_page(0, map_rows, [&](std::size_t row, std::span<std::byte> bits) {
        const auto root = roots.find(row);
        if (root != roots.end()) bits[root->second / 8] = std::byte{1} << root->second % 8;
    });
    return pages;
}

Bytes sid(unsigned first, unsigned second) {
    return {static_cast<std::byte>(first), static_cast<std::byte>(second)};
}

/// Rows of one system table, written as a statement would.
class System_Rows {
public:
    System_Rows(Pager& pager, Page_Number page) {
        table_.object.id = static_cast<std::int32_t>(page);
        auto definition = read_definition(pager, jet4_layout, page);
        for (const auto& real : definition.reals)
            table_.shapes.push_back(key_shape(definition, real));
        table_.definition = std::make_shared<const Definition>(std::move(definition));
        writer_.emplace(pager, hints_, table_);
    }
    void add(std::initializer_list<std::pair<std::u16string_view, Value>> cells) {
        const auto& columns = table_.definition->columns;
        std::vector<Value> values(columns.size());
        for (const auto& [name, value] : cells)
            for (std::size_t i = 0; i < columns.size(); ++i)
                if (columns[i].name == name) values[i] = value;
        writer_->insert(values);
    }

private:
    Heap_Hints hints_;
    Table_State table_;
    std::optional<Table_Writer> writer_;
};

void add_objects(Pager& pager, Date date) {
    const auto engine = sid(0x65, 0x89);
    const auto admin = sid(0x64, 0x8B);
    struct Entry {
        std::int32_t id, parent;
        const char16_t* name;
        Object_Type type;
        const Bytes& owner;
    };
    using enum Object_Type;
    System_Rows rows(pager, 2);
    for (const auto& entry : std::initializer_list<Entry>{
             {object_ids::tables, object_ids::root, u"Tables", container, engine},
             {object_ids::databases, object_ids::root, u"Databases", container, engine},
             {object_ids::relations, object_ids::root, u"Relationships", container, engine},
             {object_ids::database, object_ids::databases, u"MSysDb", database, admin},
             {2, object_ids::tables, u"MSysObjects", table, engine},
             {3, object_ids::tables, u"MSysACEs", table, engine},
             {4, object_ids::tables, u"MSysQueries", table, engine},
             {5, object_ids::tables, u"MSysRelationships", table, engine}})
        rows.add({{u"Id", entry.id},
                  {u"ParentId", entry.parent},
                  {u"Name", std::u16string(entry.name)},
                  {u"Type", static_cast<std::int32_t>(entry.type)},
                  {u"DateCreate", date},
                  {u"DateUpdate", date},
                  {u"Owner", entry.owner},
                  {u"Flags", std::numeric_limits<std::int32_t>::min()}});
}

void add_rights(Pager& pager) {
    const auto admin = sid(0x64, 0x8B);
    const auto users = sid(0x65, 0x8B);
    const auto creator = sid(0x65, 0x8E);
    struct Entry {
        std::int32_t object;
        const Bytes& sid;
        std::int32_t rights;
        bool inheritable = false;
    };
    System_Rows rows(pager, 3);
    for (const auto& entry :
         std::initializer_list<Entry>{{2, admin, 0x60000},
                                      {3, admin, 0x60000},
                                      {4, admin, 0x60000},
                                      {5, admin, 0xE0000},
                                      {object_ids::tables, creator, 0xF00FE, true},
                                      {object_ids::tables, admin, 0x60001},
                                      {object_ids::relations, creator, 0xF00FE, true},
                                      {object_ids::relations, admin, 0x60001},
                                      {object_ids::databases, admin, 0x60000},
                                      {object_ids::database, admin, 0x6000E},
                                      {object_ids::database, users, 0xE},
                                      {4, users, 0x14},
                                      {5, users, 0x14},
                                      {2, users, 0x14},
                                      {object_ids::tables, users, 0xFFEFF, true},
                                      {object_ids::relations, users, 0xFFFFF, true}})
        rows.add({{u"ObjectId", entry.object},
                  {u"SID", entry.sid},
                  {u"ACM", entry.rights},
                  {u"FInheritable", entry.inheritable}});
}

} // namespace

std::vector<Page_Bytes> empty_file(double days) {
    files::Memory_Disk disk;
    const auto pager = create_pager(disk, "new", skeleton());
    pager->begin_write();
    add_objects(*pager, {days});
    add_rights(*pager);
    pager->commit();
    pager->begin_read();
    std::vector<Page_Bytes> pages;
    for (Page_Number number = 0; number < pager->page_count(); ++number)
        pages.push_back(*pager->read(number));
    pager->end_read();
    return pages;
}

} // namespace jet
