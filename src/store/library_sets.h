#pragma once

#include "store/List_Filler.h"
#include "store/library_operation.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

namespace store {

/// A row of Sets, with what was completed in memory.
struct Set_Row {
    std::optional<std::int32_t> SetID;
    QString Name;
    std::optional<std::int32_t> Nummer;
    std::optional<std::int32_t> ResCV;
};

/// The reset CV of a view, where the number of a set stands beside it.
struct Reset_Cv {
    std::int16_t number = 8;
};

/// Numbers for sets that have none, in the order in which rows are visited.
class Running_Number {
public:
    /// The row's number, or the running one where it has none. The next row continues from it, so
    /// the running number may also fall.
    std::int32_t visit(const std::optional<std::int32_t>& stored);

private:
    std::int32_t next_ = 10;
};

/// The table Sets. Operations named as those of clsDBConn do what these say.
class Library_Sets {
public:
    explicit Library_Sets(Library_Operation& operation)
        : operation_(operation), file_(operation.file()) {}

    void fill(List_Filler& list, std::int16_t ResCV);
    void visit(const std::function<void(const Set_Row&)>& visit); ///< in table order; throws
    std::optional<Set_Row> find(std::int32_t SetID);
    std::int32_t number(std::int32_t SetID); ///< a running number where it has none
    int count();
    std::int16_t free_number(std::int16_t ResCV);

    [[nodiscard]] std::int32_t add(const QString& Name, std::int16_t& Nummer, Reset_Cv view);
    [[nodiscard]] bool rename(std::int32_t SetID, const QString& Name, std::int16_t Nummer);
    bool is_gone(std::int32_t SetID);
    /// Throws when rows of other tables forbid to delete a set, before anything is deleted.
    void refuse_if_referred(std::int32_t SetID);
    void erase(std::int32_t SetID); ///< the row alone; throws

    void forget() { completed_.clear(); }
    int completed_in_memory() const { return static_cast<int>(completed_.size()); }
    int in_no_view() const { return in_no_view_; } ///< at the last filling

private:
    Set_Row row_of(ado::Recordset& rows);
    void store_repair(const Set_Row& repair);
    void complete(const Set_Row& repair);

    Library_Operation& operation_;
    Library_File& file_;
    int in_no_view_ = 0;
    /// Numbers and reset CVs that a library would hold if it could be written, by SetID.
    std::map<std::int32_t, Set_Row> completed_;
};

} // namespace store
