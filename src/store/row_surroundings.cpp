#include "store/row_surroundings.h"

#include <QHashFunctions>
#include <map>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

Key_Set without(Key_Set keys, const Key_Set& others) {
    std::erase_if(keys, [&](std::int32_t key) { return others.contains(key); });
    return keys;
}

/// Values of a column in the rows of a table that come back.
Key_Set coming_back(const std::vector<Row_Change>& changes, Table table, const QString& column) {
    Key_Set found;
    for (const Row_Change& change : changes)
        if (change.table == table && change.before.empty())
            found.insert(ado::number_in(change.after, column));
    return found;
}

Key_Set sets_of(const std::vector<Row_Change>& coming) {
    Key_Set sets = coming_back(coming, Table::CVs, u"SetID"_s);
    sets.merge(coming_back(coming, Table::Scripte, u"SetID"_s));
    return sets;
}

} // namespace

ado::Error differs(const QString& table, std::int32_t key) {
    return {Failure::changed, row_name(table, key),
            "somebody else has changed it or what it hangs on"};
}

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

Key_Set going(const std::vector<Row_Change>& changes, Table table) {
    Key_Set found;
    for (const Row_Change& change : changes)
        if (change.table == table && change.after.empty()) found.insert(change.key);
    return found;
}

Key_Set Row_Surroundings::in_places(const std::vector<Row_Change>& changes) {
    const Key_Set own = coming_back(changes, Table::CVs, u"CVID"_s);
    std::map<std::int32_t, std::set<Place>> sets;
    for (const Row_Change& change : changes) {
        if (change.table != Table::CVs || !change.before.empty()) continue;
        const auto at = [&](const QString& column) { return ado::number_in(change.after, column); };
        sets[at(u"SetID"_s)].insert(
            {.hi = at(u"CVPageHi"_s), .lo = at(u"CVPageLo"_s), .number = at(u"CVNr"_s)});
    }
    Key_Set found;
    for (const auto& [set, places] : sets) {
        auto cvs =
            rows(u"CVs"_s, u"SetID"_s, set, {u"CVID"_s, u"CVPageHi"_s, u"CVPageLo"_s, u"CVNr"_s});
        for (; !cvs.at_end(); cvs.move_next()) {
            const auto at = [&](QStringView column) { return cvs.number(column).value_or(0); };
            const std::int32_t key = at(u"CVID");
            const Place place{.hi = at(u"CVPageHi"), .lo = at(u"CVPageLo"), .number = at(u"CVNr")};
            if (!own.contains(key) && places.contains(place)) found.insert(key);
        }
    }
    return found;
}

Oddities Row_Surroundings::oddities(const std::vector<Row_Change>& changes) {
    const Key_Set sets = going(changes, Table::Sets); // which take all of their CVs along
    std::vector<Row_Change> deleted;                  // turned round: as they would come back
    for (const Row_Change& change : changes)
        if (change.after.empty() && !(change.table == Table::CVs &&
                                      sets.contains(ado::number_in(change.before, u"SetID"_s))))
            deleted.push_back({change.table, change.key, {}, change.before});
    return {in_places(deleted), missing(u"Sets"_s, u"SetID"_s, without(sets_of(deleted), sets)),
            missing(u"Scripte"_s, u"ScriptID"_s,
                    without(coming_back(deleted, Table::Scriptstates, u"ScriptID"_s),
                            going(changes, Table::Scripte))),
            lines_beside(changes)};
}

void Row_Surroundings::check(const std::vector<Row_Change>& changes, const Oddities& odd) {
    need_as_it_was(u"Sets"_s, u"SetID"_s, sets_of(changes), odd.no_sets);
    for (const std::int32_t set : going(changes, Table::Sets)) {
        need_none(u"CVs"_s, u"SetID"_s, set);
        need_none(u"Scripte"_s, u"SetID"_s, set);
    }
    for (const std::int32_t script : going(changes, Table::Scripte))
        need_none(u"Scriptstates"_s, u"ScriptID"_s, script);
    need_as_it_was(u"Scripte"_s, u"ScriptID"_s,
                   coming_back(changes, Table::Scriptstates, u"ScriptID"_s), odd.no_scripts);
    for (const auto& [script, print] : lines_beside(changes))
        if (const auto known = odd.lines.find(script);
            known == odd.lines.end() || known->second != print)
            throw differs(u"Scripte"_s, script);
    for (const std::int32_t met : in_places(changes))
        if (!odd.doubles.contains(met)) throw differs(u"CVs"_s, met);
}

ado::Recordset Row_Surroundings::rows(const QString& table, const QString& column, std::int32_t key,
                                      std::vector<QString> wanted) {
    wanted.push_back(column);
    return file_.rows(u"SELECT * FROM %1 WHERE %2 = %3"_s.arg(table, column).arg(key),
                      std::move(wanted));
}
Key_Set Row_Surroundings::missing(const QString& table, const QString& column,
                                  const Key_Set& keys) {
    Key_Set found;
    for (const std::int32_t key : keys)
        if (rows(table, column, key).at_end()) found.insert(key);
    return found;
}
/// One that was missing must be so still: what stands there by now is somebody else's.
void Row_Surroundings::need_as_it_was(const QString& table, const QString& column,
                                      const Key_Set& keys, const Key_Set& missing) {
    for (const std::int32_t key : keys)
        missing.contains(key) ? need_none(table, column, key) : need(table, column, key);
}
void Row_Surroundings::need(const QString& table, const QString& column, std::int32_t key) {
    if (rows(table, column, key).at_end()) throw differs(table, key);
}
void Row_Surroundings::need_none(const QString& table, const QString& column, std::int32_t key) {
    if (!rows(table, column, key).at_end()) throw differs(table, key);
}

std::map<std::int32_t, std::size_t>
Row_Surroundings::lines_beside(const std::vector<Row_Change>& changes) {
    std::map<std::int32_t, Key_Set> changed; // lines of a script
    for (const Row_Change& change : changes) {
        if (change.table != Table::Scriptstates) continue;
        const ado::Row& row = change.after.empty() ? change.before : change.after;
        changed[ado::number_in(row, u"ScriptID"_s)].insert(ado::number_in(row, u"SSID"_s));
    }
    const std::vector<QString> numbers{u"SSID"_s, u"State"_s, u"Command"_s, u"Par1"_s,
                                       u"Par2"_s, u"Par3"_s,  u"Par4"_s};
    std::map<std::int32_t, std::size_t> prints;
    for (const auto& [script, keys] : changed) {
        std::vector<QString> wanted = numbers;
        wanted.push_back(u"Info"_s);
        auto lines = rows(u"Scriptstates"_s, u"ScriptID"_s, script, std::move(wanted));
        std::size_t& print = prints[script];
        for (; !lines.at_end(); lines.move_next()) {
            if (keys.contains(lines.number(numbers.front()).value_or(0))) continue;
            for (const QString& number : numbers)
                print = qHashMulti(print, lines.number(number).value_or(0));
            print = qHashMulti(print, lines.text(u"Info").value_or(QString()));
        }
    }
    return prints;
}

} // namespace store
