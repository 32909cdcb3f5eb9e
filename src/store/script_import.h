#pragma once

#include "scripts/cls_script.h"
#include "store/clsDBConn.h"

#include <memory>
#include <span>

namespace store {

/// What an import of scripts has done, and what it has left out.
struct [[nodiscard]] Script_Import_Report {
    bool kept = false; ///< the scripts are in the library; else nothing of them is
    int scripts = 0;
    int texts_cut = 0;    ///< names and infos longer than their columns
    int values_wide = 0;  ///< lines with a number that is no byte, which no project can hold
    int sources_lost = 0; ///< lines with a value in parameter 5, which has no column
};

/// Adds scripts to the current set and to AktScripts, as one operation. Whatever comes of it,
/// AktScripts is what the library holds; why something was refused stays in last_trouble().
/// @param imported in file form; no more than the set has room for
Script_Import_Report import_scripts(clsDBConn& library,
                                    std::span<const std::shared_ptr<scripts::cls_script>> imported);

} // namespace store
