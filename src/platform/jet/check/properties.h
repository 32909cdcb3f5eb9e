#pragma once

#include "platform/jet/check/definition.h"

namespace jet::check {

/// Checks the property blob of a table (column LvProp of the catalogue) and takes from it what
/// concerns the rows: which columns require a value, which forbid empty texts.
void read_properties(Inspection& inspection, Bytes blob, Definition& table);

} // namespace jet::check
