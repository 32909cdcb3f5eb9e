#include "platform/jet/format/text.h"

#include "platform/jet/format/bytes.h"

#include <algorithm>
#include <array>
#include <optional>

namespace jet {
namespace {

constexpr std::array<char16_t, 32> ansi_80_to_9f = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr bool high_surrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool low_surrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

bool begins_compressed(std::span<const std::byte> stored) {
    return stored.size() >= 2 && load_u16(stored.data()) == 0xFEFF;
}

void decode_wide(std::span<const std::byte> stored, std::u16string& into) {
    into.resize(stored.size() / 2);
    for (std::size_t i = 0; i < into.size(); ++i) into[i] = load_u16(stored.data() + 2 * i);
}

/// After FF FE: narrow and wide runs, a zero byte toggles. It is looked for at every byte, so the
/// high byte of a wide character is never zero.
void decode_compressed(std::span<const std::byte> stored, std::u16string& into) {
    into.clear();
    bool narrow = true;
    for (std::size_t i = 0; i < stored.size(); ++i) {
        const char16_t low = load_u8(stored.data() + i);
        if (low == 0)
            narrow = !narrow;
        else if (narrow)
            into.push_back(low);
        else if (++i < stored.size())
            into.push_back(static_cast<char16_t>(low | load_u8(stored.data() + i) << 8U));
    }
}

/// The form that decode_compressed() reads, with its mark; nothing where a character has none.
std::optional<std::vector<std::byte>> encode_runs(std::u16string_view text) {
    std::vector<std::byte> stored{std::byte{0xFF}, std::byte{0xFE}};
    bool narrow = true;
    for (const char16_t c : text) {
        const auto low = static_cast<std::byte>(c);
        const auto high = static_cast<std::byte>(c >> 8U);
        if (low == std::byte{0}) return std::nullopt;
        if (narrow != (high == std::byte{0})) {
            stored.push_back(std::byte{0});
            narrow = !narrow;
        }
        stored.push_back(low);
        if (!narrow) stored.push_back(high);
    }
    return stored;
}

bool compressible(std::u16string_view text) {
    return text.size() >= 3 && text.size() <= 1024 &&
           std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= 1 && c <= 0xFF; });
}

char16_t folded(char16_t c) {
    if (c < 0x80) return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 0x20) : c;
    if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3A9) ||
        (c >= 0x410 && c <= 0x42F))
        return static_cast<char16_t>(c + 0x20);
    if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 0x50);
    if (c >= 0x100 && c <= 0x137 && c != 0x130) return static_cast<char16_t>(c | 1U);
    return c;
}

void append_utf8(char32_t c, std::string& into) {
    const auto tail = [&](unsigned shift) {
        into.push_back(static_cast<char>(0x80U | (c >> shift & 0x3FU)));
    };
    if (c < 0x80) {
        into.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        into.push_back(static_cast<char>(0xC0U | c >> 6U));
        tail(0);
    } else if (c < 0x10000) {
        into.push_back(static_cast<char>(0xE0U | c >> 12U));
        tail(6), tail(0);
    } else {
        into.push_back(static_cast<char>(0xF0U | c >> 18U));
        tail(12), tail(6), tail(0);
    }
}

} // namespace

void decode_text(std::span<const std::byte> stored, std::u16string& into) {
    if (begins_compressed(stored))
        decode_compressed(stored.subspan(2), into);
    else
        decode_wide(stored, into);
}

void decode_ansi(std::span<const std::byte> stored, std::u16string& into) {
    into.resize(stored.size());
    std::transform(stored.begin(), stored.end(), into.begin(), [](std::byte b) {
        const auto c = std::to_integer<std::uint8_t>(b);
        return c >= 0x80 && c <= 0x9F ? ansi_80_to_9f[c - 0x80U] : char16_t{c};
    });
}

std::vector<std::byte> encode_plain(std::u16string_view text) {
    std::vector<std::byte> stored(2 * text.size());
    for (std::size_t i = 0; i < text.size(); ++i) store_u16(stored.data() + 2 * i, text[i]);
    return stored;
}

std::vector<std::byte> encode_text(std::u16string_view text, bool compressed) {
    const bool seems_compressed = !text.empty() && text.front() == 0xFEFF;
    if (!seems_compressed && !(compressed && compressible(text))) return encode_plain(text);
    if (auto stored = encode_runs(text)) return *std::move(stored);
    throw Error(Failure::refused, to_utf8(text), "begins with the mark of compressed text");
}

std::vector<std::byte> encode_shortest(std::u16string_view text) {
    auto runs = encode_runs(text);
    const bool only = !text.empty() && text.front() == 0xFEFF;
    return runs && (only || runs->size() < 2 * text.size()) ? *std::move(runs)
                                                            : encode_text(text, false);
}

std::u16string without_lone_surrogates(std::u16string_view text) {
    std::u16string whole(text);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (high_surrogate(whole[i]) && i + 1 < whole.size() && low_surrogate(whole[i + 1]))
            ++i;
        else if (high_surrogate(whole[i]) || low_surrogate(whole[i]))
            whole[i] = 0xFFFD;
    }
    return whole;
}

bool same_name(std::u16string_view one, std::u16string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char16_t a, char16_t b) { return folded(a) == folded(b); });
}

std::string to_utf8(std::u16string_view text) {
    std::string utf8;
    const auto whole = without_lone_surrogates(text);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        char32_t c = whole[i];
        if (high_surrogate(whole[i])) c = 0x10000 + ((c - 0xD800) << 10U) + (whole[++i] - 0xDC00U);
        append_utf8(c, utf8);
    }
    return utf8;
}

void refuse(std::u16string_view subject, const std::string& reason) {
    throw Error(Failure::refused, to_utf8(subject), reason);
}

} // namespace jet
