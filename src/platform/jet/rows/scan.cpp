#include "platform/jet/rows/scan.h"

#include "platform/jet/pages/usage_map.h"

namespace jet {

std::vector<Page_Number> data_pages(Pager& pager, const Definition& definition) {
    return Usage_Map(pager, definition.owned).pages();
}

} // namespace jet
