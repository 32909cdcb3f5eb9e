#pragma once

#include "simulator.h"

#include <iosfwd>
#include <stdexcept>
#include <utility>

namespace decoder_sim {

struct Options {
    Settings settings;
    std::vector<std::pair<int, int>> cvs; ///< number and value
    std::vector<Ordered_Trouble> troubles;
    bool quiet = false;
    bool show_bytes = false;
    bool end_with_input = false;
    bool help = false;
};

/// A sentence for the user about what cannot be done.
struct Unusable : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// @throws Unusable
Options parsed_options(std::span<char*> arguments);
/// "3=40" or "3 40". @throws Unusable
std::pair<int, int> parsed_cv(const std::string& text);
void print_help(std::ostream& out);

} // namespace decoder_sim
