#pragma once

#include "platform/jet/catalogue/properties.h"
#include "platform/jet/engine.h"
#include "platform/jet/index/index_tree.h"

#include <optional>
#include <string_view>
#include <vector>

namespace jet {

/// Limits of the format, as other programs keep them.
inline constexpr std::size_t most_columns = 255;
inline constexpr std::size_t most_indexes = 32;
inline constexpr std::size_t most_index_columns = 10;

/// All throw Error (refused).
void check_name(std::u16string_view name);
void check_new_column(const Column& column);
/// @param columns of the table; the index may only be over these.
void check_new_index(const std::vector<Column>& columns, const std::vector<Index>& others,
                     const Index& index);

/// Adds what a column record has no place for.
void add_properties(Properties& properties, const Column& column);

/// The columns of an index by their numbers.
std::vector<Index_Part> parts_of(const Definition& definition, const Index& index);

/// A tree over exactly these columns with exactly these flags.
std::optional<std::uint32_t> real_with(const Definition& definition,
                                       const std::vector<Index_Part>& parts, std::uint8_t flags);

/// The entries of an index over the rows that are there, in any order.
/// Throws refused for nulls or double keys that the shape forbids.
std::vector<Index_Tree::Entry> entries_of(Engine& engine, const Table_State& table,
                                          const std::vector<Index_Part>& parts,
                                          const Key_Shape& shape, std::u16string_view name);

Key_Shape shape_of(const Definition& definition, const std::vector<Index_Part>& parts,
                   std::uint8_t flags);

} // namespace jet
