#pragma once

#include "platform/jet/check/inspection.h"

#include <optional>

namespace jet::check {

/// What page 0 says; the obfuscated part undone.
struct Header {
    const Format* format = nullptr;
    std::uint32_t global_map = 0, second_map = 0; ///< row pointers
    std::array<std::uint32_t, 4> tables{};        ///< definition pages of the system tables
    std::uint32_t code_page = 0;
    std::uint32_t page_key = 0;
    bool password = false;
};

/// Reads page 0 and says whether the rest can be read at all. Sets the page size of `pages`.
/// @return nothing, with a fault, for another kind of file, another generation, enciphered pages,
/// or a file of fewer than three pages.
std::optional<Header> read_header(Pages& pages, Findings& findings);

/// What on page 0 does not keep anyone from reading: pointers, password, commit bytes.
void check_header(Inspection& inspection, const Header& header);

} // namespace jet::check
