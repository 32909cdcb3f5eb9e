#pragma once

#include "scripts/cls_script.h"

#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace scripts {

/// Script CVs that scripts to be imported use as well as those of the set.
struct Cv_Collisions {
    std::vector<int> cvs;
    std::vector<std::pair<int, int>> moves; ///< from, to
    bool too_few_free = false;              ///< then nothing is to be moved
    std::vector<int> fixed; ///< of commands whose CVs stay where they are ("Set Lautstärke")
};

using Scripts = std::span<const std::shared_ptr<cls_script>>;

/// @param imported in file form
Cv_Collisions find_collisions(Scripts imported, Scripts in_set);
/// Gives the references of the imported scripts their new CVs.
void move_cvs(Scripts imported, const Cv_Collisions& collisions);

} // namespace scripts
