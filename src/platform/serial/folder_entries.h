#pragma once

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

namespace serial {

/// What stands in a folder of the system, as far as it can be read: such folders change while they
/// are walked through.
inline std::vector<std::filesystem::path> entries_of(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> entries;
    std::error_code trouble;
    std::filesystem::directory_iterator entry(folder, trouble);
    while (!trouble && entry != std::filesystem::directory_iterator()) {
        entries.push_back(entry->path());
        entry.increment(trouble);
    }
    return entries;
}

/// Up to 999 bytes; empty where there is no such file.
inline std::string first_line_of(const std::filesystem::path& file) {
    std::array<char, 1000> line{};
    std::error_code trouble;
    if (!std::filesystem::is_regular_file(file, trouble)) return {};
    std::ifstream(file).getline(line.data(), line.size());
    return line.data();
}

} // namespace serial
