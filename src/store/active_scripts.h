#pragma once

#include "store/CVRec.h"
#include "store/clsDBConn.h"

#include <bitset>

namespace store {

/// Which scripts of a set the decoder runs; that of position 1 is bit 0. Scripts beyond have no
/// flag.
using Active_Scripts = std::bitset<16>;

/// As CV 837 (scripts 1 to 8) and CV 843 (9 to 16) of the current set on page 0:1 say, where a set
/// bit switches a script off. A CV that the set does not have switches none off.
Active_Scripts active_scripts(clsDBConn& library);

/// Writes the flag of one script into its CV of the current set.
/// @param position 1..16
/// @return the CV as it is stored now; with the CVID 0 where it was refused
CVRec store_script_active(clsDBConn& library, int position, bool active);

} // namespace store
