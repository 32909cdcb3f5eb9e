#pragma once

#include "store/clipboard_texts.h"
#include "store/clsDBConn.h"

namespace store {

/// What pasting has done, and what it has left out.
struct [[nodiscard]] Paste_Report {
    bool kept = false; ///< what is counted here is on disk
    int sets = 0;
    int cvs = 0;
    int cvs_without_set = 0;   ///< no set was current
    int names_cut = 0;         ///< longer than the column
    std::int32_t last_set = 0; ///< the newest of the sets; 0: none
};

/// Brings what a clipboard text asks for into the library, as one operation. Sets get the reset CV
/// of the view; the CVs behind a set go into it, those before the first one into the current set.
/// When a set is refused it ends there. The current set is the last one made; why something was
/// refused stays in last_trouble().
Paste_Report paste(clsDBConn& library, const Pasted& pasted, std::int16_t ResCV);

} // namespace store
