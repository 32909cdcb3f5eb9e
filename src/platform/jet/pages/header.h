#pragma once

#include "platform/jet/format/layout.h"
#include "platform/jet/pages/pager.h"

#include <cstdint>

namespace jet {

/// Places that are the same in every file.
inline constexpr Page_Number objects_page = 2; ///< definition of MSysObjects

/// What page 0 says about the file.
struct Header {
    const Layout* layout = &jet4_layout;
    std::uint32_t collation = general_collation; ///< LCID, and in the upper byte its version
};

/// Throws not_a_database; unsupported (another generation, a password, enciphered pages).
Header read_header(Pager& pager);

/// Page 0 of every file that we make. Its date, its seed and the SIDs in the system tables belong
/// together in a way that is not known, so all files carry the set of one that Jet itself has made.
Page_Bytes new_header();

} // namespace jet
