#include "platform/jet/pages/usage_map.h"

#include "platform/failure/sure.h"
#include "platform/jet/pages/page_space.h"
#include "platform/jet/pages/usage_map_row.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace jet {
namespace {

constexpr std::byte reference_kind{1};
constexpr std::byte bit_page_type{5};
constexpr std::size_t bits_offset = 5;      ///< in an inline row: kind, first page
constexpr std::size_t bit_page_header = 4;  ///< of a page that holds nothing but bits
constexpr std::size_t longest_inline = 197; ///< 1536 pages; beyond, references are less to shift

std::size_t pages_per_reference(const Pager& pager) {
    return (pager.page_size() - bit_page_header) * 8;
}

bool bit_at(std::span<const std::byte> bits, std::size_t number) {
    return (std::to_integer<unsigned>(bits[number / 8]) >> (number % 8) & 1U) != 0;
}

void set_bit(std::span<std::byte> bits, std::size_t number, bool on) {
    const auto mask = static_cast<std::byte>(1U << (number % 8));
    std::byte& byte = bits[number / 8];
    byte = on ? byte | mask : byte & ~mask;
}

std::optional<std::size_t> next_bit(std::span<const std::byte> bits, std::size_t from) {
    std::size_t byte = from / 8;
    if (byte >= bits.size()) return {};
    unsigned rest = load_u8(&bits[byte]) & (0xFFU << (from % 8));
    while (rest == 0) {
        if (++byte == bits.size()) return {};
        rest = load_u8(&bits[byte]);
    }
    return byte * 8 + static_cast<std::size_t>(std::countr_zero(rest));
}

std::optional<std::size_t> last_bit(std::span<const std::byte> bits, bool set) {
    for (std::size_t byte = bits.size(); byte-- > 0;) {
        const unsigned found = load_u8(&bits[byte]) ^ (set ? 0U : 0xFFU);
        if (found != 0) return byte * 8 + static_cast<std::size_t>(std::bit_width(found)) - 1;
    }
    return {};
}

/// A map row, held together with its page.
class Bits {
public:
    Bits(Pager& pager, Row_Place place)
        : pager_(pager), page_(pager.read(place.page)), row_(map_row(*page_, place)) {
        if (row_.bytes.size() < bits_offset || row_.bytes[0] > reference_kind)
            throw damaged(place.page, "map row " + std::to_string(place.slot) + " is none");
    }

    bool referring() const { return row_.bytes[0] == reference_kind; }
    std::size_t offset() const { return row_.offset; }
    std::size_t size() const { return row_.bytes.size(); }
    std::span<const std::byte> row() const { return row_.bytes; }

    // inline
    std::span<const std::byte> bits() const { return row_.bytes.subspan(bits_offset); }
    std::uint64_t first() const { return load_u32(&row_.bytes[1]); }
    std::uint64_t end() const { return first() + bits().size() * 8; }
    bool reaches(std::uint64_t page) const { return page >= first() && page < end(); }

    // references
    std::size_t references() const { return (row_.bytes.size() - 1) / 4; }
    /// The page that holds the bits of a span; nothing where there is none. Foreign files have junk
    /// among the references: what lies beyond the file is no reference.
    std::optional<Page_Number> reference(std::size_t span) const {
        if (span >= references()) return {};
        const Page_Number page = load_u32(&row_.bytes[1 + 4 * span]);
        if (page == 0 || page >= pager_.page_count()) return {};
        return page;
    }

private:
    Pager& pager_;
    Page page_;
    Map_Row row_;
};

/// A page that a reference leads to.
Page bit_page(Pager& pager, Page_Number number) {
    Page page = pager.read(number);
    if (page->front() != bit_page_type) throw damaged(number, "it should hold bits of a map");
    return page;
}

std::span<const std::byte> bits_of(const Page& page) {
    return std::span(*page).subspan(bit_page_header);
}

std::optional<std::uint64_t> next_inline(const Bits& map, Page_Number from) {
    const std::uint64_t skipped = std::max<std::uint64_t>(from, map.first()) - map.first();
    const auto bit = next_bit(map.bits(), (skipped));
    if (!bit) return {};
    return map.first() + *bit;
}

std::optional<std::uint64_t> next_referred(Pager& pager, const Bits& map, Page_Number from) {
    const std::size_t each = pages_per_reference(pager);
    for (std::size_t span = from / each; span < map.references(); ++span) {
        const std::optional<Page_Number> page = map.reference(span);
        if (!page) continue;
        const std::size_t start = std::max(span * each, std::size_t{from}) - span * each;
        if (const auto bit = next_bit(bits_of(bit_page(pager, *page)), start))
            return span * each + *bit;
    }
    return {};
}

} // namespace

