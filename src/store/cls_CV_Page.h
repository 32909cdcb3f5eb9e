#pragma once

#include "store/cls_CV.h"
#include "store/collection.h"

namespace store {

/// The CVs of one set that share one page, in the order in which they were added.
class cls_CV_Page : public Collection<cls_CV> {
public:
    std::int32_t PageNr =
        0; ///< CV31 * 256 + CV32 for the indexed CVs 257..512; 0, 2 or 3 for others
    std::int16_t Index = 0; ///< position in its set, from 1, as it was when the page was added

    std::uint8_t PageHi() const { return static_cast<std::uint8_t>(PageNr / 256); }
    std::uint8_t PageLo() const { return static_cast<std::uint8_t>(PageNr % 256); }

    /// @return the new CV's `Index`.
    std::int16_t Add_CV(std::int16_t CVNr, std::uint8_t Wert);

private:
    std::shared_ptr<cls_CV[]> block_; // the newest
    std::size_t block_size_ = 0;
    std::size_t used_ = 0;
};

} // namespace store
