#pragma once

#include "platform/jet/format/value.h"

#include <QAnyStringView>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace ado {

/// What a field holds, in full fidelity, so that a row can be put back as it was.
using Value = jet::Value;

inline Value null() { return jet::Null{}; }
inline Value value(std::int32_t number) { return number; }
inline Value value(const QString& text) { return text.toStdU16String(); }

using jet::is_null;

/// Whole number nearest to a number of any type, or of a text that is one; nothing for null, for
/// other types and beyond 32 bits. Boolean: 0 or -1.
std::optional<std::int32_t> number(const Value& value);

/// Text as it is, numbers in decimal; nothing for null and for other types.
std::optional<QString> text(const Value& value);

/// One row: the fields in the order of the table's columns, or those that are to be set.
using Row = std::vector<std::pair<QString, Value>>;

/// The number in a field of a row, whatever the case of its name; 0 for null or no such field.
std::int32_t number_in(const Row& row, QAnyStringView column);

inline bool same_cell(const Row::value_type& one, const Row::value_type& other) {
    return one.first == other.first && jet::same_value(one.second, other.second);
}

} // namespace ado
