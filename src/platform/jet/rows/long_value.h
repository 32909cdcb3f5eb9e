#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/format/layout.h"
#include "platform/jet/format/value.h"
#include "platform/jet/pages/pager.h"

namespace jet {

/// What stands in the row for a Memo or OLE value.
struct Long_Header {
    enum class Kind : std::uint8_t { chain = 0, one_row = 1, in_row = 2 };
    static constexpr std::size_t size = 12;
    static constexpr std::size_t longest = 0x3FFFFFFF; ///< the length has 30 bits

    Bytes bytes() const;

    std::size_t length = 0; ///< of the value in bytes
    Kind kind = Kind::in_row;
    Row_Place first;
    std::uint32_t stamp = 0;

    /// Throws damaged.
    static Long_Header from(const View& cell);
};

/// Collects the bytes of a Memo or OLE value. Throws damaged when pieces are missing or run in a
/// circle.
Bytes read_long_value(Pager& pager, const Layout& layout, const View& cell);

/// The rows that hold a value (none when it stands in the row).
std::vector<Row_Place> long_value_pieces(Pager& pager, const Layout& layout, const View& cell);

} // namespace jet
