#pragma once

#include "store/changes.h"
#include "store/library_file.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <vector>

namespace store {

using Key_Set = std::set<std::int32_t>;

/// What changes come to: rows that came and went within them are no part of it.
std::vector<Row_Change> net(const std::vector<Row_Change>& changes);
/// Keys of the rows of a table that go.
Key_Set going(const std::vector<Row_Change>& changes, Table table);
/// Somebody else has changed a row or what it hangs on.
ado::Error differs(const QString& table, std::int32_t key);

/// What rows need of others, whether or not the library holds relations that watch over it. All
/// throws ado::Error.
class Row_Surroundings {
public:
    explicit Row_Surroundings(Library_File& file) : file_(file) {}

    /// What is odd around the rows that have gone.
    Oddities oddities(const std::vector<Row_Change>& changes);
    /// Throws where rows that came back or went lack what they hang on, or leave something behind.
    /// Asked when all of them are put back.
    /// @param odd what they find as it was, and nobody else's doing
    void check(const std::vector<Row_Change>& changes, const Oddities& odd);

private:
    struct Place { ///< of a CV in its set
        std::int32_t hi = 0;
        std::int32_t lo = 0;
        std::int32_t number = 0;
        auto operator<=>(const Place&) const = default;
    };

    ado::Recordset rows(const QString& table, const QString& column, std::int32_t key,
                        std::vector<QString> wanted = {});
    /// CVs that stand in the places of those that come back and are none of them, by CVID.
    Key_Set in_places(const std::vector<Row_Change>& changes);
    /// Those of the keys that no row of the table has.
    Key_Set missing(const QString& table, const QString& column, const Key_Set& keys);
    void need_as_it_was(const QString& table, const QString& column, const Key_Set& keys,
                        const Key_Set& missing);
    void need(const QString& table, const QString& column, std::int32_t key);
    void need_none(const QString& table, const QString& column, std::int32_t key);
    /// What tells the lines that changed scripts have besides the changed ones from others, by
    /// ScriptID: a script is one thing, and its lines name each other.
    std::map<std::int32_t, std::size_t> lines_beside(const std::vector<Row_Change>& changes);

    Library_File& file_;
};

} // namespace store
