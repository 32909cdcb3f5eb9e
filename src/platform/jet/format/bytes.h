#pragma once

#include "platform/jet/format/error.h"
#include "platform/jet/format/page.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace jet {

/// The error of a file whose bytes contradict each other.
inline Error damaged(Page_Number page, const std::string& reason) {
    return {Failure::damaged, "page " + std::to_string(page), reason};
}

inline std::uint8_t load_u8(const std::byte* at) { return std::to_integer<std::uint8_t>(*at); }

/// Little-endian number of `size` bytes (1..8).
inline std::uint64_t load_number(const std::byte* at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;) number = number << 8U | load_u8(at + i);
    return number;
}

inline std::uint16_t load_u16(const std::byte* at) {
    return static_cast<std::uint16_t>(load_u8(at) | load_u8(at + 1) << 8U);
}

inline std::uint32_t load_u32(const std::byte* at) {
    return load_u16(at) | static_cast<std::uint32_t>(load_u16(at + 2)) << 16U;
}

inline void store_number(std::byte* at, std::uint64_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i, number >>= 8U) at[i] = static_cast<std::byte>(number);
}

inline void store_u16(std::byte* at, std::size_t number) { store_number(at, number, 2); }
inline void store_u32(std::byte* at, std::uint64_t number) { store_number(at, number, 4); }

/// Bytes of a page (or of something that was put together from pages), read within their bounds:
/// whatever points outside is damage of that page.
class View {
public:
    View() = default;
    View(std::span<const std::byte> bytes, Page_Number page) : bytes_(bytes), page_(page) {}

    std::size_t size() const { return bytes_.size(); }
    Page_Number page() const { return page_; }
    std::span<const std::byte> bytes() const { return bytes_; }

    std::uint8_t u8(std::size_t at) const { return load_u8(need(at, 1)); }
    std::uint16_t u16(std::size_t at) const { return load_u16(need(at, 2)); }
    std::uint32_t u32(std::size_t at) const { return load_u32(need(at, 4)); }
    std::int32_t i32(std::size_t at) const { return static_cast<std::int32_t>(u32(at)); }
    std::uint64_t number(std::size_t at, std::size_t size) const {
        return load_number(need(at, size), size);
    }
    View part(std::size_t at, std::size_t size) const { return {{need(at, size), size}, page_}; }

    [[noreturn]] void fail(const std::string& reason) const { throw damaged(page_, reason); }

private:
    const std::byte* need(std::size_t at, std::size_t size) const {
        if (at > bytes_.size() || size > bytes_.size() - at)
            fail("something points to offset " + std::to_string(at) + ", beyond its end");
        return bytes_.data() + at;
    }

    std::span<const std::byte> bytes_;
    Page_Number page_ = 0;
};

} // namespace jet
