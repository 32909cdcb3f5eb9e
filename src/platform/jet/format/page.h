#pragma once

#include "platform/failure/sure.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace jet {

/// Pages are numbered from 0; in the file a number takes three bytes.
using Page_Number = std::uint32_t;
using Page_Bytes = std::vector<std::byte>;
/// Stays valid as long as it is held, whatever happens to the file meanwhile.
using Page = std::shared_ptr<const Page_Bytes>;

/// The place of a row in the file; in the file the number `u8 slot, u24 page`, with which rows,
/// definitions and maps name each other. Holds as long as the row exists and no other copy of the
/// program changes the file; keys hold longer.
struct Row_Place {
    Page_Number page = 0;
    std::uint8_t slot = 0;
    auto operator<=>(const Row_Place&) const = default;

    static Row_Place from(std::uint32_t number) {
        return {number >> 8U, static_cast<std::uint8_t>(number)};
    }
    std::uint32_t number() const {
        SURE(page >> 24U == 0);
        return page << 8U | slot;
    }
};

} // namespace jet
