// Packs data/jet4-textkeys.tsv into the arrays of platform/jet/collation. Run by the build:
// collation_table LIST OUTPUT

#include "platform/jet/collation/packed_code.h"

#include <array>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace jet::collation;

namespace {

std::uint8_t hex_byte(const std::string& digits, std::size_t at) {
    return static_cast<std::uint8_t>(std::stoul(digits.substr(at, 2), nullptr, 16));
}

template <std::size_t Room>
std::uint8_t hex_bytes(const std::string& digits, std::array<std::uint8_t, Room>& into) {
    if (digits == "-") return 0;
    const std::size_t size = digits.size() / 2;
    if (digits.size() % 2 != 0 || size > Room) throw std::runtime_error("bytes " + digits);
    for (std::size_t i = 0; i < size; ++i) into[i] = hex_byte(digits, 2 * i);
    return static_cast<std::uint8_t>(size);
}

Unit_Class class_of(const std::string& letter) {
    const std::string letters = "-NAHMK"; // in the order of Unit_Class
    const std::size_t place = letters.find(letter);
    if (letter.size() != 1 || place == 0 || place == std::string::npos)
        throw std::runtime_error("class " + letter);
    return static_cast<Unit_Class>(place);
}

std::vector<Unit_Code> read_list(std::istream& list) {
    std::vector<Unit_Code> units(0x10000);
    for (char32_t unit = 0xD800; unit <= 0xDFFF; ++unit) units[unit].kind = Unit_Class::surrogate;
    for (std::string line; std::getline(list, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream columns(line);
        std::string unit, letter, inline_digits, extra, special;
        if (!(columns >> unit >> letter >> inline_digits >> extra >> special))
            throw std::runtime_error("line " + line);
        Unit_Code& code = units.at(std::stoul(unit, nullptr, 16));
        code.kind = class_of(letter);
        code.inline_size = hex_bytes(inline_digits, code.inline_storage);
        code.extra_size = hex_bytes(extra, code.extra_storage);
        code.special = special == "-" ? std::uint8_t{0} : hex_byte(special, 0);
    }
    return units;
}

using Block = std::array<Packed_Code, 256>;

struct Table {
    std::vector<std::size_t> blocks;
    std::vector<Block> codes;
    std::vector<Unit_Code> exceptions;
};

bool same(const Unit_Code& a, const Unit_Code& b) {
    return a.kind == b.kind && a.inline_size == b.inline_size && a.extra_size == b.extra_size &&
           a.special == b.special && a.inline_storage == b.inline_storage &&
           a.extra_storage == b.extra_storage;
}

Packed_Code pack_one(const Unit_Code& code, Table& table) {
    if (!packable(code)) {
        table.exceptions.push_back(code);
        return exception_class << 24 | static_cast<Packed_Code>(table.exceptions.size() - 1);
    }
    if (!same(unpacked(packed(code)), code)) throw std::runtime_error("a code does not pack");
    return packed(code);
}

Table pack(const std::vector<Unit_Code>& units) {
    Table table;
    for (std::size_t high = 0; high < 256; ++high) {
        Block block;
        for (std::size_t low = 0; low < 256; ++low)
            block[low] = pack_one(units[high << 8 | low], table);
        std::size_t place = 0;
        while (place < table.codes.size() && table.codes[place] != block) ++place;
        if (place == table.codes.size()) table.codes.push_back(block);
        table.blocks.push_back(place);
    }
    return table;
}

template <typename Numbers>
void write_numbers(std::ostream& out, const Numbers& numbers) {
    out << '{';
    int column = 0;
    for (const auto number : numbers) out << (column++ % 16 == 0 ? "\n" : "") << +number << ',';
    out << '}';
}

void write(std::ostream& out, const Table& table) {
    out << "constexpr std::uint8_t blocks[256] = ";
    write_numbers(out, table.blocks);
    out << ";\nconstexpr Packed_Code codes[" << table.codes.size() << "][256] = {\n";
    for (const Block& block : table.codes) {
        write_numbers(out, block);
        out << ",\n";
    }
    out << "};\nconstexpr Unit_Code exceptions[] = {\n";
    for (const Unit_Code& code : table.exceptions) {
        out << "{static_cast<Unit_Class>(" << static_cast<int>(code.kind) << "), "
            << +code.inline_size << ", " << +code.extra_size << ", " << +code.special << ", ";
        write_numbers(out, code.inline_storage);
        out << ", ";
        write_numbers(out, code.extra_storage);
        out << "},\n";
    }
    out << "};\n";
}

} // namespace

int main(int count, char** words) try {
    if (count != 3) throw std::runtime_error("usage: collation_table LIST OUTPUT");
    std::ifstream list(words[1]);
    if (!list) throw std::runtime_error("cannot read the list");
    std::ofstream out(words[2]);
    write(out, pack(read_list(list)));
    out.close();
    return out ? 0 : throw std::runtime_error("cannot write the table");
} catch (const std::exception& error) {
    std::cerr << "collation_table: " << error.what() << '\n';
    return 1;
}
