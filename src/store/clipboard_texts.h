#pragma once

#include "store/CVRec.h"
#include "store/cls_CV_Set.h"

#include <QString>
#include <cstdint>
#include <variant>
#include <vector>

namespace store {

/// How names of sets stand in an object text. Plain text is what other programs see; a name with a
/// comma does not survive in it. Percent-encoded is the form beside it that our own copies read.
enum class Names { plain, percent_encoded };

/// Object text of single CVs, each with its stored page: five lines per CV, each line with CR LF.
QString cvs_text(const std::vector<CVRec>& cvs);
/// Object text of a set: its header, then its CVs under the pages of the model.
QString set_text(const cls_CV_Set& set, Names names);
/// Listing of a set for people.
QString listing_text(const cls_CV_Set& set);

/// A set to be made, into which the CVs behind it go.
struct Pasted_Set {
    QString name;
    std::int16_t number = 0; ///< 0: the next free one
    bool operator==(const Pasted_Set&) const = default;
};

/// What a clipboard text asks for, in its order.
struct Pasted {
    std::vector<std::variant<Pasted_Set, CVRec>> objects;
    int lines_skipped = 0; ///< lines whose value is not a number in range
    int objects_left_out =
        0; ///< CVs, and the set header that ended the reading, that such a line belongs to
    bool ended_at_set = false; ///< a set header could not be read; nothing behind it counts
    bool operator==(const Pasted&) const = default;
};

/// CVs for the current set: object text or, without any line "CVWert", a bare list of numbers and
/// values separated by commas, semicolons or tabs. Lines may end with CR LF, LF or CR.
Pasted parse_cvs(const QString& text);
/// Sets with their CVs; CVs before the first set belong to the current one.
Pasted parse_sets(const QString& text, Names names);

} // namespace store
