#pragma once

#include "platform/jet/format/definition.h"
#include "platform/jet/pages/pager.h"

namespace jet {

/// The bytes of the chain as one string, each page's own head left out but the first's.
Record joined_chain(Pager& pager, const Layout& layout, Page_Number first,
                    std::vector<Page_Number>* chain = nullptr);

/// Reads the chain that begins at `first`. Throws damaged.
Definition read_definition(Pager& pager, const Layout& layout, Page_Number first);

} // namespace jet
