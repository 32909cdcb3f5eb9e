#pragma once

#include "project.h"

#include <string_view>

namespace vqx_dump {

/// An entry that an address map may have, in the order in which the writer puts them.
struct Expected_Entry {
    const char* name;
    bool required;
};

/// Readers of the single parts. Each starts at an offset of the file, believes nothing, and reports
/// what is wrong inside the part; where the part lies is judged by the caller.
Address_Map read_address_map(Bytes file, std::size_t start, std::string_view name,
                             std::span<const Expected_Entry> expected, Findings& findings);
Dcc_Map read_dcc_map(Bytes file, std::size_t start, Findings& findings);
Script_Map read_script_map(Bytes file, std::size_t start, Findings& findings);
/// Reads the block of at most `length` bytes at `start`; bytes behind its last script are not
/// reported, since `end` tells them.
Script_Block read_script_block(Bytes file, std::size_t start, std::size_t length,
                               Findings& findings);
/// Warns of commands that no decoder knows. Apart from the reading, so that probing a place stays
/// cheap.
void judge_commands(Bytes file, const Script& script, Findings& findings);

} // namespace vqx_dump
