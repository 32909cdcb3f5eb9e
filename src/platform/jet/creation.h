#pragma once

#include "platform/jet/pages/pager.h"

#include <vector>

namespace jet {

/// The pages of a Jet 4 file with nothing but its four system tables.
/// @param days the date that the catalogue notes for them.
std::vector<Page_Bytes> empty_file(double days);

} // namespace jet
