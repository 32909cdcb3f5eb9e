#include "export/dcc_pages.h"

#include "store/cls_CV_Set.h"

#include <array>

namespace vqx_export {
namespace {

constexpr std::int16_t last_number = 1024;

bool has_place(const store::cls_CV& cv) { return cv.CVNr >= 1 && cv.CVNr <= last_number; }

bool is_indexed(const store::cls_CV& cv) { return cv.CVNr >= 257 && cv.CVNr <= 512; }

std::size_t byte_of(const store::cls_CV& cv) { return static_cast<std::size_t>(cv.CVNr - 1) % 256; }

/// For each byte the CV that is written there.
using Places = std::array<const store::cls_CV*, 256>;

Places take_places(const store::cls_CV_Page& page, Left_Out_CVs& left_out) {
    Places places{};
    for (const auto& cv : page) {
        if (!has_place(*cv)) {
            ++left_out.out_of_range;
            continue;
        }
        auto& place = places[byte_of(*cv)];
        if (place && place->CVNr == cv->CVNr)
            ++left_out.repeated;
        else if (place)
            ++left_out.covered;
        if (!place || !is_indexed(*cv) || is_indexed(*place)) place = cv.get();
    }
    return places;
}

} // namespace

std::vector<Dcc_Page> dcc_pages(const store::cls_CV_Set& set, Left_Out_CVs& left_out) {
    std::vector<Dcc_Page> pages;
    for (const auto& page : set) {
        const auto places = take_places(*page, left_out);
        Dcc_Page written{.high = page->PageHi(), .low = page->PageLo(), .pairs = {}};
        for (const auto& cv : *page) {
            if (!has_place(*cv) || places[byte_of(*cv)] != cv.get()) continue;
            written.pairs.push_back(static_cast<std::uint8_t>(byte_of(*cv)));
            written.pairs.push_back(cv->Wert);
        }
        if (!written.pairs.empty()) pages.push_back(std::move(written));
    }
    return pages;
}

} // namespace vqx_export
