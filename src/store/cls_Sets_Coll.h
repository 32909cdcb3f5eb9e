#pragma once

#include "store/cls_CV_Set.h"

namespace store {

/// All CV sets of the open database, keyed by their SetID.
class cls_Sets_Coll : public Collection<cls_CV_Set> {
public:
    std::int32_t CVs_Left_Out = 0; ///< of all sets, when it was last filled

    /// @return the new set's `Index`. Throws Collection_Error when the SetID is there already.
    std::int16_t Add_CVSet(const QString& Name, std::int16_t ResCV, std::int16_t Nummer,
                           std::int32_t SetID);
};

/// The whole library as it was when it was last loaded for copying, listing or exporting.
cls_Sets_Coll& SetsObj();

} // namespace store
