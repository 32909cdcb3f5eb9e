#include "store/row_restore.h"

#include <algorithm>
#include <map>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

ado::Row differing_cells(const Row_Change& change) {
    ado::Row cells;
    for (std::size_t i = 0; i < change.after.size() && i < change.before.size(); ++i)
        if (!ado::same_cell(change.after[i], change.before[i])) cells.push_back(change.after[i]);
    return cells;
}

/// A row that has been put back may have got new columns meanwhile, which come last.
bool is_back(const ado::Row& row, const ado::Row& wanted) {
    return row.size() >= wanted.size() &&
           std::equal(wanted.begin(), wanted.end(), row.begin(), ado::same_cell);
}

/// A row of another program that was changed may have followed one of ours, and follows it again.
bool may_follow(const Row_Change& change) {
    return change.table == Table::other && !change.before.empty() && !change.after.empty();
}

ado::Origin origin_of(const Row_Change& change, const Oddities& odd) {
    const bool state = change.table == Table::Scriptstates;
    const bool owned = state || change.table == Table::CVs || change.table == Table::Scripte;
    const QString owner = state ? u"ScriptID"_s : u"SetID"_s;
    const bool orphan =
        owned &&
        (state ? odd.no_scripts : odd.no_sets).contains(ado::number_in(change.after, owner));
    return orphan ? ado::Origin::orphan : ado::Origin::restored;
}

void restore(Library_Operation& operation, const Row_Change& change, const Oddities& odd) {
    ado::Session& session = operation.file().connection().session();
    const QString table = table_name(change);
    if (change.before.empty()) {
        session.insert(table, *session.nothing_of(table).block, change.after,
                       origin_of(change, odd));
    } else {
        const ado::Found_Rows found = session.rows_equal(table, change.before);
        if (found.order.empty() && may_follow(change) &&
            !session.rows_equal(table, change.after).order.empty())
            return;
        if (found.order.empty()) throw differs(table, change.key);
        if (change.after.empty())
            session.erase(table, *found.block, found.order.front());
        else
            session.update(table, *found.block, found.order.front(), differing_cells(change),
                           ado::Origin::restored);
    }
    if (!is_back(operation.changes().back().after, change.after))
        throw ado::Error(Failure::refused, row_name(table, change.key),
                         "would come back otherwise than it was");
}

/// A relation takes along what hangs on a row that goes: rows that others have added meanwhile, too.
void refuse_more(const std::vector<Row_Change>& done, const std::vector<Row_Change>& wanted) {
    std::map<std::pair<QString, std::int32_t>, int> left;
    for (const Row_Change& change : wanted) ++left[{table_name(change), change.key}];
    for (const Row_Change& change : done)
        if (--left[{table_name(change), change.key}] < 0)
            throw differs(table_name(change), change.key);
}

} // namespace

Replayed restore_rows(Library_Operation& operation, const std::vector<Row_Change>& changes,
                      const std::vector<Row_Change>& all, const Oddities& odd) {
    if (!operation.begin()) return Replayed::failed;
    Replayed result = Replayed::done;
    try {
        for (const bool following : {false, true})
            for (const Row_Change& change : changes)
                if (may_follow(change) == following) restore(operation, change, odd);
        refuse_more(operation.changes(), changes);
        Row_Surroundings(operation.file()).check(all, odd);
    } catch (const ado::Error& error) {
        operation.file().note(error);
        const bool differs =
            error.by_others || error.kind == Failure::not_found || error.kind == Failure::changed;
        result = differs ? Replayed::differs : Replayed::failed;
    }
    if (!operation.end(result == Replayed::done) && result == Replayed::done)
        return Replayed::failed;
    return result;
}

} // namespace store
