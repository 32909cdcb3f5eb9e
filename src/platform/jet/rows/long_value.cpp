#include "platform/jet/rows/long_value.h"

#include "platform/jet/rows/row.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint32_t long_value_owner = 0x4C41564C; // "LVAL"

/// Calls `take(pointer, data)` for each piece until `length` bytes are seen.
template <typename Take>
void walk_pieces(Pager& pager, const Layout& layout, const View& cell, Take take) {
    const auto header = Long_Header::from(cell);
    auto left = header.length;
    if (left > std::size_t{pager.page_count()} * layout.page_size)
        cell.fail("a long value longer than the file");
    const bool chain = header.kind == Long_Header::Kind::chain;
    for (auto at = header.first; left > 0;) {
        const Data_Page page(pager, layout, at.page);
        if (page.owner() != long_value_owner) throw damaged(at.page, "holds no long values");
        if (at.slot >= page.count() || page.kind(at.slot) == Slot_Kind::deleted)
            throw damaged(at.page, "a piece of a long value is missing");
        auto data = page.row(at.slot);
        const auto next = chain ? Row_Place::from(data.u32(0)) : Row_Place{};
        if (chain) data = data.part(4, data.size() - 4);
        const auto taken = std::min(left, data.size());
        if (taken == 0) throw damaged(at.page, "an empty piece of a long value");
        take(at, data.part(0, taken));
        left -= taken;
        if (left > 0 && next.page == 0) throw damaged(at.page, "a long value is cut off");
        at = next;
    }
}

} // namespace

Long_Header Long_Header::from(const View& cell) {
    const auto word = cell.u32(0);
    Long_Header header;
    header.length = word & longest;
    header.first = Row_Place::from(cell.u32(4));
    header.stamp = cell.u32(8);
    if (word >> 30U == 3) cell.fail("a long value of unknown kind");
    header.kind = static_cast<Kind>(word >> 30U);
    if (header.kind == Kind::in_row && header.length > cell.size() - size)
        cell.fail("a long value that ends outside its row");
    return header;
}

Bytes Long_Header::bytes() const {
    Bytes cell(size);
    store_u32(cell.data(), length | std::uint64_t{static_cast<std::uint8_t>(kind)} << 30U);
    store_u32(cell.data() + 4, first.number());
    store_u32(cell.data() + 8, stamp);
    return cell;
}

Bytes read_long_value(Pager& pager, const Layout& layout, const View& cell) {
    const auto header = Long_Header::from(cell);
    if (header.kind == Long_Header::Kind::in_row) {
        const auto data = cell.part(Long_Header::size, header.length).bytes();
        return {data.begin(), data.end()};
    }
    Bytes whole;
    walk_pieces(pager, layout, cell, [&](Row_Place, const View& data) {
        whole.insert(whole.end(), data.bytes().begin(), data.bytes().end());
    });
    return whole;
}

std::vector<Row_Place> long_value_pieces(Pager& pager, const Layout& layout, const View& cell) {
    std::vector<Row_Place> pieces;
    if (Long_Header::from(cell).kind != Long_Header::Kind::in_row)
        walk_pieces(pager, layout, cell, [&](Row_Place at, const View&) { pieces.push_back(at); });
    return pieces;
}

} // namespace jet
