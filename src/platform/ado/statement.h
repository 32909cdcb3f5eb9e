#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace ado {

/// "column = number"
struct Condition {
    QString column;
    std::int32_t number = 0;
    bool operator==(const Condition&) const = default;
};

/// The SQL that is understood, taken apart:
///
///     SELECT * FROM t [WHERE a = 1 [AND b = 2 ...]] [ORDER BY c [, d ...]]
///     SELECT DISTINCT t.a, u.b FROM t LEFT JOIN u ON t.a = u.c ORDER BY t.a
///     DELETE FROM t WHERE a = 1
///
/// with single blanks, capital keywords and decimal numbers of 32 bits.
struct Statement {
    enum class Kind { select, select_joined, erase };
    Kind kind = Kind::select;
    QString table;
    std::vector<Condition> where;
    std::vector<QString> order_by;
    // select_joined only; order_by is then the column of `table`
    QString joined_table;
    QString joined_column; ///< equal to the column of `table`
    QString shown_column;  ///< of joined_table, null where there is no partner
};

/// Throws Error (statement), which quotes the text, for anything else.
Statement parse(const QString& sql);

} // namespace ado
