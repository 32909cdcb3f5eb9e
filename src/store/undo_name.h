#pragma once

#include "store/changes.h"

#include <QString>

namespace store {

/// What a step has done; the window makes the words.
enum class Undo_Kind {
    sets_added,
    sets_deleted,
    sets_renamed,
    cvs_stored, ///< added or overwritten
    cvs_deleted,
    scripts_added,
    scripts_deleted,
    scripts_renamed,
    scripts_saved, ///< their lines
    several        ///< `count` rows of different kinds
};

struct Undo_Name {
    Undo_Kind kind = Undo_Kind::several;
    int count = 0; ///< of sets, CVs or scripts, as the kind says
    int cvs = 0;   ///< CVs that came or went with sets or scripts
    /// Name of the set or script or number of the CV, where it is only one and known.
    QString subject;
    bool operator==(const Undo_Name&) const = default;
};

/// Names a step by what it did to the rows. @param changes at least one
Undo_Name undo_name(const std::vector<Row_Change>& changes);

} // namespace store
