#include "platform/ado/session.h"

#include "platform/ado/error.h"
#include "platform/failure/sure.h"

namespace ado {

namespace {

bool same_name(const QString& one, const QString& other) {
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

bool is_whole(jet::Column_Type type) {
    return type == jet::Column_Type::byte || type == jet::Column_Type::integer ||
           type == jet::Column_Type::long_integer;
}

} // namespace

void Session::enter(Extent extent) {
    ++guards_;
    if (extent == Extent::whole) ++whole_guards_;
}

void Session::leave(Extent extent) {
    SURE(guards_ > 0 && (extent == Extent::some || whole_guards_ > 0));
    if (extent == Extent::whole) --whole_guards_;
    // tables that were held for reading cannot serve what is changed afterwards
    if (--guards_ == 0 || (extent == Extent::whole && whole_guards_ == 0)) held_.clear();
    if (guards_ == 0) asked_.clear();
}

void Session::complete_in_memory(const QString& table, const std::vector<QString>& columns) {
    auto& completed = completed_[table.toLower()];
    completed.insert(completed.end(), columns.begin(), columns.end());
}

std::vector<QString> Session::columns(const QString& table) {
    std::vector<QString> names;
    for (const auto& column : shape(table).columns) names.push_back(column.name);
    return names;
}

std::vector<QString> Session::tables() {
    std::vector<QString> names;
    for (const jet::Table& table : database_.tables())
        names.push_back(QString::fromStdU16String(table.name()));
    return names;
}

std::optional<std::size_t> Session::Shape::column(const QString& wanted) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (same_name(columns[i].name, wanted)) return i;
    return std::nullopt;
}

Session::Shape Session::shape(const QString& table) {
    Shape shape;
    shape.name = table;
    shape.table = database_.table(table.toStdU16String());
    const auto completed = completed_.find(table.toLower());
    if (!shape.table && completed == completed_.end())
        throw Error(Failure::not_found, table.toStdString(), "no such table");
    if (shape.table) {
        const auto& columns = shape.table->columns();
        for (std::size_t i = 0; i < columns.size(); ++i)
            shape.columns.push_back(
                {QString::fromStdU16String(columns[i].name), i, is_whole(columns[i].type)});
    }
    if (completed != completed_.end())
        for (const QString& name : completed->second)
            if (!shape.column(name)) shape.columns.push_back({name, std::nullopt, true});
    return shape;
}

jet::Table Session::stored_table(const QString& table) {
    if (auto found = database_.table(table.toStdU16String())) return *found;
    throw Error(Failure::not_found, table.toStdString(), "no such table");
}

} // namespace ado
