// vqx_dump FILE: prints a decoder project file and everything in it that breaks a rule of the
// format. Exit: 0 consistent (warnings allowed), 1 inconsistent, 2 not readable or no project file.

#include "project.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

/// Far above anything a decoder can take; keeps a mistaken name from filling the memory.
constexpr std::uintmax_t most_bytes = 256U << 20;

std::vector<std::uint8_t> read_file(const std::filesystem::path& path) {
    if (!std::filesystem::is_regular_file(path)) throw std::runtime_error("there is no such file");
    const auto size = std::filesystem::file_size(path);
    if (size > most_bytes) throw std::runtime_error("it is larger than 256 MiB");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    std::ifstream in(path, std::ios::binary);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!in) throw std::runtime_error("it cannot be read");
    return bytes;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: vqx_dump FILE\n";
        return 2;
    }
    try {
        const auto file = read_file(arguments[1]);
        vqx_dump::Findings findings;
        const auto project = vqx_dump::read_project(file, findings);
        std::cout << vqx_dump::project_tree(file, project) << '\n'
                  << vqx_dump::findings_text(findings);
        return findings.inconsistencies() == 0 ? 0 : 1;
    } catch (const vqx_dump::Not_A_Project_File& error) {
        std::cerr << arguments[1] << ": not a project file: " << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << arguments[1] << ": " << error.what() << '\n';
    }
    return 2;
}
