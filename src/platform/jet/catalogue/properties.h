#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/format/value.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

/// One property; `value` as stored.
struct Property {
    bool of_definition = false; ///< made by DDL; others are appearance and remarks
    std::uint8_t type = 0;      ///< codes of Column_Type
    std::uint16_t name = 0;     ///< number in the list of names
    Bytes value;
};

/// The properties of one column, or of the table itself.
struct Property_Block {
    std::uint16_t kind = 0; ///< 0: the table itself; others: a column
    std::u16string owner;
    std::vector<Property> properties;
    Bytes stored; ///< the block as found; given back untouched while `properties` is not changed
};

/// What stands in LvProp of the catalogue: properties of a table and its columns.
class Properties {
public:
    Properties() = default;
    /// Takes the stored form apart; empty bytes give no properties. Throws damaged naming `page`.
    Properties(const Bytes& stored, Page_Number page, bool jet3);

    bool empty() const { return blocks_.empty(); }
    std::optional<bool> boolean(std::u16string_view column, std::u16string_view name) const;
    std::u16string text(std::u16string_view column, std::u16string_view name) const;

    /// Adds properties of a column that has none of these names yet.
    void add_boolean(std::u16string_view column, std::u16string_view name, bool value);
    /// @param of_definition false for remarks like Description.
    void add_text(std::u16string_view column, std::u16string_view name, std::u16string_view value,
                  bool of_definition);
    /// Forgets what is stored for a column; a new one of that name begins afresh.
    void remove_column(std::u16string_view column);

    /// The stored form; nothing when there are no properties. Blocks that were not changed and
    /// names that are known keep their bytes and their places.
    Bytes stored() const;

private:
    const Property* find(std::u16string_view column, std::u16string_view name) const;
    void add(std::u16string_view column, std::u16string_view name, Property property);
    std::uint16_t name_number(std::u16string_view name);
    void parse_names(const View& body);
    void parse_block(const View& block, std::uint16_t kind);
    std::u16string decode(std::span<const std::byte> stored) const;

    bool jet3_ = false;
    std::vector<std::u16string> names_;
    std::vector<Property_Block> blocks_; ///< without the list of names, which is always first
};

} // namespace jet
