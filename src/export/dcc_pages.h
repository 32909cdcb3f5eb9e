#pragma once

#include "export/msgpack/cls_wr_msgpack.h"

#include <cstdint>
#include <vector>

namespace store {
class cls_CV_Set;
}

namespace vqx_export {

/// CVs that the project file has no place for.
struct [[nodiscard]] Left_Out_CVs {
    std::int64_t out_of_range = 0; ///< number outside 1..1024; value or page byte outside 0..255
    std::int64_t covered = 0; ///< of 257..512, on the byte of a CV of 1..256, 513..768 or 769..1024
    std::int64_t repeated = 0; ///< rows followed by another one of the same number on the same page
};

/// One page of a set as the decoder reads it.
struct Dcc_Page {
    std::uint8_t high = 0; ///< CV31
    std::uint8_t low = 0;  ///< CV32
    msgpack::Bytes pairs;  ///< (CV number - 1) modulo 256, value; at most 512 bytes
};

/// The pages of a set that hold anything, in their order; adds to `left_out` what they cannot hold.
///
/// A page has 256 places. Each is taken once: by the last row of a number, and rather by a CV of
/// the fixed ranges than by one of 257..512 that was stored under page 0, 2 or 3.
std::vector<Dcc_Page> dcc_pages(const store::cls_CV_Set& set, Left_Out_CVs& left_out);

} // namespace vqx_export
