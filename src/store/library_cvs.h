#pragma once

#include "store/CVRec.h"
#include "store/List_Filler.h"
#include "store/cls_CV_Set.h"
#include "store/library_operation.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace store {

/// The table CVs. Operations named as those of clsDBConn do what these say.
class Library_Cvs {
public:
    explicit Library_Cvs(Library_Operation& operation)
        : operation_(operation), file_(operation.file()) {}

    int fill(List_Filler& list, std::int32_t SetID); ///< @return how many
    void fill(cls_CV_Set& set);                      ///< throws
    [[nodiscard]] bool write(std::int32_t SetID, CVRec& rec);
    [[nodiscard]] bool find(std::int32_t SetID, CVRec& rec);
    CVRec get(std::int32_t CVID);
    [[nodiscard]] bool erase(std::int32_t CVID);
    void erase_all(std::int32_t SetID); ///< throws

    /// Takes the picture; @return how many.
    std::size_t open(std::int32_t SetID);
    CVRec next();
    void close();

private:
    void expect_set(std::int32_t SetID);

    Library_Operation& operation_;
    Library_File& file_;
    std::vector<CVRec> picture_; ///< rows between open and close
    std::size_t next_ = 0;
};

} // namespace store
