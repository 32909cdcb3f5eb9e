#include "store/cls_CV_Page.h"

namespace store {

// A library holds hundreds of thousands of CVs of six bytes: they are made in blocks, which live as
// long as any CV of theirs is held. The first ones are small because many pages hold a CV or two.
std::int16_t cls_CV_Page::Add_CV(std::int16_t CVNr, std::uint8_t Wert) {
    if (used_ == block_size_) {
        block_size_ = Count() == 0 ? 1
                                   : std::clamp(static_cast<std::size_t>(Count()) / 2,
                                                std::size_t{2}, std::size_t{64});
        block_ = std::make_shared<cls_CV[]>(block_size_);
        used_ = 0;
    }
    cls_CV& added = block_[static_cast<std::ptrdiff_t>(used_++)];
    added = {.Index = 0, .CVNr = CVNr, .Wert = Wert};
    append(Pointer(block_, &added));
    return added.Index;
}

} // namespace store
