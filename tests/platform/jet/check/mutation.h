#pragma once

#include "platform/jet/check/samples.h"

#include <algorithm>
#include <random>

namespace jet::check {

using Random = std::mt19937;

inline std::size_t below(Random& random, std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
}

// Half of the changes go where pages keep their structure: heads, slot tables, masks.
inline void change_bytes(Random& random, File_Bytes& file) {
    constexpr std::size_t page = 2048, structure = 64;
    const std::size_t changes = 1 + below(random, 20);
    for (std::size_t i = 0; i < changes && !file.empty(); ++i) {
        std::size_t at = below(random, file.size());
        if (below(random, 2) == 0)
            at = std::min(at / page * page + at % structure, file.size() - 1);
        const std::byte edge[] = {std::byte{0}, std::byte{1}, std::byte{0x7F}, std::byte{0xFF}};
        file[at] = below(random, 2) == 0 ? edge[below(random, 4)] : std::byte(below(random, 256));
    }
}

inline void change_length(Random& random, File_Bytes& file) {
    if (below(random, 2) == 0)
        file.resize(below(random, file.size()));
    else
        file.resize(file.size() + below(random, 20000), std::byte(below(random, 256)));
}

// A page in the place of another: every pointer to it then leads to the wrong kind of thing.
inline void copy_page(Random& random, File_Bytes& file) {
    constexpr std::size_t page = 4096;
    const std::size_t pages = file.size() / page;
    const auto from = file.begin() + static_cast<std::ptrdiff_t>(below(random, pages) * page);
    std::copy_n(from, page,
                file.begin() + static_cast<std::ptrdiff_t>(below(random, pages) * page));
}

/// Changes 1 to 20 bytes; now and then copies a page over another, or changes the length.
inline void mutate(Random& random, File_Bytes& file) {
    if (below(random, 8) == 0) copy_page(random, file);
    change_bytes(random, file);
    if (below(random, 10) == 0) change_length(random, file);
}

} // namespace jet::check
