#pragma once

#include "platform/jet/rows/row.h"

#include <vector>

namespace jet {

/// The data pages of a table in ascending order. Throws damaged.
std::vector<Page_Number> data_pages(Pager& pager, const Definition& definition);

/// Calls `take(source)` with the source standing on each row, in the order of the file.
template <typename Take>
void for_each_row(Pager& pager, const Definition& definition, Take take) {
    Row_Source source(pager, definition);
    for (const auto number : data_pages(pager, definition)) {
        const auto count = source.page(number).count();
        for (std::size_t slot = 0; slot < count; ++slot)
            if (source.find({number, static_cast<std::uint8_t>(slot)})) take(source);
    }
}

} // namespace jet
