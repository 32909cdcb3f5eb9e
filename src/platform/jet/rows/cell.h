#pragma once

#include "platform/jet/format/definition.h"
#include "platform/jet/format/value.h"
#include "platform/jet/pages/pager.h"

namespace jet {

/// The value of a cell that is not null. @param cell its bytes in the row. Throws damaged.
Value decode_cell(Pager& pager, const Layout& layout, const Column_Record& column,
                  const View& cell);

/// Byte, Integer, Long.
std::int32_t decode_integer(const Column_Record& column, const View& cell);

/// Text and Memo.
void decode_text_cell(Pager& pager, const Layout& layout, const Column_Record& column,
                      const View& cell, std::u16string& into);

/// Throws refused (subject: the column) for a long value of 1 GiB and more: no header tells so much.
void check_length(const Column_Record& column, std::size_t bytes);

/// The value as the column will hold it: a whole number for a floating column becomes a floating
/// one, lone surrogates are replaced. Throws refused (subject: the column) when it is of another
/// type, too long or out of range, or when the column's type is not ours to write. One that is
/// restored is only refused when its column cannot have held it.
Value fitted(const Column_Record& column, const Value& value, Origin origin = Origin::typed);

/// The stored bytes of a fitted value (Memo, OLE: of the value itself, without the header). Throws
/// refused (subject: the column) for a text that has none.
Bytes encode_cell(const Column_Record& column, const Value& value);

} // namespace jet
