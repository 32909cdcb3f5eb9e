#include "store/undo_name.h"

#include <array>
#include <optional>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

/// How many rows of a table came, changed and went.
struct Tally {
    int added = 0;
    int changed = 0;
    int deleted = 0;

    int all() const { return added + changed + deleted; }
    void count(const Row_Change& change) {
        ++(change.before.empty() ? added : change.after.empty() ? deleted : changed);
    }
    /// @return nothing when rows both came and went.
    std::optional<Undo_Kind> kind(Undo_Kind on_adding, Undo_Kind on_deleting,
                                  Undo_Kind on_changing) const {
        if (added > 0 && deleted > 0) return std::nullopt;
        return added > 0 ? on_adding : deleted > 0 ? on_deleting : on_changing;
    }
};

using Tallies = std::array<Tally, 5>; // by Table

const Tally& of(const Tallies& tallies, Table table) {
    return tallies[static_cast<std::size_t>(table)];
}

QString subject(const std::vector<Row_Change>& changes, Table table, const QString& column) {
    for (const Row_Change& change : changes) {
        if (change.table != table) continue;
        for (const auto& [name, value] : change.after.empty() ? change.before : change.after)
            if (name.compare(column, Qt::CaseInsensitive) == 0)
                return ado::text(value).value_or(QString());
    }
    return {};
}

int scripts_of_states(const std::vector<Row_Change>& changes) {
    std::set<std::int32_t> scripts;
    for (const Row_Change& change : changes)
        for (const auto& [name, value] : change.after.empty() ? change.before : change.after)
            if (name.compare(u"ScriptID"_s, Qt::CaseInsensitive) == 0)
                scripts.insert(ado::number(value).value_or(0));
    return static_cast<int>(scripts.size());
}

/// The table that a step is about, from the owning to the owned: what comes or goes with a row of
/// one is not worth a name of its own.
std::optional<Table> leading(const Tallies& tallies) {
    const Tally& sets = of(tallies, Table::Sets);
    if (sets.added + sets.deleted > 0) return Table::Sets;
    for (const Table table : {Table::Scripte, Table::Sets, Table::Scriptstates, Table::CVs})
        if (of(tallies, table).all() > 0) return table;
    return std::nullopt;
}

struct Words {
    Undo_Kind on_adding, on_deleting, on_changing;
    QString subject_column;
};

Words words(Table table) {
    switch (table) {
    case Table::Sets:
        return {Undo_Kind::sets_added, Undo_Kind::sets_deleted, Undo_Kind::sets_renamed, u"Name"_s};
    case Table::CVs:
        return {Undo_Kind::cvs_stored, Undo_Kind::cvs_deleted, Undo_Kind::cvs_stored, u"CVNr"_s};
    case Table::Scripte:
        return {Undo_Kind::scripts_added, Undo_Kind::scripts_deleted, Undo_Kind::scripts_renamed,
                u"ScriptName"_s};
    case Table::Scriptstates:
    case Table::other:
        break;
    }
    return {Undo_Kind::scripts_saved, Undo_Kind::scripts_saved, Undo_Kind::scripts_saved, {}};
}

} // namespace

Undo_Name undo_name(const std::vector<Row_Change>& changes) {
    Tallies tallies;
    for (const Row_Change& change : changes)
        tallies[static_cast<std::size_t>(change.table)].count(change);
    const Undo_Name unnamed{Undo_Kind::several, static_cast<int>(changes.size()), 0, {}};
    const auto table = leading(tallies);
    if (!table) return unnamed;
    const Tally& tally = of(tallies, *table);
    const Words found = words(*table);
    if (*table == Table::Scriptstates)
        return {Undo_Kind::scripts_saved, scripts_of_states(changes), 0, {}};
    const auto kind = tally.kind(found.on_adding, found.on_deleting, found.on_changing);
    if (!kind) return unnamed;
    Undo_Name name{*kind, tally.all(), 0, {}};
    if (*table != Table::CVs) name.cvs = of(tallies, Table::CVs).all();
    if (name.count == 1) name.subject = subject(changes, *table, found.subject_column);
    return name;
}

} // namespace store
