// One public operation is one transaction and one change record; inner ones join the outer one.

#include "store/clsDBConn_inside.h"

#include <array>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

struct Table_Name {
    Table table;
    QLatin1StringView name;
    QLatin1StringView key;
};

constexpr std::array table_names{
    Table_Name{Table::Sets, "Sets"_L1, "SetID"_L1},
    Table_Name{Table::CVs, "CVs"_L1, "CVID"_L1},
    Table_Name{Table::Scripte, "Scripte"_L1, "ScriptID"_L1},
    Table_Name{Table::Scriptstates, "Scriptstates"_L1, "SSID"_L1},
};

} // namespace

QString clsDBConn::Inside::table_name(const Row_Change& change) {
    for (const Table_Name& known : table_names)
        if (known.table == change.table) return known.name;
    return change.other;
}

bool clsDBConn::Inside::is_refusal(ado::Failure kind) {
    return kind == ado::Failure::refused || kind == ado::Failure::not_found ||
           kind == ado::Failure::statement;
}

bool clsDBConn::Inside::begin() {
    if (!expect_library() || spoiled) return false;
    if (const Blocked why = depth == 0 ? blocked() : Blocked::no; why != Blocked::no) {
        note(why == Blocked::no_cvs ? Failure::no_cvs : Failure::read_only, file,
             QString::fromStdString(connection.status().detail));
        return false;
    }
    try {
        if (depth == 0) {
            transaction.emplace(connection);
            set_there = 0;
        }
        ++depth;
        return true;
    } catch (const ado::Error& error) {
        note(error);
        leave_lost_file();
        return false;
    }
}

void clsDBConn::Inside::leave_lost_file() {
    if (lost && depth == 0) close();
}

void clsDBConn::Inside::begin_lost() {
    ++depth;
    spoiled = true;
}

/// Nothing of a transaction reaches the file before its commit, so until then the file can be
/// copied as it was.
bool clsDBConn::Inside::keep_copy() {
    if (keeper == nullptr) return true;
    if (!copy_kept) copy_kept = keeper->keep_copy(file);
    return *copy_kept;
}

bool clsDBConn::Inside::end(bool keep) {
    spoiled = spoiled || !keep;
    if (--depth > 0) return !spoiled;
    bool kept = !std::exchange(spoiled, false) && transaction.has_value();
    if (kept && !record.rows.empty()) {
        keep_copy();
        note_doubles();
    }
    try {
        if (kept) transaction->commit();
    } catch (const ado::Error& error) {
        note(error);
        kept = false;
    }
    transaction.reset();
    const Change_Record done = std::exchange(record, {});
    leave_lost_file();
    if (kept && !done.rows.empty() && listener != nullptr) listener->changed(done);
    return kept;
}

void clsDBConn::Inside::row_changed(const QString& table, const ado::Row& before,
                                    const ado::Row& after) {
    for (const Table_Name& known : table_names) {
        if (table.compare(known.name, Qt::CaseInsensitive) != 0) continue;
        const std::int32_t key = ado::number_in(after.empty() ? before : after, known.key);
        if (known.table == Table::Sets && after.empty()) set_there = 0;
        record.rows.push_back({known.table, key, before, after});
        return;
    }
    record.rows.push_back({Table::other, 0, before, after, table});
}

Operation::Operation(clsDBConn& connection) : inside_(*connection.inside_) {
    if (!inside_.begin()) inside_.begin_lost(); // what follows inside must not act on its own
}

Operation::~Operation() {
    if (open_) inside_.end(false);
}

bool Operation::keep() { return std::exchange(open_, false) && inside_.end(true); }

} // namespace store
