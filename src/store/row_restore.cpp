// Putting rows back as they were, and what must hold for it.

#include "store/clsDBConn_inside.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

using Key_Set = std::set<std::int32_t>;

ado::Error differs(const QString& table, std::int32_t key) {
    ado::Error error(ado::Failure::refused, table + QLatin1Char(' ') + QString::number(key),
                     u"somebody else has changed it or what it hangs on"_s);
    error.by_others = true;
    return error;
}

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

/// What the changes come to: rows that came and went within them are no part of it.
std::vector<Row_Change> net(const std::vector<Row_Change>& changes) {
    std::vector<Row_Change> rows;
    std::map<std::pair<Table, std::int32_t>, std::size_t> places;
    for (const Row_Change& change : changes) {
        const auto [known, is_new] = places.try_emplace({change.table, change.key}, rows.size());
        if (change.table == Table::other || is_new ||
            change.before.empty() != rows[known->second].after.empty()) {
            known->second = rows.size();
            rows.push_back(change);
        } else {
            rows[known->second].after = change.after;
        }
    }
    std::erase_if(rows,
                  [](const Row_Change& row) { return row.before.empty() && row.after.empty(); });
    return rows;
}

/// Values of a column in the rows of a table that come back.
Key_Set coming_back(const std::vector<Row_Change>& changes, Table table, const QString& column) {
    Key_Set found;
    for (const Row_Change& change : changes)
        if (change.table == table && change.before.empty())
            found.insert(ado::number_in(change.after, column));
    return found;
}

Key_Set going(const std::vector<Row_Change>& changes, Table table) {
    Key_Set found;
    for (const Row_Change& change : changes)
        if (change.table == table && change.after.empty()) found.insert(change.key);
    return found;
}

/// What rows need of others, whether or not the library holds relations that watch over it.
/// Throws where it is not so; asked when all rows are put back.
class Surroundings {
public:
    using Query = std::function<ado::Recordset&(const QString& sql, std::vector<QString> wanted)>;
    explicit Surroundings(Query query) : query_(std::move(query)) {}

    /// CVs that stand in the places of those that come back and are none of them, by CVID.
    Key_Set in_places(const std::vector<Row_Change>& changes) {
        const Key_Set own = coming_back(changes, Table::CVs, u"CVID"_s);
        std::map<std::int32_t, std::set<Place>> sets;
        for (const Row_Change& change : changes) {
            if (change.table != Table::CVs || !change.before.empty()) continue;
            const auto at = [&](const QString& column) {
                return ado::number_in(change.after, column);
            };
            sets[at(u"SetID"_s)].insert({at(u"CVPageHi"_s), at(u"CVPageLo"_s), at(u"CVNr"_s)});
        }
        Key_Set found;
        for (const auto& [set, places] : sets) {
            auto& cvs = rows(u"CVs"_s, u"SetID"_s, set,
                             {u"CVID"_s, u"CVPageHi"_s, u"CVPageLo"_s, u"CVNr"_s});
            for (; !cvs.at_end(); cvs.move_next()) {
                const auto at = [&](QStringView column) { return cvs.number(column).value_or(0); };
                const std::int32_t key = at(u"CVID");
                if (!own.contains(key) &&
                    places.contains({at(u"CVPageHi"), at(u"CVPageLo"), at(u"CVNr")}))
                    found.insert(key);
            }
        }
        return found;
    }

    /// @param doubles met by CVs that come back, and not somebody else's
    void check(const std::vector<Row_Change>& changes, const Key_Set& doubles) {
        Key_Set sets = coming_back(changes, Table::CVs, u"SetID"_s);
        sets.merge(coming_back(changes, Table::Scripte, u"SetID"_s));
        for (const std::int32_t set : sets) need(u"Sets"_s, u"SetID"_s, set);
        for (const std::int32_t set : going(changes, Table::Sets)) {
            need_none(u"CVs"_s, u"SetID"_s, set);
            need_none(u"Scripte"_s, u"SetID"_s, set);
        }
        for (const std::int32_t script : going(changes, Table::Scripte))
            need_none(u"Scriptstates"_s, u"ScriptID"_s, script);
        check_states(changes);
        for (const std::int32_t met : in_places(changes))
            if (!doubles.contains(met)) throw differs(u"CVs"_s, met);
    }

private:
    using Place = std::tuple<std::int32_t, std::int32_t, std::int32_t>;

