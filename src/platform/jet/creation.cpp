#include "platform/jet/creation.h"

#include "platform/failure/sure.h"
#include "platform/files/memory_disk.h"
#include "platform/jet/catalogue/catalogue.h"
#include "platform/jet/catalogue/definition_builder.h"
#include "platform/jet/catalogue/definition_chain.h"
#include "platform/jet/table_writer.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string_view>

namespace jet {
namespace {

using T = Column_Type;

/// The records of these columns stand in the order of the names. They are listed here in the order of their numbers.
struct System_Column {
    std::u16string_view name;
    T type;
    std::uint8_t flags = column_flags::updatable | column_flags::system;
};
constexpr std::uint8_t of_a_sid =
    column_flags::updatable | column_flags::system | column_flags::sid;

constexpr std::uint8_t plain = index_flags::always;
constexpr std::uint8_t unique = plain | index_flags::unique;
constexpr std::uint8_t nullable = plain | index_flags::ignores_nulls;
constexpr std::uint8_t required = plain | index_flags::required;

struct System_Index {
    std::u16string_view name;
    std::array<std::uint16_t, 3> columns; ///< the first `parts` of them
    std::size_t parts;
    std::uint8_t flags;
    std::uint8_t map_row;
    Page_Number root;
    Index_Kind kind = Index_Kind::other;
};

/// A column with long values and the first of the rows of its two maps.
struct System_Maps {
    std::uint16_t column;
    std::uint8_t row;
};

struct System_Table {
    Page_Number page;
    std::uint8_t owned_row; ///< the row after it holds the map of free space
    std::span<const System_Column> columns;
    std::span<const System_Index> indexes;
    std::span<const System_Maps> long_maps = {}; ///< in the order of their records
};

constexpr Page_Number maps_page = 6;
constexpr Page_Number first_data_page = 14;
constexpr std::size_t map_rows = 31;
constexpr std::size_t map_size = 69;

constexpr std::array objects_columns{System_Column{u"Id", T::long_integer},
                                     System_Column{u"ParentId", T::long_integer},
                                     System_Column{u"Name", T::text},
                                     System_Column{u"Type", T::integer},
                                     System_Column{u"DateCreate", T::date},
                                     System_Column{u"DateUpdate", T::date},
                                     System_Column{u"Owner", T::binary, of_a_sid},
                                     System_Column{u"Flags", T::long_integer},
                                     System_Column{u"Database", T::memo},
                                     System_Column{u"Connect", T::memo},
                                     System_Column{u"ForeignName", T::text},
                                     System_Column{u"RmtInfoShort", T::binary},
                                     System_Column{u"RmtInfoLong", T::ole},
                                     System_Column{u"Lv", T::ole},
                                     System_Column{u"LvProp", T::ole},
                                     System_Column{u"LvModule", T::ole},
                                     System_Column{u"LvExtra", T::ole}};
constexpr std::array objects_indexes{
    System_Index{u"ParentIdName", {1, 2}, 2, unique, 0x10, 7},
    System_Index{u"Id", {0}, 1, unique, 0x11, 8, Index_Kind::primary}};
constexpr std::array objects_maps{
    System_Maps{9, 0x04},  System_Maps{8, 0x02},  System_Maps{13, 0x08}, System_Maps{16, 0x0E},
    System_Maps{15, 0x0C}, System_Maps{14, 0x0A}, System_Maps{12, 0x06}};

constexpr std::array rights_columns{
    System_Column{u"ObjectId", T::long_integer}, System_Column{u"SID", T::binary, of_a_sid},
    System_Column{u"ACM", T::long_integer}, System_Column{u"FInheritable", T::boolean}};
constexpr std::array rights_indexes{System_Index{u"ObjectId", {0}, 1, required, 0x14, 9}};

constexpr std::array queries_columns{System_Column{u"ObjectId", T::long_integer},
                                     System_Column{u"Attribute", T::byte},
                                     System_Column{u"Order", T::binary},
                                     System_Column{u"Name1", T::text},
                                     System_Column{u"Name2", T::text},
                                     System_Column{u"Expression", T::memo},
                                     System_Column{u"Flag", T::integer},
                                     System_Column{u"LvExtra", T::long_integer}};
constexpr std::array queries_indexes{
    System_Index{u"ObjectIdAttribute", {0, 1, 2}, 3, unique, 0x19, 10, Index_Kind::primary}};
constexpr std::array queries_maps{System_Maps{5, 0x17}};

constexpr std::array relations_columns{
    System_Column{u"szRelationship", T::text},     System_Column{u"grbit", T::long_integer},
    System_Column{u"ccolumn", T::long_integer},    System_Column{u"icolumn", T::long_integer},
    System_Column{u"szObject", T::text},           System_Column{u"szColumn", T::text},
    System_Column{u"szReferencedObject", T::text}, System_Column{u"szReferencedColumn", T::text}};
constexpr std::array relations_indexes{
    System_Index{u"szRelationship", {0}, 1, nullable, 0x1C, 11},
    System_Index{u"szObject", {4}, 1, nullable, 0x1D, 12},
    System_Index{u"szReferencedObject", {6}, 1, nullable, 0x1E, 13}};

constexpr std::array system_tables{
    System_Table{2, 0x00, objects_columns, objects_indexes, objects_maps},
    System_Table{3, 0x12, rights_columns, rights_indexes},
    System_Table{4, 0x15, queries_columns, queries_indexes, queries_maps},
    System_Table{5, 0x1A, relations_columns, relations_indexes}};

Row_Place map_at(std::uint8_t row) { return {maps_page, row}; }

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
    for (const auto& index : table.indexes) {
        std::vector<Index_Part> parts;
        for (std::size_t i = 0; i < index.parts; ++i) parts.push_back({index.columns[i], true});
        append_real(definition, std::move(parts), index.flags, map_at(index.map_row), index.root);
    }
    for (std::uint32_t real = 0; real < table.indexes.size(); ++real)
        insert_logical(definition, std::u16string(table.indexes[real].name), real,
                       table.indexes[real].kind);
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
    store_u16(page.data(), page_kinds::data);
    store_u32(page.data() + page_owner, owner);
    store_u16(page.data() + jet4_layout.slot_count, rows);
    for (std::size_t row = 0; row < rows; ++row) {
        const auto at = page.size() - map_size * (row + 1);
        store_u16(page.data() + jet4_layout.slots + 2 * row, at);
        fill(row, std::span(page).subspan(at + 5, map_size - 5));
    }
    const auto lowest = page.size() - map_size * rows;
    store_u16(page.data() + page_free, lowest - jet4_layout.slots - 2 * rows);
    return page;
}

Page_Bytes empty_leaf(Page_Number table) {
    Page_Bytes page(jet4_layout.page_size);
    store_u16(page.data(), page_kinds::index_leaf);
    store_u16(page.data() + page_free, index_entry_room);
    store_u32(page.data() + page_owner, table);
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
    for (const auto& table : system_tables) {
        const auto joined = join_definition(system_definition(table));
        auto& page = pages[table.page];
        page = joined;
        store_u16(page.data() + page_free, jet4_layout.page_size - joined.size() - 8);
        page.resize(jet4_layout.page_size);
        for (const auto& index : table.indexes) {
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

using Sid = std::array<std::byte, 2>;

/// Users as a file names them: two bytes that differ from file to file, and these differences.
constexpr Sid sid(unsigned first, unsigned second) {
    return {std::byte(0x65 ^ first), std::byte(0x8B ^ second)};
}
constexpr Sid users = sid(0, 0);      ///< everybody
constexpr Sid admin = sid(1, 0);      ///< whom everything belongs to that a user creates
constexpr Sid the_engine = sid(0, 2); ///< whom the system tables belong to
constexpr Sid creator = sid(0, 5);    ///< in inherited rights: whoever creates the object

Bytes bytes_of(const Sid& sid) { return {sid.begin(), sid.end()}; }

/// Rights that new files of the format give, as they were found in them; the format is silent on
/// what the bits say each.
namespace rights {
constexpr std::int32_t all = 0xFFFFF;
constexpr std::int32_t all_but_one = 0xFFEFF; ///< on tables
constexpr std::int32_t creators = 0xF00FE;
constexpr std::int32_t administer = 0x60000; ///< change and hand on rights
constexpr std::int32_t administer_relations = 0xE0000;
constexpr std::int32_t administer_container = 0x60001;
constexpr std::int32_t open_database = 0xE;
constexpr std::int32_t administer_database = administer | open_database;
constexpr std::int32_t read = 0x14;
} // namespace rights

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
        New_Row row;
        row.values.resize(columns.size());
        row.changed.assign(columns.size(), true);
        for (const auto& [name, value] : cells)
            for (std::size_t i = 0; i < columns.size(); ++i)
                if (columns[i].name == name) row.values[i] = value;
        SURE(lay_out(*table_.definition, row, {}, longest_row, Origin::typed));
        writer_->insert(row);
    }

private:
    Heap_Hints hints_;
    Table_State table_;
    std::optional<Table_Writer> writer_;
};

void add_objects(Pager& pager, Date date) {
    struct Entry {
        std::int32_t id, parent;
        const char16_t* name;
        Object_Type type;
        Sid owner;
    };
    using enum Object_Type;
    System_Rows rows(pager, 2);
    for (const auto& entry : std::initializer_list<Entry>{
             {object_ids::tables, object_ids::root, u"Tables", container, the_engine},
             {object_ids::databases, object_ids::root, u"Databases", container, the_engine},
             {object_ids::relations, object_ids::root, u"Relationships", container, the_engine},
             {object_ids::database, object_ids::databases, u"MSysDb", database, admin},
             {2, object_ids::tables, u"MSysObjects", table, the_engine},
             {3, object_ids::tables, u"MSysACEs", table, the_engine},
             {4, object_ids::tables, u"MSysQueries", table, the_engine},
             {5, object_ids::tables, u"MSysRelationships", table, the_engine}})
        rows.add({{u"Id", entry.id},
                  {u"ParentId", entry.parent},
                  {u"Name", std::u16string(entry.name)},
                  {u"Type", static_cast<std::int32_t>(entry.type)},
                  {u"DateCreate", date},
                  {u"DateUpdate", date},
                  {u"Owner", bytes_of(entry.owner)},
                  {u"Flags", std::numeric_limits<std::int32_t>::min()}});
}

void add_rights(Pager& pager) {
    struct Entry {
        std::int32_t object;
        Sid sid;
        std::int32_t granted;
        bool inheritable = false;
    };
    System_Rows rows(pager, 3);
    for (const auto& entry :
         std::initializer_list<Entry>{{2, admin, rights::administer},
                                      {3, admin, rights::administer},
                                      {4, admin, rights::administer},
                                      {5, admin, rights::administer_relations},
                                      {object_ids::tables, creator, rights::creators, true},
                                      {object_ids::tables, admin, rights::administer_container},
                                      {object_ids::relations, creator, rights::creators, true},
                                      {object_ids::relations, admin, rights::administer_container},
                                      {object_ids::databases, admin, rights::administer},
                                      {object_ids::database, admin, rights::administer_database},
                                      {object_ids::database, users, rights::open_database},
                                      {4, users, rights::read},
                                      {5, users, rights::read},
                                      {2, users, rights::read},
                                      {object_ids::tables, users, rights::all_but_one, true},
                                      {object_ids::relations, users, rights::all, true}})
        rows.add({{u"ObjectId", entry.object},
                  {u"SID", bytes_of(entry.sid)},
                  {u"ACM", entry.granted},
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
