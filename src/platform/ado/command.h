#pragma once

#include "platform/ado/connection.h"
#include "platform/ado/statement.h"

#include <QString>

namespace ado {

/// SQL text bound to a connection.
class Command {
public:
    Command() = default;
    explicit Command(Connection& connection) : connection_(&connection) {}

    Connection& connection() const; ///< throws Error (not_open) when there is none
    QString text;

    /// Runs a DELETE. @return the number of rows deleted. A refused row ends it; inside an outer
    /// transaction those before it stay deleted.
    int execute() const;

private:
    Connection* connection_ = nullptr;
};

} // namespace ado
