// One public operation is one transaction and one change record; inner ones join the outer one.

#include "store/library_operation.h"

#include "platform/failure/sure.h"
#include "store/row_surroundings.h"

#include <algorithm>
#include <array>
#include <tuple>
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

QString table_name(const Row_Change& change) {
    for (const Table_Name& known : table_names)
        if (known.table == change.table) return known.name;
    return change.other;
}

Library_Operation::Library_Operation(Library_File& file, std::function<void()> leave)
    : file_(file), leave_(std::move(leave)) {
    file_.connection().watch(this);
}

void Library_Operation::forget() {
    transaction_.reset(); // must not outlive the connection; an operation that is open is lost
    spoiled_ = depth_ > 0;
    record_ = {};
    copy_kept_.reset();
}

void Library_Operation::tell(const std::function<void(Change_Listener&)>& message) {
    const auto listeners = listeners_; // one may leave while it is told
    for (Change_Listener* listener : listeners) message(*listener);
}

void Library_Operation::tell_left() {
    tell([](Change_Listener& listener) { listener.library_left(); });
}

bool Library_Operation::is_refusal(Failure kind) {
    return kind == Failure::refused || kind == Failure::not_found || kind == Failure::changed ||
           kind == Failure::statement;
}

bool Library_Operation::begin() {
    if (!file_.expect_library() || spoiled_) return false;
    if (const Blocked why = depth_ == 0 ? file_.blocked() : Blocked::no; why != Blocked::no) {
        file_.note(why == Blocked::no_cvs ? Failure::no_cvs : Failure::read_only, file_.path(),
                   QString::fromStdString(file_.connection().status().detail));
        return false;
    }
    try {
        if (depth_ == 0) {
            transaction_.emplace(file_.connection());
            set_there = 0;
        }
        ++depth_;
        return true;
    } catch (const ado::Error& error) {
        file_.note(error);
        leave_lost_file();
        return false;
    }
}

void Library_Operation::leave_lost_file() {
    if (file_.is_lost() && depth_ == 0) leave_();
}

void Library_Operation::begin_lost() {
    ++depth_;
    spoiled_ = true;
}

/// Nothing of a transaction reaches the file before its commit, so until then the file can be
/// copied as it was.
bool Library_Operation::keep_copy() {
    if (keeper == nullptr) return true;
    if (!copy_kept_) copy_kept_ = keeper->keep_copy(file_.path());
    return *copy_kept_;
}

bool Library_Operation::end(bool keep) {
    SURE(depth_ > 0);
    spoiled_ = spoiled_ || !keep;
    if (--depth_ > 0) return !spoiled_;
    bool kept = !std::exchange(spoiled_, false) && transaction_.has_value();
    if (kept && !record_.rows.empty()) {
        std::ignore = keep_copy();
        note_oddities();
    }
    try {
        if (kept) transaction_->commit();
    } catch (const ado::Error& error) {
        file_.note(error);
        kept = false;
    }
    transaction_.reset();
    const Change_Record done = std::exchange(record_, {});
    leave_lost_file();
    if (kept && !done.rows.empty())
        tell([&](Change_Listener& listener) { listener.changed(done); });
    return kept;
}

void Library_Operation::row_changed(const QString& table, const ado::Row& before,
                                    const ado::Row& after) {
    SURE(depth_ > 0);
    for (const Table_Name& known : table_names) {
        if (table.compare(known.name, Qt::CaseInsensitive) != 0) continue;
        const std::int32_t key = ado::number_in(after.empty() ? before : after, known.key);
        if (known.table == Table::Sets && after.empty()) set_there = 0;
        record_.rows.push_back({known.table, key, before, after});
        return;
    }
    record_.rows.push_back({Table::other, 0, before, after, table});
}

/// Asked before the commit: nobody else can have put anything right since the deletion.
void Library_Operation::note_oddities() {
    const auto hangs_together = [](const Row_Change& change) {
        return change.after.empty() || change.table == Table::Scriptstates;
    };
    if (listeners_.empty() || std::ranges::none_of(record_.rows, hangs_together)) return;
    try {
        record_.odd = Row_Surroundings(file_).oddities(net(record_.rows));
    } catch (const ado::Error&) {
        // Then bringing them back is refused; no reason to refuse the deletion.
    }
}

} // namespace store
