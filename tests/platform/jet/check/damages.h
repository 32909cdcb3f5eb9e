#pragma once

#include "platform/jet/check/samples.h"

#include <span>

namespace jet::check {

/// One deliberate damage to a sample file and what has to be found: exactly these things, and the
/// sentence for a person among them.
struct Damage {
    const char* name;
    const char* sample;
    /// Edits, separated by blanks: `page:offset=bytes`, page decimal, the rest hexadecimal; `*n`
    /// after the bytes repeats them. `end+n` and `end-n` lengthen and shorten the file.
    const char* edits;
    std::vector<What> found;
    const char* sentence;
    Finding::Grade grade = Finding::Grade::fault; ///< of the worst finding
};

/// All damages, grouped by the part of the file that they hit.
std::span<const Damage> damages();

/// Applies the edits. Throws std::invalid_argument for edits outside the file.
void apply(const Damage& damage, File_Bytes& file);

} // namespace jet::check
