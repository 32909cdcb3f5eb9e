// Text keys of the collation "General". A key has up to four parts: MAIN orders letters without
// case, EXTRA holds accents by position, KANA the kind of syllables, HIDDEN the characters that
// count only when all else is equal (hyphens, apostrophes, control characters).

#include "platform/jet/collation/unit_code.h"
#include "platform/jet/index/index_key.h"

#include <algorithm>
#include <array>

namespace jet {
namespace {

using collation::Unit_Class;
using collation::Unit_Code;

constexpr std::size_t longest_text = 255; ///< units that count
constexpr std::uint8_t plain = 2;         ///< EXTRA of a unit without an accent
constexpr std::uint8_t kana_default = 3;
constexpr std::uint8_t surrogate_extra = 0x3F;

/// A part of a key on the stack: indexing texts must not cost allocations.
template <std::size_t Room>
class Part {
public:
    void push(std::uint8_t byte) { bytes_[size_++] = byte; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    std::uint8_t& last() { return bytes_[size_ - 1]; }
    void pop() { --size_; }
    std::span<const std::uint8_t> bytes() const { return std::span(bytes_).first(size_); }

private:
    std::array<std::uint8_t, Room> bytes_; // NOLINT: bytes past size_ are never read
    std::size_t size_ = 0;
};

void append(Bytes& key, std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) key.push_back(std::byte{byte});
}

void append(Bytes& key, std::initializer_list<std::uint8_t> bytes) {
    append(key, std::span(bytes.begin(), bytes.size()));
}

/// Surrogates take two inline bytes from the place in their range, with a few shifts.
std::uint16_t surrogate_code(char16_t unit) {
    constexpr struct {
        unsigned below, shift;
    } shifts[] = {{8, 9992}, {262, 9990}, {516, 9988}, {770, 9986}, {1024, 9984}};
    if (unit < 0xDC00) return static_cast<std::uint16_t>(unit - 10238);
    const unsigned offset = unit - 0xDC00U;
    const auto* shift = std::ranges::find_if(shifts, [=](auto s) { return offset < s.below; });
    return static_cast<std::uint16_t>(unit - shift->shift);
}

class Text_Key {
public:
    explicit Text_Key(Bytes& key) : key_(key) {}

    void add(char16_t unit) {
        const Unit_Code code = collation::unit_code(unit);
        switch (code.kind) {
        case Unit_Class::ignored:
            break;
        case Unit_Class::normal:
        case Unit_Class::accented:
            add_inline(code.inline_bytes(), code.extra_bytes());
            break;
        case Unit_Class::kana:
            add_inline(code.inline_bytes(), code.extra_bytes());
            kana_.push(code.special);
            break;
        case Unit_Class::surrogate:
            add_surrogate(unit);
            break;
        case Unit_Class::hidden:
            add_hidden(code.special);
            break;
        case Unit_Class::mark:
            add_mark(code.special);
            break;
        }
    }

    /// Puts the parts behind MAIN, which has been written as the units came.
    void finish() {
        append(key_, {0x01});
        while (!extra_.empty() && extra_.last() <= plain) extra_.pop();
        const bool tail = !kana_.empty() || !hidden_.empty();
        append(key_, extra_.bytes());
        if (tail) append(key_, {0x01, 0x01});
        if (!kana_.empty()) finish_kana();
        if (!hidden_.empty()) {
            append(key_, {0x01});
            append(key_, hidden_.bytes());
        }
    }

private:
    void add_inline(std::span<const std::uint8_t> main, std::span<const std::uint8_t> extra) {
        append(key_, main);
        if (!extra.empty()) {
            cover(position_);
            for (const std::uint8_t byte : extra) extra_.push(byte);
            covered_ = position_ + 1;
        }
        ++position_;
    }

    void add_surrogate(char16_t unit) {
        const std::uint16_t code = surrogate_code(unit);
        const std::array main{static_cast<std::uint8_t>(code >> 8),
                              static_cast<std::uint8_t>(code)};
        add_inline(main, std::span(&surrogate_extra, 1));
    }

    /// Positions count units as long as no accent came, else bytes of EXTRA.
    void add_hidden(std::uint8_t code) {
        const std::size_t place =
            extra_.empty() ? position_ : extra_.size() + (position_ - covered_) - bare_mark_;
        const std::size_t field = 0x8000 | (7 + 4 * place);
        hidden_.push(static_cast<std::uint8_t>(field >> 8));
        hidden_.push(static_cast<std::uint8_t>(field));
        hidden_.push(0x06);
        hidden_.push(code);
    }

    /// A mark changes the accent of the unit before it; before the first unit it stands alone.
    void add_mark(std::uint8_t value) {
        cover(position_);
        if (extra_.empty()) {
            extra_.push(value);
            bare_mark_ = 1;
        } else {
            extra_.last() = static_cast<std::uint8_t>(extra_.last() + value);
        }
    }

    void cover(std::size_t units) {
        for (; covered_ < units; ++covered_) extra_.push(plain);
    }

    /// Three flags a byte, the first in the highest pair of the lower six bits.
    void finish_kana() {
        while (!kana_.empty() && kana_.last() == kana_default) kana_.pop();
        const auto flags = kana_.bytes();
        for (std::size_t i = 0; i < flags.size(); i += 3) {
            unsigned packed = 0x80;
            for (std::size_t j = 0; j < 3 && i + j < flags.size(); ++j)
                packed |= static_cast<unsigned>(flags[i + j]) << (4 - 2 * j);
            append(key_, {static_cast<std::uint8_t>(packed)});
        }
        append(key_, {0xFF, 0x02, 0x80, 0xFF, 0x80});
        if (!hidden_.empty()) append(key_, {0xFF});
    }

    Bytes& key_;
    Part<2 * longest_text + 1> extra_;
    Part<4 * longest_text> hidden_;
    Part<longest_text> kana_;
    std::size_t position_ = 0; ///< units that gave inline bytes
    std::size_t covered_ = 0;  ///< units of these that EXTRA speaks of
    std::size_t bare_mark_ = 0;
};

} // namespace

void append_text_key(Bytes& key, std::u16string_view text, bool ascending) {
    text = text.substr(0, longest_text);
    text = text.substr(0, text.find_last_not_of(u' ') + 1);
    const std::size_t start = key.size();
    Text_Key parts(key);
    for (const char16_t unit : text) parts.add(unit);
    parts.finish();
    if (!ascending) {
        key.push_back(std::byte{0});
        std::ranges::for_each(std::span(key).subspan(start), [](std::byte& b) { b = ~b; });
    }
    key.push_back(std::byte{0});
}

} // namespace jet
