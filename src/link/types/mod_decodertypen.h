#pragma once

#include "link/types/link_values.h"

namespace link_types {

/// Fills `decoder` by DecoderTypeCode. A few codes leave the family group as it was.
void look_up_decoder_type(Link_Values& values);

} // namespace link_types
