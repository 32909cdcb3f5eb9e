#pragma once

#include "platform/jet/check/value.h"

namespace jet::check {

using Key = std::vector<std::uint8_t>;

/// Whether the keys of a column can be computed: the order of its texts is known, its type has
/// keys.
bool has_known_keys(const Format& format, const Column& column);

/// Appends what an index holds for a value: a flag byte and the coding of the type.
/// @param text UTF-16 units of a Text or Memo that is not null (the first 255 are enough)
void append_key(Key& key, const Column& column, const Value& value, std::u16string_view text,
                bool ascending);

/// Appends the key of a text in the collation "General" (0x0409, version 0), without flag byte.
void append_text_key(Key& key, std::u16string_view text, bool ascending);

} // namespace jet::check
