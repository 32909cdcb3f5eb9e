#pragma once

#include "platform/ado/value.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <vector>

namespace store {

enum class Table { Sets, CVs, Scripte, Scriptstates, other };

/// One row that was added (nothing before), changed or deleted (nothing after). Rows carry all
/// columns of the table, those of other programs too, so that they can be put back as they were.
struct Row_Change {
    Table table = Table::Sets;
    std::int32_t key = 0; ///< SetID, CVID, ScriptID or SSID; 0 in other tables
    ado::Row before;
    ado::Row after;
    /// Name of a table of another program: a relation may delete or change its rows with ours.
    QString other = {};
};

/// What stood around rows that were changed. Much of it is wrong, and may be so again when they come
/// back: libraries of other programs hold a CV twice, or rows of sets and scripts that are gone.
struct Oddities {
    std::set<std::int32_t> doubles;    ///< CVs in the places of deleted ones, by CVID
    std::set<std::int32_t> no_sets;    ///< which deleted CVs and scripts named, by SetID
    std::set<std::int32_t> no_scripts; ///< which deleted states named, by ScriptID
    /// Prints of the unchanged lines of scripts with changed ones, by ScriptID.
    std::map<std::int32_t, std::size_t> lines;
};

/// Everything that one outermost operation changed, in the order in which it happened.
struct Change_Record {
    std::vector<Row_Change> rows;
    Oddities odd = {};
    /// Nobody asked for it: listing stored numbers and reset CVs that were missing.
    bool upkeep = false;
};

/// How putting rows back has ended.
enum class Replayed {
    done,
    differs, ///< somebody else has changed what they hang on; nothing was put back
    failed   ///< nothing was put back, and the latest trouble says why
};

/// Whoever keeps something in step with the library: undo, backups, the lists.
class Change_Listener {
public:
    virtual ~Change_Listener() = default;
    /// Called once after each outermost operation that changed something, when it is on disk; not
    /// for one that was rolled back. The connection may be used again.
    virtual void changed(const Change_Record& record) = 0;
    /// Another library is opened, or none: what was told before says nothing about it.
    virtual void library_left() {}
};

} // namespace store
