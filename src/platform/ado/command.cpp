#include "platform/ado/command.h"

#include "platform/ado/error.h"

namespace ado {

Connection& Command::connection() const {
    if (connection_ != nullptr) return *connection_;
    throw Error(Failure::not_open, text.toStdString(), "the command has no connection");
}

int Command::execute() const {
    const Statement statement = parse(text);
    if (statement.kind != Statement::Kind::erase)
        throw Error(Failure::statement, text.toStdString(), "a query is opened, not executed");
    Transaction transaction(connection());
    Session& session = connection().session();
    const Found_Rows found = session.select(statement, {statement.where.front().column});
    for (const std::uint32_t row : found.order) session.erase(statement.table, *found.block, row);
    transaction.commit();
    return static_cast<int>(found.order.size());
}

} // namespace ado
