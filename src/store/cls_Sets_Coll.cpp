#include "store/cls_Sets_Coll.h"

namespace store {

std::int16_t cls_Sets_Coll::Add_CVSet(const QString& Name, std::int16_t ResCV, std::int16_t Nummer,
                                      std::int32_t SetID) {
    const auto set = std::make_shared<cls_CV_Set>();
    set->Name = Name;
    set->ResCV = ResCV;
    set->Nummer = Nummer;
    set->SetID = SetID;
    Add(set, QString::number(SetID));
    return set->Index;
}

cls_Sets_Coll& SetsObj() {
    static cls_Sets_Coll sets;
    return sets;
}

} // namespace store
