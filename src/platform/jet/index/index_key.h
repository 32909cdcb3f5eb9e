#pragma once

#include "platform/jet/format/layout.h"
#include "platform/jet/format/value.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace jet {

/// One column of an index, as far as keys depend on it.
struct Key_Column {
    Column_Type type = Column_Type::long_integer;
    bool ascending = true;
    std::uint32_t collation = general_collation; ///< Text and Memo only
};

/// The columns of an index (1..10) and its rules.
struct Key_Shape {
    std::vector<Key_Column> columns;
    bool unique = false;
    bool required = false;
    bool ignore_nulls = false;
};

/// Whether the bytes of all its keys are known; an index of which they are not must not be touched.
bool can_compute(const Key_Column& column) noexcept;
bool can_compute(const Key_Shape& shape) noexcept;

/// What nulls among the values mean for a row.
enum class Null_Rule {
    entry,         ///< the row has an entry, and a unique index guards it
    entry_repeats, ///< the row has an entry that may repeat even in a unique index: all values are
                   ///< null
    left_out,      ///< the row has no entry
    refused        ///< the row must not be stored
};
Null_Rule null_rule(const Key_Shape& shape, std::span<const Value> values) noexcept;

/// Appends flag byte and coding of one value. Keys compare as unsigned bytes.
/// Throws Error (refused) when the value is none of the column's type.
void append_key(Bytes& key, const Key_Column& column, const Value& value);

/// Key of a row from the values of the index columns in their order; fewer values make the common
/// beginning of all keys that start with them. Decimals must have the scale of their column.
Bytes key_of(std::span<const Key_Column> columns, std::span<const Value> values);

/// Coding of a text without the flag byte. Texts that differ only in case, in ignored characters or
/// past 255 units have one key.
void append_text_key(Bytes& key, std::u16string_view text, bool ascending);

} // namespace jet
