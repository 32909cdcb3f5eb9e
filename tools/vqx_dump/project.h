#pragma once

#include "findings.h"

#include <optional>
#include <stdexcept>

namespace vqx_dump {

constexpr std::size_t header_size = 128;
constexpr std::size_t most_scripts = 16; ///< of one set
constexpr std::size_t most_states = 256; ///< of one script
constexpr std::size_t state_size = 8;    ///< command and seven parameters

/// The bytes are no project file at all; `what()` says why.
struct Not_A_Project_File : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A 32-bit address and the offset in the file where it is written.
struct Address {
    std::size_t written_at = 0;
    std::uint32_t value = 0;
};

/// Where a part of the body lies, as offsets in the file. `complete` says that it was read to its
/// end; otherwise `end` is where the reading stopped.
struct Part {
    std::size_t start = 0;
    std::size_t end = 0;
    bool complete = false;
    std::size_t size() const { return end - start; }
};

/// Main map and directory: identifiers with addresses.
struct Address_Map : Part {
    struct Entry {
        std::uint32_t identifier;
        std::size_t offset;
        Address address;
    };
    std::vector<Entry> entries;
    /// The first entry of that name.
    std::optional<Address> find(std::uint32_t identifier) const;
};

struct Cv_Page {
    unsigned high = 0, low = 0; ///< values of CV31 and CV32
    std::size_t cvs = 0;        ///< offset of the pairs of CV byte and value
    std::size_t size = 0;       ///< in bytes
};

struct Cv_Set {
    std::size_t offset = 0;
    std::uint32_t reset_cv = 0, number = 0;
    std::vector<Cv_Page> pages;
};

struct Dcc_Map : Part {
    std::vector<Cv_Set> sets;
};

struct Script_Entry {
    std::size_t offset = 0;
    unsigned number = 0; ///< of the set
    Address address;     ///< from the start of the script map
    std::uint32_t length = 0;
};

struct Script_Map : Part {
    std::vector<Script_Entry> entries;
};

struct Script {
    std::size_t offset = 0; ///< of its header
    std::size_t states = 0; ///< that lie in the file; they follow the header
    unsigned flag = 0;
    std::size_t end() const { return offset + 8 + states * state_size; }
};

/// `number` as in the script map. An entry whose block was not found has an empty part.
struct Script_Block : Part {
    unsigned number = 0;
    std::vector<Script> scripts;
};

/// What a project file holds, as far as it could be read. CVs and states stay in the bytes of the
/// file.
struct Project {
    bool oem = false; ///< else of the user type
    unsigned format = 0;
    std::uint32_t body_length = 0; ///< as the header says
    Address_Map main_map;          ///< oem only
    Address_Map directory;
    Dcc_Map dcc;
    std::optional<Script_Map> scripts;
    std::vector<Script_Block> blocks; ///< one for each entry of the script map
};

/// The four characters of an identifier, right-aligned as in the file ("dcc" is 0x00646363).
constexpr std::uint32_t identifier(const char* name) {
    std::uint32_t value = 0;
    for (; *name != 0; ++name) value = value << 8 | static_cast<unsigned char>(*name);
    return value;
}
/// An identifier as text in quotes, or its number when it is no text.
std::string identifier_text(std::uint32_t value);

/// Reads the whole file and reports everything that breaks a rule of the format.
/// Takes time and memory in proportion to the size of the file, whatever it holds.
/// @throws Not_A_Project_File when the header is too short or does not begin with a known magic.
Project read_project(Bytes file, Findings& findings);

/// The project as an indented tree, one line for each thing, with offsets.
std::string project_tree(Bytes file, const Project& project);

/// "consistent" or how much was found, then one line for each finding with its offset.
std::string findings_text(const Findings& findings);

} // namespace vqx_dump
