#pragma once

#include "platform/files/crash_disk.h"
#include "platform/jet/pages/journal_format.h"
#include "platform/jet/pages/pager_support.h"

#include <algorithm>
#include <array>

namespace pager_tests {

using files::Memory_Disk;
using jet::Journal_State;
using Recovery = jet::Pager_Report::Recovery;

/// The disk that a program leaves which was killed in the n-th of its changes, counted from the
/// second of two transactions on: 1 the journal, 2 its sync, 3 to 5 the pages, 6 their sync, 7 the
/// emptying.
inline Memory_Disk killed_at(int moment) {
    Memory_Disk before = disk_with(6);
    files::Crash_Disk disk(before);
    Memory_Disk left;
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    put(*pager, {2}, 1);
    int count = 0;
    disk.before_change = [&] {
        std::mt19937 unused;
        if (++count == moment)
            left = disk.after_power_loss([](std::size_t) { return files::Crash_Disk::Fate::kept; },
                                         unused);
    };
    put(*pager, {1, 3, 5, 6}, 2);
    disk.before_change = nullptr;
    EXPECT_GE(count, moment);
    return left;
}

inline constexpr int between = 4; // one page new, the others old
inline constexpr int all_new = 6;

inline std::vector<std::byte> old_state() {
    auto bytes = file_of(6);
    const Page_Bytes page = page_of(2, 1);
    std::ranges::copy(page, bytes.begin() + 2 * 4096);
    return bytes;
}

inline std::vector<std::byte> new_state() {
    auto bytes = old_state();
    bytes.resize(7 * 4096);
    for (const Page_Number n : {1U, 3U, 5U, 6U})
        std::ranges::copy(page_of(n, 2), bytes.begin() + n * 4096);
    return bytes;
}

inline void edit(Memory_Disk& disk, const std::string& path, std::size_t at, std::byte value) {
    disk.open(path, files::Access::read_write)->write_at(at, std::array{value});
}

} // namespace pager_tests
