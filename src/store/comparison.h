#pragma once

#include "store/CVRec.h"

#include <QString>
#include <optional>
#include <vector>

namespace store {

/// A CV whose value in one set is not its value in the other.
struct Difference {
    std::uint8_t CVPageHi = 0; ///< 0:1 unless the CV is paged
    std::uint8_t CVPageLo = 1;
    std::int16_t CVNr = 0;
    std::optional<std::int16_t> left, right; ///< nothing: the set does not have it
    bool operator==(const Difference&) const = default;
};

struct Comparison {
    std::vector<Difference> differences; ///< by number, those of one number by page
    int equal = 0;                       ///< CVs with one value in both sets
};

/// Where a set has a CV twice the last one counts, as it does in a decoder that is loaded with it.
Comparison compare(const std::vector<CVRec>& left, const std::vector<CVRec>& right);

/// "300 (CV31 = 8, CV32 = 0)"; without the page where every decoder has the CV.
QString cv_name(const Difference& difference);

/// The differences for other programs: a heading and a line for each, columns parted by tabs, lines
/// with CR LF. What a set does not have is an empty cell.
QString comparison_text(const std::vector<Difference>& differences, const QString& left,
                        const QString& right);

} // namespace store
