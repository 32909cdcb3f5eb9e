#pragma once

#include "platform/jet/catalogue/properties.h"
#include "platform/jet/format/definition.h"
#include "platform/jet/format/schema.h"
#include "platform/jet/index/index_key.h"
#include "platform/jet/pages/header.h"
#include "platform/jet/rows/row.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

/// Kinds of objects in MSysObjects that matter here.
enum class Object_Type : std::int32_t { table = 1, database = 2, container = 3, relation = 8 };

/// Ids that are the same in every file.
namespace object_ids {
inline constexpr std::int32_t root = 0x0F000000;
inline constexpr std::int32_t tables = 0x0F000001;
inline constexpr std::int32_t databases = 0x0F000002;
inline constexpr std::int32_t relations = 0x0F000003;
inline constexpr std::int32_t database = 0x10000000;
} // namespace object_ids

/// A row of MSysObjects.
struct Object {
    std::int32_t id = 0; ///< tables: page of the definition
    std::int32_t parent = 0;
    std::u16string name;
    Object_Type type = Object_Type::table;
    std::uint32_t flags = 0;
    Row_Place row;

    bool table() const { return type == Object_Type::table; }
    bool system() const { return (flags & 0x80000002U) != 0; }
    Page_Number page() const { return static_cast<std::uint32_t>(id) & 0xFFFFFFU; }
};

/// Columns of a definition by name; throws damaged when a system table lacks one.
const Column_Record& column_named(const Definition& definition, std::u16string_view name);

/// Everything in MSysObjects, in the order of the file. Throws damaged.
std::vector<Object> read_objects(Pager& pager, const Definition& objects);

/// LvProp of a row of MSysObjects.
Properties read_properties(Pager& pager, const Definition& objects, Row_Place row);

/// All relations from the rows of MSysRelationships.
std::vector<Relation> read_relations(Pager& pager, const Definition& relationships);

/// The columns of a table as the face shows them, in the order of their numbers.
std::vector<Column> described_columns(const Definition& definition, const Properties& properties);
std::vector<Index> described_indexes(const Definition& definition);

/// What keys of a real index depend on.
Key_Shape key_shape(const Definition& definition, const Real_Index& index);

} // namespace jet
