#pragma once

#include "store/cls_CV_Page.h"

namespace store {

/// One CV set: its pages in the order in which their first CV arrived, keyed by their number.
class cls_CV_Set : public Collection<cls_CV_Page> {
public:
    std::int16_t Index = 0; ///< position among the sets, from 1, as it was when the set was added
    QString Name;
    std::int16_t ResCV = 0;  ///< reset CV: 8 or 265
    std::int16_t Nummer = 0; ///< the number that people see
    std::int32_t SetID = 0;  ///< key in the database
    /// CV rows that found no place in the model when it was last filled: a page byte or value
    /// outside 0..255, or a number beyond 16 bits.
    std::int32_t CVs_Left_Out = 0;

    /// Files a CV under page 0 (CV 1..256), 2 (513..768) or 3 (769..1024); any other under `page`.
    void Add_CV(std::int32_t page, std::int16_t CVNr, std::uint8_t Wert);
};

} // namespace store
