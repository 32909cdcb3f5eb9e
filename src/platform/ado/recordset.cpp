#include "platform/ado/recordset.h"

#include "platform/ado/error.h"

namespace ado {

void Recordset::open(const Command& command, std::vector<QString> wanted) {
    close();
    Statement statement = parse(command.text);
    if (statement.kind == Statement::Kind::erase)
        throw Error(Failure::statement, command.text.toStdString(), "has no rows to open");
    static_cast<void>(command.connection().session()); // throws when it is closed
    statement_ = std::move(statement);
    wanted_ = std::move(wanted);
    connection_ = &command.connection();
}

void Recordset::close() { *this = Recordset(); }

Session& Recordset::session() const {
    if (connection_ != nullptr) return connection_->session();
    throw Error(Failure::not_open, "recordset", "is not open");
}

const Found_Rows& Recordset::rows() {
    if (!rows_) rows_ = session().select(statement_, wanted_);
    return *rows_;
}

std::uint32_t Recordset::current() {
    if (!at_end()) return rows_->order[position_];
    throw Error(Failure::not_found, statement_.table.toStdString(), "there is no current row");
}

int Recordset::record_count() { return static_cast<int>(rows().order.size()); }

bool Recordset::at_end() { return position_ >= rows().order.size(); }

void Recordset::move_next() {
    pending_.clear();
    adding_ = false;
    if (!at_end()) ++position_;
}

void Recordset::move_first() {
    pending_.clear();
    adding_ = false;
    position_ = 0;
}

Recordset::Field Recordset::field(QStringView name) {
    if (const auto column = rows().block->column(name)) return {*column};
    throw Error(Failure::not_found, (statement_.table + u'.' + name.toString()).toStdString(),
                "no such column");
}

Value Recordset::value(Field field) { return rows().block->value(current(), field.column); }

std::optional<std::int32_t> Recordset::number(Field field) {
    return rows().block->number(current(), field.column);
}

std::optional<QString> Recordset::text(Field field) { return ado::text(value(field)); }

void Recordset::add_new() {
    static_cast<void>(session());
    pending_.clear();
    adding_ = true;
}

void Recordset::set(const QString& name, Value value) {
    pending_.emplace_back(name, std::move(value));
}

void Recordset::update() {
    const Row cells = std::exchange(pending_, {});
    if (!std::exchange(adding_, false)) {
        session().update(statement_.table, *rows().block, current(), cells);
        return;
    }
    if (!rows_) rows_ = session().nothing_of(statement_.table);
    rows_->order.push_back(session().insert(statement_.table, *rows_->block, cells));
    position_ = rows_->order.size() - 1;
}

void Recordset::check() {
    const Row cells = std::exchange(pending_, {});
    if (std::exchange(adding_, false))
        session().check(statement_.table, cells);
    else
        session().check(statement_.table, *rows().block, current(), cells);
}

void Recordset::erase() {
    const std::uint32_t row = current();
    session().erase(statement_.table, *rows_->block, row);
}

} // namespace ado
