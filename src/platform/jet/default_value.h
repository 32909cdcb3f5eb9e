#pragma once

#include "platform/jet/format/definition.h"
#include "platform/jet/format/value.h"

#include <string_view>

namespace jet {

/// The value that a default expression gives to a column: of a plain number or a quoted text; null
/// for everything else, and for what does not fit the column.
Value default_value(const Column_Record& column, std::u16string_view expression);

} // namespace jet
