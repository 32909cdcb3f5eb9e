#pragma once

#include "platform/jet/check/catalogue.h"

namespace jet::check {

/// Checks relations: the two indexes of each against each other, the rows of MSysRelationships
/// against the indexes, and the foreign keys of the enforced ones against the primary keys.
void check_relations(Inspection& inspection, const Catalogue& catalogue);

} // namespace jet::check
