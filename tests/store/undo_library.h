#pragma once

#include "platform/jet/database.h"
#include "scripts/cls_script_coll.h"
#include "store/library.h"
#include "store/undo_history.h"
#include "support/crash_sweep.h"

#include <functional>

namespace undo {

/// A table as it stands in the file, in the order of its key.
struct Table_Content {
    std::u16string name;
    std::vector<jet::Column> columns;
    std::vector<jet::Index> indexes;
    std::vector<std::vector<jet::Value>> rows;
    bool operator==(const Table_Content&) const = default;
};

/// Everything in a library: tables, columns, keys, values, relations.
struct Content {
    std::vector<Table_Content> tables;
    std::vector<jet::Relation> relations;
    bool operator==(const Content&) const = default;
};

inline Content content(files::Disk& disk, const std::string& path = "a.mdb") {
    auto file = jet::Database::open(disk, path, jet::Mode::read_only);
    Content found{{}, file.relations()};
    for (const jet::Table& table : file.tables()) {
        Table_Content part{table.name(), table.columns(), table.indexes(), {}};
        for (auto row = table.rows(); row.next();) part.rows.push_back(row.values());
        found.tables.push_back(std::move(part));
    }
    return found;
}

/// Where two contents differ, for the log; empty: nowhere.
inline std::string difference(const Content& one, const Content& other) {
    if (one == other) return {};
    for (std::size_t i = 0; i < std::min(one.tables.size(), other.tables.size()); ++i)
        if (!(one.tables[i] == other.tables[i]))
            return "table " + std::to_string(i) + " with " +
                   std::to_string(one.tables[i].rows.size()) + " and " +
                   std::to_string(other.tables[i].rows.size()) + " rows";
    return "the list of tables or relations";
}

/// For sweeps of an operation that is whole or not there: what the disk holds afterwards.
inline auto whole_or_not(Content before, Content after) {
    return [before = std::move(before), after = std::move(after)](files::Disk& found,
                                                                  support::Outcome outcome) {
        const Content left = content(found);
        if (outcome != support::Outcome::refused && left == after) return;
        EXPECT_NE(outcome, support::Outcome::finished);
        EXPECT_EQ(difference(left, before), "");
    };
}

/// What people do to a library, on one of its sets.
class Person {
public:
    explicit Person(store::clsDBConn& db) : db_(db) {}
    ~Person() { scripts::AktScripts().Clear(); }
    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;

    std::int32_t add_set(const QString& name) {
        std::int16_t number = 0;
        return db_.DB_Add_CVSet(name, number, 8);
    }
    bool delete_set(std::int32_t set) { return db_.DB_Del_CVSet(set); }
    bool rename(std::int32_t set, const QString& name) {
        db_.AktCVSetID(set);
        return db_.DB_Rename_CVSet(name, 0);
    }
    store::CVRec write(std::int32_t set, int number, int value, int page = 1) {
        db_.AktCVSetID(set);
        store::CVRec rec = library::cv(number, value, 0, page);
        EXPECT_TRUE(db_.DB_Write_CV(rec));
        return rec;
    }
    bool write_many(std::int32_t set, int count, int value) {
        store::Operation all(db_);
        for (int i = 0; i < count; ++i) write(set, 513 + i, value);
        return all.keep();
    }
    bool paste_set(const QString& name, int cvs) {
        store::Operation all(db_);
        const std::int32_t set = add_set(name);
        return set != 0 && write_many(set, cvs, 7) && all.keep();
    }
    bool make_and_empty(const QString& name) {
        store::Operation all(db_);
        const std::int32_t set = add_set(name);
        return write_many(set, 3, 7) && delete_cvs(set, 3) && all.keep();
    }
    bool delete_cvs(std::int32_t set, int count) {
        const auto cvs = library::cvs(db_, set);
        store::Operation all(db_);
        for (int i = 0; i < count && i < static_cast<int>(cvs.size()); ++i)
            if (!db_.DB_Del_CVWert(cvs[static_cast<std::size_t>(i)].second)) return false;
        return all.keep();
    }
    int load_scripts(std::int32_t set) {
        db_.AktCVSetID(set);
        db_.DB_Load_Scripts();
        return scripts::AktScripts().Count();
    }
    /// @return its position
    int add_script(std::int32_t set, int lines) {
        const int position = load_scripts(set) + 1;
        scripts::cls_script& script = scripts::AktScripts().AddScript();
        script.ScriptName = u"Pfeife"_qs;
        fill(script, lines);
        store::Operation all(db_);
        const bool stored = db_.DB_Add_Script(position) && db_.DB_Save_Script_States(position);
        EXPECT_TRUE(all.keep() && stored);
        return position;
    }
    bool save_script(std::int32_t set, int position, int lines) {
        if (load_scripts(set) < position) return false;
        fill(*scripts::AktScripts().Item(position), lines);
        return db_.DB_Save_Script_States(position);
    }
    bool rename_script(std::int32_t set, int position, const QString& name) {
        if (load_scripts(set) < position) return false;
        scripts::AktScripts().Item(position)->ScriptName = name;
        return db_.DB_Rename_Script(position);
    }
    bool delete_script(std::int32_t set, int position) {
        return load_scripts(set) >= position && db_.DB_Delete_Script(position);
    }

private:
    static void fill(scripts::cls_script& script, int lines) {
        script.StateCount = lines;
        for (int i = 0; i < lines; ++i) {
            script.GetState(i).SetCommand(1 + i % 5);
            script.GetState(i).Info = u"Zeile %1, „ä“"_qs.arg(i);
        }
    }

    store::clsDBConn& db_;
};

} // namespace undo

/// Keeps a history of what is done to a sample.
class On_Undo : public On_Library {
protected:
    /// Lists the sets first, so that no number is missing any more.
    void open_listed(const std::string& sample) {
        open(sample);
        list();
    }
    /// As another program has left it.
    void open_changed(const std::function<void(jet::Database&)>& change,
                      const std::string& sample = "library_2000") {
        db.Connection_Close();
        library::put(disk, sample, "a.mdb");
        in_file(change);
        db.Connection_Start(u"a.mdb"_qs);
        list();
    }
    void list() {
        library::sets(db, 8);
        library::sets(db, 265);
        before = undo::content(disk);
    }
    void expect_content(const undo::Content& expected) {
        EXPECT_EQ(undo::difference(undo::content(disk), expected), "");
    }
    void expect_undone(const undo::Content& expected) {
        EXPECT_EQ(history.undo().outcome, store::Undo_Result::Outcome::done) << shown();
        expect_content(expected);
    }
    void expect_redone(const undo::Content& expected) {
        EXPECT_EQ(history.redo().outcome, store::Undo_Result::Outcome::done) << shown();
        expect_content(expected);
    }
    /// The last step, twice; it is done in the end.
    void expect_back_and_forth() {
        const undo::Content after = undo::content(disk);
        EXPECT_NE(undo::difference(after, before), "");
        for (int round = 0; round < 2; ++round) {
            expect_undone(before);
            expect_redone(after);
        }
    }
    std::string shown() { ///< what was wrong, for the log
        const auto trouble = db.take_trouble();
        return trouble ? (trouble->subject + u": "_qs + trouble->detail).toStdString() : "";
    }

    store::Undo_History history{db};
    undo::Content before; ///< when it was opened
};
