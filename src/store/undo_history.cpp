#include "store/undo_history.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

using Outcome = Undo_Result::Outcome;

/// Gives a row that is remembered the values that upkeep gave the row in the library.
void complete(ado::Row& row, const Row_Change& upkeep) {
    if (row.size() != upkeep.before.size()) return;
    for (std::size_t i = 0; i < row.size(); ++i)
        if (row[i] == upkeep.before[i]) row[i].second = upkeep.after[i].second;
}

} // namespace

Undo_History::Undo_History(clsDBConn& connection) : connection_(connection) {
    connection_.listen(*this);
}

Undo_History::~Undo_History() { connection_.unlisten(*this); }

std::optional<Undo_Name> Undo_History::undo_name() const {
    return to_undo_.empty() ? std::nullopt : std::optional(to_undo_.back().name);
}

std::optional<Undo_Name> Undo_History::redo_name() const {
    return to_redo_.empty() ? std::nullopt : std::optional(to_redo_.back().name);
}

Undo_Result Undo_History::undo() { return move(to_undo_, to_redo_); }

Undo_Result Undo_History::redo() { return move(to_redo_, to_undo_); }

void Undo_History::clear() {
    to_undo_.clear();
    to_redo_.clear();
    column_names_.clear();
}

void Undo_History::Step::turn_round() {
    std::reverse(changes.begin(), changes.end());
    for (Row_Change& change : changes) std::swap(change.before, change.after);
}

void Undo_History::share_names(ado::Row& row) {
    for (auto& [name, value] : row) name = *column_names_.insert(name);
}

void Undo_History::changed(const Change_Record& record) {
    if (moving_) return;
    if (record.upkeep) {
        for (const Row_Change& change : record.rows) follow(change);
        return;
    }
    Step step{store::undo_name(record.rows), record.rows, record.odd};
    for (Row_Change& change : step.changes) {
        share_names(change.before);
        share_names(change.after);
    }
    step.turn_round();
    to_undo_.push_back(std::move(step));
    to_redo_.clear();
    ++steps_made_;
}

/// Otherwise a step would find the row changed, and undoing it would undo the upkeep as well.
void Undo_History::follow(const Row_Change& upkeep) {
    for (Steps* const steps : {&to_undo_, &to_redo_})
        for (Step& step : *steps)
            for (Row_Change& change : step.changes) {
                if (change.table != upkeep.table || change.key != upkeep.key) continue;
                complete(change.before, upkeep);
                complete(change.after, upkeep);
            }
}

Undo_Result Undo_History::move(Steps& from, Steps& to) {
    if (from.empty()) return {};
    Step step = std::move(from.back()); // the history may end with its library meanwhile
    from.pop_back();
    moving_ = true;
    const Replayed replayed = connection_.replay(step.changes, step.odd);
    moving_ = false;
    Undo_Result result{Outcome::done, step.name, 0};
    if (replayed == Replayed::done) {
        result.set = set_of(step.changes);
        step.turn_round();
        to.push_back(std::move(step));
    } else if (replayed == Replayed::differs) {
        clear();
        result.outcome = Outcome::changed_elsewhere;
    } else {
        if (connection_.Connection_Active()) from.push_back(std::move(step));
        result.outcome = Outcome::failed;
    }
    return result;
}

/// The first set that is met: all rows of most steps belong to one.
std::int32_t Undo_History::set_of(const std::vector<Row_Change>& changes) {
    std::int32_t set = 0;
    for (const Row_Change& change : changes) {
        if (set != 0) break;
        const ado::Row& row = change.after.empty() ? change.before : change.after;
        set = change.table == Table::Scriptstates
                  ? connection_.set_of_script(ado::number_in(row, u"ScriptID"_s))
                  : ado::number_in(row, u"SetID"_s);
    }
    return connection_.reset_cv(set) != 0 ? set : 0;
}

} // namespace store
