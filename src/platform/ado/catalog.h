#pragma once

#include "platform/ado/connection.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ado {

enum class Column_Kind {
    whole, ///< 32 bits
    text   ///< Unicode, variable length; may be empty
};

/// A column that is going to be made.
struct Column {
    QString name;
    Column_Kind kind = Column_Kind::whole;
    std::size_t length = 0; ///< of a text, in characters: 1..255
    bool nullable = true;
    bool auto_increment = false;
    QString description = {};
};

/// An index over one column.
struct Index {
    QString name;
    bool primary_key = false;
    QString column;
};

/// A foreign key over one column, with the delete rule "none".
struct Foreign_Key {
    QString name;
    QString related_table;
    QString column;
    QString related_column;
};

struct Table {
    QString name;
    std::vector<Column> columns = {};
    std::vector<Index> indexes = {};
    std::vector<Foreign_Key> keys = {};
};

/// The schema of an open database. Throws Error.
class Catalog {
public:
    explicit Catalog(Connection& connection) : connection_(connection) {}

    /// Names as they stand in the file, in the order of its catalogue, without system tables.
    std::vector<QString> tables() const;
    /// Names as they stand, in the order of the table, with those completed in memory.
    std::vector<QString> columns(const QString& table) const;
    /// Largest number of characters of a text column; 0 for any other, 255 for a memo.
    std::size_t text_width(const QString& table, const QString& column) const;

    /// Throws Error (refused) when rows of another table than the `known` ones refer to the row
    /// with this key and forbid to delete it.
    void refuse_if_referred(const QString& table, const QString& column, std::int32_t key,
                            const std::vector<QString>& known) const;

    /// Makes a table with its indexes and keys, all or nothing.
    void append(const Table& table);
    void append(const QString& table, const Column& column);
    /// For a file that cannot be written: the table reads as empty, the column as null.
    void append_in_memory(const Table& table);
    void append_in_memory(const QString& table, const Column& column);

private:
    Connection& connection_;
};

} // namespace ado