bool Usage_Map::contains(Page_Number page) const {
    const Bits map(*pager_, place_);
    if (!map.referring()) return map.reaches(page) && bit_at(map.bits(), (page - map.first()));
    const std::size_t each = pages_per_reference(*pager_);
    const std::optional<Page_Number> reference = map.reference(page / each);
    return reference && bit_at(bits_of(bit_page(*pager_, *reference)), page % each);
}

std::optional<Page_Number> Usage_Map::next_from(Page_Number from) const {
    const Bits map(*pager_, place_);
    const auto page = map.referring() ? next_referred(*pager_, map, from) : next_inline(map, from);
    if (!page || *page >= pager_->page_count()) return {};
    return static_cast<Page_Number>(*page);
}

std::vector<Page_Number> Usage_Map::pages() const {
    std::vector<Page_Number> found;
    for (auto page = next_from(0); page; page = next_from(*page + 1)) found.push_back(*page);
    return found;
}

std::optional<std::uint64_t> Usage_Map::last(bool set) const {
    const Bits map(*pager_, place_);
    if (!map.referring()) {
        const auto bit = last_bit(map.bits(), set);
        return bit ? std::optional(map.first() + *bit) : std::nullopt;
    }
    for (std::size_t span = map.references(); span-- > 0;)
        if (const auto page = map.reference(span))
            if (const auto bit = last_bit(bits_of(bit_page(*pager_, *page)), set))
                return span * pages_per_reference(*pager_) + *bit;
    return {};
}

/// @return false when the map has no place for the page.
bool Usage_Map::set(Page_Number page, bool on) {
    const Bits map(*pager_, place_);
    if (!map.referring()) {
        if (!map.reaches(page)) return false;
        const auto row = pager_->change(place_.page).subspan(map.offset(), map.size());
        set_bit(row.subspan(bits_offset), (page - map.first()), on);
        return true;
    }
    const std::size_t each = pages_per_reference(*pager_);
    const std::optional<Page_Number> reference = map.reference(page / each);
    if (!reference) return false;
    bit_page(*pager_, *reference); // refuses pages of another kind
    set_bit(pager_->change(*reference).subspan(bit_page_header), page % each, on);
    return true;
}

void Usage_Map::put(Page_Number page, bool on) {
    if (!set(page, on))
        throw damaged(place_.page, "a map has no place for " + std::to_string(page));
}

void Usage_Map::add(Page_Space& space, Page_Number page) {
    if (contains(page) || set(page, true)) return;
    cover(page, {.global = false, .longest = longest_inline, .take_page = [&space] {
                     return space.allocate();
                 }});
    put(page, true);
}

void Usage_Map::remove(Page_Number page) {
    if (contains(page)) put(page, false);
}

/// Makes a place for a page that the map does not reach.
void Usage_Map::cover(Page_Number page, const Growth& growth) {
    if (Bits(*pager_, place_).referring())
        add_reference(page / pages_per_reference(*pager_), growth);
    else if (!stretch(page, growth))
        refer(page, growth);
}

