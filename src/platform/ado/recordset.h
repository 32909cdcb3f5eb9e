#pragma once

#include "platform/ado/command.h"
#include "platform/ado/session.h"
#include "platform/failure/sure.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace ado {

/// The rows of a query, fetched into memory when the first of them is asked for, with one current
/// row. Rows are known by their place in the file: changes go to where they belong whatever else
/// happens in between, and one that is gone is an Error (not_found). Change them inside the
/// Transaction or Reading in which they were fetched.
class Recordset {
public:
    /// A column of the open rows, found once by its name.
    struct Field {
        std::size_t column = 0;
    };

    /// Closes what is open. @param wanted columns that are going to be read, where a table may hold
    /// long ones of other programs; none: all
    void open(const Command& command, std::vector<QString> wanted = {});
    void close(); ///< nothing when it is closed

    int record_count();
    bool at_end();
    void move_next();
    void move_first();

    Field field(QStringView name);
    Value value(Field field);
    std::optional<std::int32_t> number(Field field);
    /// The same with 0 for null, quick. There must be a current row.
    std::int32_t number_or_0(Field field) const {
        SURE(rows_ && position_ < rows_->order.size());
        return rows_->block->number_or_0(rows_->order[position_], field.column);
    }
    std::optional<QString> text(Field field);
    std::optional<std::int32_t> number(QStringView name) { return number(field(name)); }
    std::optional<QString> text(QStringView name) { return text(field(name)); }

    /// Begins a new row; update() stores it, and it is the current one then. Where no row was asked
    /// for before, the others are not fetched at all: the recordset holds what was added.
    void add_new();
    /// Sets a field of the new or current row; nothing is stored before update().
    void set(const QString& name, Value value);
    void update();
    /// Refuses what update() would for the values alone, and forgets them.
    void check();
    /// Deletes the current row; the next one is current after move_next().
    void erase();

private:
    Session& session() const;
    const Found_Rows& rows();
    std::uint32_t current();

    Connection* connection_ = nullptr;
    Statement statement_;
    std::vector<QString> wanted_;
    std::optional<Found_Rows> rows_;
    std::size_t position_ = 0;
    bool adding_ = false;
    Row pending_;
};

} // namespace ado
