#include "platform/jet/pages/header.h"

#include "platform/jet/format/bytes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <string_view>

namespace jet {
namespace {

constexpr std::size_t hidden_begin = 0x18;
constexpr std::size_t version_at = 0x14;
constexpr std::size_t key_at = 0x3E;
constexpr std::size_t password_at = 0x42;
constexpr std::size_t collation_at = 0x6E; // Jet 3: 0x3A, 16 bits
constexpr std::size_t date_at = 0x72;
constexpr std::size_t commits_at = 0xE00;
constexpr char engine_bytes[] = "Standard Jet DB"; // with the zero behind it
constexpr std::string_view engine_name{engine_bytes, sizeof engine_bytes};

/// Hides the fields from 0x18 on; the same in all files, and its own inverse.
constexpr std::array<std::uint8_t, 128> header_mask = {
    0xB5, 0x6F, 0x03, 0x62, 0x61, 0x08, 0xC2, 0x55, 0xEB, 0xA9, 0x67, 0x72, 0x43, 0x3F, 0x00, 0x9C,
    0x7A, 0x9F, 0x90, 0xFF, 0x80, 0x9A, 0x31, 0xC5, 0x79, 0xBA, 0xED, 0x30, 0xBC, 0xDF, 0xCC, 0x9D,
    0x63, 0xD9, 0xE4, 0xC3, 0x7B, 0x42, 0xFB, 0x8A, 0xBC, 0x4E, 0x86, 0xFB, 0xEC, 0x37, 0x5D, 0x44,
    0x9C, 0xFA, 0xC6, 0x5E, 0x28, 0xE6, 0x13, 0xB6, 0x8A, 0x60, 0x54, 0x94, 0x7B, 0x36, 0xF5, 0x72,
    0xDF, 0xB1, 0x77, 0xF4, 0x13, 0x43, 0xCF, 0xAF, 0xB1, 0x33, 0x34, 0x61, 0x79, 0x5B, 0x92, 0xB5,
    0x7C, 0x2A, 0x05, 0xF1, 0x7C, 0x99, 0x01, 0x1B, 0x98, 0xFD, 0x12, 0x4F, 0x4A, 0x94, 0x6C, 0x3E,
    0x60, 0x26, 0x5F, 0x95, 0xF8, 0xD0, 0x89, 0x24, 0x85, 0x67, 0xC6, 0x1F, 0x27, 0x44, 0xD2, 0xEE,
    0xCF, 0x65, 0xED, 0xFF, 0x07, 0xC7, 0x46, 0xA1, 0x78, 0x16, 0x0C, 0xED, 0xE9, 0x2D, 0x62, 0xD4};

void apply_mask(Page_Bytes& page, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) page[hidden_begin + i] ^= std::byte{header_mask[i]};
}

[[noreturn]] void unsupported(const std::string& reason) {
    throw Error(Failure::unsupported, "page 0", reason);
}

/// The word that the password is mixed with: the whole days of the creation date.
std::uint32_t password_mask(const View& view) {
    const auto days = std::trunc(std::bit_cast<double>(view.number(date_at, 8)));
    return std::abs(days) < 1e9 ? static_cast<std::uint32_t>(static_cast<std::int32_t>(days)) : 0;
}

bool has_password(const View& view, bool jet3) {
    const std::size_t words = jet3 ? 5 : 10;
    const auto none = jet3 ? 0 : password_mask(view);
    for (std::size_t i = 0; i < words; ++i)
        if (view.u32(password_at + 4 * i) != none) return true;
    return false;
}

const Layout& layout_of(const View& view) {
    const auto name = view.part(4, engine_name.size()).bytes();
    if (view.u32(0) != 0x100 ||
        !std::equal(name.begin(), name.end(), engine_name.begin(),
                    [](std::byte b, char c) { return b == static_cast<std::byte>(c); }))
        throw Error(Failure::not_a_database, "page 0", "does not begin as a Jet database does");
    const auto version = view.u8(version_at);
    if (version > 1) unsupported("a later generation of the format");
    return version == 0 ? jet3_layout : jet4_layout;
}

} // namespace

Header read_header(Pager& pager) {
    Page_Bytes page = *pager.read(0);
    const View view(page, 0);
    if (page.size() < jet3_layout.page_size) unsupported("a file shorter than a page");
    Header header;
    header.layout = &layout_of(view);
    const bool jet3 = header.layout->jet3;
    apply_mask(page, header.layout->header_hidden);
    if (view.u32(key_at) != 0) unsupported("the pages are enciphered");
    if (has_password(view, jet3)) unsupported("the file has a password");
    header.collation = jet3 ? view.u16(0x3A) : view.u32(collation_at);
    return header;
}

Page_Bytes new_header() {
    Page_Bytes page(jet4_layout.page_size);
    const auto put = [&](std::size_t at, std::uint64_t number, std::size_t size) {
        store_number(page.data() + at, number, size);
    };
    put(0, 0x100, 4);
    std::transform(engine_name.begin(), engine_name.end(), page.begin() + 4,
                   [](char c) { return static_cast<std::byte>(c); });
    put(version_at, 1, 4);
    put(0x18, 0x0100, 4); // global map: row 0 of page 1
    put(0x1C, 0x0101, 4); // second map: row 1
    for (std::size_t i = 0; i < 4; ++i) put(0x20 + 4 * i, objects_page + i, 4);
    put(0x3C, 1252, 2);
    put(0x6A, 0x261C, 4);
    put(collation_at, general_collation, 4);
    put(date_at, 0x40E4AB3E3BD3853E, 8);
    for (std::size_t i = 0; i < 10; ++i) put(password_at + 4 * i, 42329, 4);
    apply_mask(page, jet4_layout.header_hidden);
    put(0x98, 0x654, 4);
    put(0x9C, 0x00302E34, 4); // "4.0"
    for (std::size_t i = 0; i < 256; ++i) put(commits_at + 2 * i, i == 0 ? 0x0101 : 0x0100, 2);
    return page;
}

} // namespace jet