/// Moves the first page or lengthens the inline row so that it reaches `page` and all members.
bool Usage_Map::stretch(Page_Number page, const Growth& growth) {
    const Bits map(*pager_, place_);
    std::uint64_t first = std::min<std::uint64_t>(map.first(), page & ~Page_Number{7});
    std::uint64_t end = std::max<std::uint64_t>(map.end(), page + std::uint64_t{1});
    const std::vector<Page_Number> members = pages();
    if (!growth.global) {
        // bits that are clear at either end need no place
        end = std::max(page, members.empty() ? page : members.back()) + std::uint64_t{1};
        if (end - first > map.bits().size() * 8)
            first = std::min(page, members.empty() ? page : members.front()) & ~Page_Number{7};
    }
    const std::size_t words = (end - first + 31) / 32;
    const std::size_t size = std::max(map.size(), bits_offset + 4 * words);
    if (size > growth.longest) return false;
    std::vector<std::byte> row(size, std::byte{0});
    store_u32(&row[1], first);
    const auto bits = std::span(row).subspan(bits_offset);
    if (growth.global)
        // pages that exist without a bit of their own are in use
        for (std::uint64_t number = std::max<std::uint64_t>(map.end(), pager_->page_count());
             number < first + bits.size() * 8; ++number)
            set_bit(bits, number - first, true);
    for (std::uint64_t number = map.first(); number < map.end(); ++number)
        if (number >= first && number - first < bits.size() * 8)
            set_bit(bits, number - first, bit_at(map.bits(), number - map.first()));
    return replace_map_row(*pager_, place_, row);
}

/// Turns the inline row into references, its length kept.
void Usage_Map::refer(Page_Number page, const Growth& growth) {
    const std::vector<Page_Number> members = pages();
    std::vector<std::byte> row(Bits(*pager_, place_).size(), std::byte{0});
    row[0] = reference_kind;
    if (!replace_map_row(*pager_, place_, row))
        throw damaged(place_.page, "its map rows are out of order");
    const std::size_t each = pages_per_reference(*pager_);
    const auto refer_to = [&](std::size_t span) {
        if (!Bits(*pager_, place_).reference(span)) add_reference(span, growth);
    };
    if (growth.global) // every page of the file needs its bit, so that it can be given back
        for (std::size_t span = 0; span * each < pager_->page_count(); ++span) refer_to(span);
    for (const Page_Number member : members) {
        refer_to(member / each);
        put(member, true);
    }
    refer_to(page / each);
}

/// Adds a page of bits for one span. In the global map the pages of the span that exist are in use
/// until a member of the old map says otherwise.
void Usage_Map::add_reference(std::size_t span, const Growth& growth) {
    const std::size_t each = pages_per_reference(*pager_);
    const Page_Number number = growth.take_page();
    const auto page = pager_->change(number);
    std::ranges::fill(page, growth.global ? std::byte{0xFF} : std::byte{0});
    page[0] = bit_page_type;
    page[1] = std::byte{1};
    store_u16(&page[2], 0);
    if (growth.global)
        for (std::size_t bit = 0; bit < each && span * each + bit < pager_->page_count(); ++bit)
            set_bit(page.subspan(bit_page_header), bit, false);
    const std::size_t place = reference_place(span);
    store_u32(&pager_->change(place_.page)[place], number);
    // where the global map does not reach this page yet, it is in use for lack of a bit
    if (growth.global) std::ignore = set(number, false);
}

/// Where on the map's page the reference of a span stands; a short row is lengthened.
std::size_t Usage_Map::reference_place(std::size_t span) {
    const Bits map(*pager_, place_);
    const std::size_t in_row = 1 + 4 * span;
    if (in_row + 4 <= map.size()) return map.offset() + in_row;
    std::vector<std::byte> row(map.row().begin(), map.row().end());
    row.resize(in_row + 4);
    if (!replace_map_row(*pager_, place_, row))
        throw Error(Failure::refused, "page " + std::to_string(place_.page), "no room for its map");
    return Bits(*pager_, place_).offset() + in_row;
}

Usage_Map Usage_Map::make(Pager& pager, Page_Space& space, Page_Number near) {
    constexpr std::size_t usual_size = 69;
    const std::vector<std::byte> row(usual_size, std::byte{0}); // inline, from page 0, nothing set
    std::optional<Row_Place> place;
    if (near != 0) place = append_map_row(pager, near, row);
    if (!place) {
        const Page_Number page = space.allocate();
        format_map_page(pager, page);
        place = append_map_row(pager, page, row);
    }
    SURE(place);
    return {pager, *place};
}

} // namespace jet