    ado::Recordset& rows(const QString& table, const QString& column, std::int32_t key,
                         std::vector<QString> wanted = {}) {
        wanted.push_back(column);
        return query_(u"SELECT * FROM %1 WHERE %2 = %3"_s.arg(table, column).arg(key),
                      std::move(wanted));
    }
    void need(const QString& table, const QString& column, std::int32_t key) {
        if (rows(table, column, key).at_end()) throw differs(table, key);
    }
    void need_none(const QString& table, const QString& column, std::int32_t key) {
        if (!rows(table, column, key).at_end()) throw differs(table, key);
    }

    /// The states of a script come and go together: others in between would be somebody else's.
    void check_states(const std::vector<Row_Change>& changes) {
        const Key_Set own = coming_back(changes, Table::Scriptstates, u"SSID"_s);
        for (const std::int32_t script : coming_back(changes, Table::Scriptstates, u"ScriptID"_s)) {
            need(u"Scripte"_s, u"ScriptID"_s, script);
            auto& states = rows(u"Scriptstates"_s, u"ScriptID"_s, script, {u"SSID"_s});
            for (; !states.at_end(); states.move_next())
                if (!own.contains(states.number(u"SSID").value_or(0)))
                    throw differs(u"Scripte"_s, script);
        }
    }

    Query query_;
};

template <class Inside>
Surroundings surroundings(Inside& inside) {
    return Surroundings([&inside](const QString& sql, std::vector<QString> wanted) -> auto& {
        return inside.query(sql, std::move(wanted));
    });
}

} // namespace

void clsDBConn::Inside::replay(const Row_Change& change) {
    ado::Session& session = connection.session();
    const QString table = table_name(change);
    if (change.before.empty()) {
        session.insert(table, *session.nothing_of(table).block, change.after,
                       ado::Origin::restored);
    } else {
        const ado::Found_Rows found = session.rows_equal(table, change.before);
        if (found.order.empty()) throw differs(table, change.key);
        if (change.after.empty())
            session.erase(table, *found.block, found.order.front());
        else
            session.update(table, *found.block, found.order.front(), differing_cells(change),
                           ado::Origin::restored);
    }
    if (!is_back(record.rows.back().after, change.after))
        throw ado::Error(ado::Failure::refused,
                         table + QLatin1Char(' ') + QString::number(change.key),
                         u"would come back otherwise than it was"_s);
}

/// Asked before the commit: nobody else can have put a CV into the places since the deletion.
void clsDBConn::Inside::note_doubles() {
    const auto is_deleted = [](const Row_Change& change) {
        return change.table == Table::CVs && change.after.empty();
    };
    if (listener == nullptr || std::none_of(record.rows.begin(), record.rows.end(), is_deleted))
        return;
    const std::vector<Row_Change> rows = net(record.rows);
    std::vector<Row_Change> deleted;               // turned round: as they would come back
    const Key_Set sets = going(rows, Table::Sets); // which take all of their CVs along
    for (const Row_Change& change : rows)
        if (is_deleted(change) && !sets.contains(ado::number_in(change.before, u"SetID"_s)))
            deleted.push_back({change.table, change.key, {}, change.before});
    if (deleted.empty()) return;
    try {
        record.doubles = surroundings(*this).in_places(deleted);
    } catch (const ado::Error&) {
        // Then bringing them back is refused; no reason to refuse the deletion.
    }
}

Replayed clsDBConn::replay(const std::vector<Row_Change>& changes,
                           const std::set<std::int32_t>& doubles) {
    Inside& inside = *inside_;
    if (!inside.begin()) return Replayed::failed;
    const std::vector<Row_Change> all = net(changes);
    Replayed result = Replayed::done;
    try {
        for (const Row_Change& change : changes) inside.replay(change);
        surroundings(inside).check(all, doubles);
    } catch (const ado::Error& error) {
        inside.note(error);
        const bool differs = error.by_others || error.kind == ado::Failure::not_found;
        result = differs ? Replayed::differs : Replayed::failed;
    }
    const bool current_set_goes = going(all, Table::Sets).contains(inside.akt_set);
    if (!inside.end(result == Replayed::done) && result == Replayed::done) return Replayed::failed;
    if (result == Replayed::done && current_set_goes) inside.akt_set = 0;
    return result;
}

} // namespace store
