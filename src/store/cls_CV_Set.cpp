#include "store/cls_CV_Set.h"

#include <optional>

namespace store {

namespace {

/// The page of all CVs but the indexed ones.
std::optional<std::int32_t> fixed_page(std::int16_t cv_number) {
    if (cv_number >= 1 && cv_number <= 256) return 0;
    if (cv_number >= 513 && cv_number <= 768) return 2;
    if (cv_number >= 769 && cv_number <= 1024) return 3;
    return std::nullopt;
}

} // namespace

void cls_CV_Set::Add_CV(std::int32_t page, std::int16_t CVNr, std::uint8_t Wert) {
    const std::int32_t number = fixed_page(CVNr).value_or(page);
    cls_CV_Page* home = find(number);
    if (home == nullptr) {
        const auto added = std::make_shared<cls_CV_Page>();
        added->PageNr = number;
        append(added, number);
        home = added.get();
    }
    home->Add_CV(CVNr, Wert);
}

} // namespace store
