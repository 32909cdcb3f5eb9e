#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

/// Jet 4: UTF-16LE, or the compressed form that begins with FF FE. An odd last byte is left out.
/// Replaces the content of `into`.
void decode_text(std::span<const std::byte> stored, std::u16string& into);

/// Jet 3: one byte a character in code page 1252; bytes without a meaning there stay what they are.
void decode_ansi(std::span<const std::byte> stored, std::u16string& into);

/// Jet 4 form of a text. Compressed only if allowed, from 3 to 1024 characters, all U+0001..U+00FF:
/// that is what other programs write, and all of them read it. A text that begins with U+FEFF would
/// read as compressed and takes runs of one and of two bytes a character; those cannot hold a
/// character with a zero byte that has two, so such a text is refused.
std::vector<std::byte> encode_text(std::u16string_view text, bool compressed);

/// The same in as few bytes as all programs read: some write runs wherever they save room.
std::vector<std::byte> encode_shortest(std::u16string_view text);

/// UTF-16LE as it is: names, and texts in properties.
std::vector<std::byte> encode_plain(std::u16string_view text);

/// Surrogates without a partner are not stored as they are typed: they become U+FFFD, in the row
/// and in its keys.
std::u16string without_lone_surrogates(std::u16string_view text);

/// Names of objects, columns and indexes are one and the same in upper and lower case.
bool same_name(std::u16string_view one, std::u16string_view other);

/// For messages and logs; broken text becomes U+FFFD.
std::string to_utf8(std::u16string_view text);

/// Throws the refusal of what was asked for. @param subject name of the column, index, relation ...
[[noreturn]] void refuse(std::u16string_view subject, const std::string& reason);

} // namespace jet
