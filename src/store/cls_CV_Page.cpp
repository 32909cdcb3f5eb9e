#include "store/cls_CV_Page.h"

namespace store {

std::int16_t cls_CV_Page::Add_CV(std::int16_t CVNr, std::uint8_t Wert) {
    Add(std::make_shared<cls_CV>(cls_CV{.Index = 0, .CVNr = CVNr, .Wert = Wert}));
    return Item(Count())->Index;
}

} // namespace store
