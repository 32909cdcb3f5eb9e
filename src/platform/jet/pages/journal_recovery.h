#pragma once

#include "platform/jet/pages/journal.h"

namespace jet {

/// What a journal that is not empty means for the database beside it.
struct [[nodiscard]] Journal_Finding {
    enum class Verdict {
        settled,   ///< the operation never began or is complete: the journal can be emptied
        take_back, ///< `pages` and `size` are the state before
        foreign,   ///< it does not fit this file
        spoiled    ///< it fits, but does not say what to do: the file may be half written
    };
    Verdict verdict = Verdict::settled;
    std::map<Page_Number, Page> pages;
    std::uint64_t size = 0;
    std::vector<Page_Number> numbers = {}; ///< all pages of the operation, whatever the verdict
};

/// Reads both files and changes nothing. Needs a lock on the database, and a journal that is
/// believed at least where its pages prove it.
Journal_Finding examine(Journal& journal, files::File& database, std::size_t page_size);

/// Puts the old pages back, cuts what was appended, syncs. Needs the exclusive lock. Cut off
/// anywhere, it can be done again.
void take_back(const Journal_Finding& finding, files::File& database, std::size_t page_size);

} // namespace jet
