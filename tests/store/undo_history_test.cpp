// Taking back and doing again, each time compared with the whole library as it was.

#include "store/undo_library.h"
#include "support/crash_sweep.h"

#include <algorithm>
#include <array>
#include <random>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using undo::Content;
using undo::content;
using undo::difference;
using undo::Person;
using Outcome = Undo_Result::Outcome;

namespace {

struct Command {
    const char* what;
    std::function<bool(Person&)> run;
    Undo_Kind kind = {};
    int rows = 0; ///< 0: the name is not judged
    QString subject = {};
    int cvs = 0;
};

/// On a set that has CVs.
std::vector<Command> commands(std::int32_t set) {
    using enum Undo_Kind;
    return {
        {"add set", [](Person& p) { return p.add_set(u"Neu, \"ä\""_s) != 0; }, sets_added, 1,
         u"Neu, \"ä\""_s},
        {"rename set", [=](Person& p) { return p.rename(set, u"Anders"_s); }, sets_renamed, 1,
         u"Anders"_s},
        {"new CV", [=](Person& p) { return p.write(set, 300, 5, 9).CVID != 0; }, cvs_stored, 1,
         u"300"_s},
        {"overwrite it", [=](Person& p) { return p.write(set, 300, 6, 9).CVID != 0; }, cvs_stored,
         1, u"300"_s},
        {"paste CVs", [=](Person& p) { return p.write_many(set, 60, 3); }, cvs_stored, 60},
        {"paste a set", [](Person& p) { return p.paste_set(u"Eingefügt"_s, 40); }, sets_added, 1,
         u"Eingefügt"_s, 40},
        {"make, fill and empty a set", [](Person& p) { return p.make_and_empty(u"Kurz"_s); }},
        {"delete CVs", [=](Person& p) { return p.delete_cvs(set, 14); }, cvs_deleted, 14},
        {"add script", [=](Person& p) { return p.add_script(set, 12) > 0; }, scripts_added, 1,
         u"Pfeife"_s},
        {"save script", [=](Person& p) { return p.save_script(set, 1, 5); }, scripts_saved, 1},
        {"empty script", [=](Person& p) { return p.save_script(set, 1, 0); }, scripts_saved, 1},
        {"fill it", [=](Person& p) { return p.save_script(set, 1, 256); }, scripts_saved, 1},
        {"rename script", [=](Person& p) { return p.rename_script(set, 1, u"Glocke"_s); },
         scripts_renamed, 1, u"Glocke"_s},
        {"delete script", [=](Person& p) { return p.delete_script(set, 1); }, scripts_deleted, 1,
         u"Glocke"_s},
    };
}

using Undo = On_Undo;

TEST_F(Undo, every_command_goes_back_and_forth) {
    for (const std::string& sample : library::names()) {
        SCOPED_TRACE(sample);
        open_listed(sample);
        Person person(db);
        std::vector<Content> states{content(disk)};
        auto all = commands(library::sets(db, 8).front().second);
        const auto sets = library::sets(db, 8);
        const auto with_scripts = std::find_if(sets.begin(), sets.end(), [&](const auto& set) {
            return db.DB_Count_Scripts(set.second) > 0;
        });
        if (with_scripts != sets.end())
            all.push_back({"delete a set with scripts",
                           [&](Person&) { return db.DB_Del_CVSet(with_scripts->second); }});
        for (const Command& command : all) {
            SCOPED_TRACE(command.what);
            ASSERT_TRUE(command.run(person)) << shown();
            states.push_back(content(disk));
            ASSERT_NE(difference(states.back(), states[states.size() - 2]), "");
            ASSERT_TRUE(history.undo_name());
            if (command.rows > 0) {
                EXPECT_EQ(*history.undo_name(),
                          (Undo_Name{command.kind, command.rows, command.cvs, command.subject}));
            }
        }
        for (std::size_t i = states.size() - 1; i > 0; --i) expect_undone(states[i - 1]);
        EXPECT_EQ(history.undo().outcome, Outcome::nothing_to_do);
        for (std::size_t i = 1; i < states.size(); ++i) expect_redone(states[i]);
        EXPECT_EQ(history.redo().outcome, Outcome::nothing_to_do);
        EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
    }
}

TEST_F(Undo, a_deleted_set_comes_back_whole_and_is_named) {
    open_listed("worn_library"); // with a column and long texts of another program
    std::vector<std::int32_t> ids;
    for (const auto& [text, id] : library::sets(db, 8)) ids.push_back(id);
    const QString name = db.Get_Set_Name(ids.front());
    const auto cvs = static_cast<int>(library::cvs(db, ids.front()).size());
    for (const std::int32_t id : ids) ASSERT_TRUE(db.DB_Del_CVSet(id));
    for (std::size_t i = ids.size(); i > 0; --i) {
        const Undo_Result result = history.undo();
        ASSERT_EQ(result.outcome, Outcome::done) << shown();
        EXPECT_EQ(result.set, ids[i - 1]);
        EXPECT_EQ(result.name.kind, Undo_Kind::sets_deleted);
        if (i > 1) continue;
        EXPECT_EQ(result.name.subject, name);
        EXPECT_EQ(result.name.cvs, cvs);
    }
    expect_content(before);
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
}

/// A table of another program whose rows follow ours.
void add_follower(jet::Database& file, const std::u16string& name, bool cascade) {
    jet::Column remark;
    remark.name = u"Bemerkung";
    remark.type = jet::Column_Type::memo;
    const jet::Table made = file.create_table(
        name, std::array{library::whole(u"ID", true), library::whole(u"SetID"), remark},
        std::array{library::key_on(u"ID")});
    jet::Relation relation{u"Sets" + name, u"Sets", {u"SetID"}, name, {u"SetID"}};
    relation.cascade_delete = cascade;
    relation.null_on_delete = !cascade;
    file.add_relation(relation);
    for (const std::int32_t number : {1, 3, 3, 5})
        made.insert({{1, number}, {2, std::u16string(3000, u'b')}});
}

TEST_F(Undo, rows_of_other_programs_that_go_with_a_set_come_back) {
    open_changed([](jet::Database& file) {
        add_follower(file, u"Bilder", true);
        add_follower(file, u"Loks", false);
    });
    ASSERT_TRUE(db.DB_Del_CVSet(3)) << shown();
    EXPECT_EQ(history.undo_name()->kind, Undo_Kind::sets_deleted);
    expect_back_and_forth();
    expect_undone(before);
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
}

TEST_F(Undo, rows_of_other_programs_that_follow_a_name_are_part_of_the_step) {
    open_changed([](jet::Database& file) {
        file.add_index(u"Sets", library::unique_on({u"Name"}));
        const jet::Table made = file.create_table(
            u"Loks", std::array{library::whole(u"ID"), library::text(u"Name", 100)},
            std::array<jet::Index, 0>{});
        jet::Relation relation{u"Heisst", u"Sets", {u"Name"}, u"Loks", {u"Name"}};
        relation.cascade_update = true;
        file.add_relation(relation);
        auto set = file.table(u"Sets")->find({{*file.table(u"Sets")->column(u"SetID"), 3}});
        ASSERT_TRUE(set.next());
        made.insert({{0, 1}, {1, set.value(*file.table(u"Sets")->column(u"Name"))}});
    });
    ASSERT_TRUE(Person(db).rename(3, u"Neu"_s)) << shown();
    expect_back_and_forth();
    in_file([](jet::Database& file) { // somebody else has touched what has followed
        auto row = file.table(u"Loks")->rows();
        ASSERT_TRUE(row.next());
        file.table(u"Loks")->update(row.id(), {{1, jet::Null{}}});
    });
    EXPECT_EQ(history.undo().outcome, Outcome::changed_elsewhere);
}

/// Cells as other programs store them: the bytes that stand for a name of ours in the file.
const std::string foreign_names[] = {std::string("A\0\x00\xD8" // half a surrogate
                                                 "B\0C\0",
                                                 8),
                                     std::string("\xFF\xFE\0\xFF\xFE\0AB", 8), // U+FEFF
                                     std::string("\xFF\xFE"                    // runs
                                                 "A\0\x1C\x04\0B",
                                                 8),
                                     std::string("A\0\0\0B\0\0\0", 8)};

TEST_F(Undo, rows_come_back_whatever_other_programs_have_stored) {
    library::put(disk, "library_2000", "a.mdb");
    std::vector<std::int32_t> ids;
    in_file([&](jet::Database& file) {
        jet::Column wide = library::text(u"", 255);
        wide.compressed = true;
        for (const char16_t letter : std::u16string_view(u"abcdefgh")) {
            wide.name = std::u16string(u"Spalte ") + letter;
            file.add_column(u"Sets", wide);
        }
        const jet::Table sets = *file.table(u"Sets");
        for (int i = 0; i < 4; ++i)
            ids.push_back(sets.insert({{1, std::u16string(4, static_cast<char16_t>(0x4E01 + i))},
                                       {2, 60 + i},
                                       {3, 8}})
                              .auto_number);
        const auto row = sets.insert({{1, u"voll"}, {2, 70}, {3, 8}});
        ids.push_back(row.auto_number);
        for (std::size_t i = 4; i < 12; ++i) // at once they would be more than we let in
            sets.update(row.id, {{i, std::u16string(255, u'x')}});
    });
    auto bytes = disk.bytes("a.mdb");
    for (std::size_t i = 0; i < std::size(foreign_names); ++i) {
        std::array<std::byte, 8> ours{};
        for (std::size_t b = 0; b < 8; b += 2)
            ours[b] = static_cast<std::byte>(1 + i), ours[b + 1] = std::byte{0x4E};
        const auto at = std::search(bytes.begin(), bytes.end(), ours.begin(), ours.end());
        ASSERT_NE(at, bytes.end());
        std::ranges::copy(std::as_bytes(std::span(foreign_names[i])), at);
    }
    disk.set_bytes("a.mdb", bytes);
    db.Connection_Start(u"a.mdb"_s);
    list();
    Person person(db);
    for (const std::int32_t id : ids) {
        SCOPED_TRACE(id);
        ASSERT_TRUE(person.rename(id, u"Anders"_s)) << shown();
        ASSERT_TRUE(db.DB_Del_CVSet(id)) << shown();
        ASSERT_EQ(history.undo().outcome, Outcome::done) << shown();
        expect_undone(before);
    }
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
}

TEST_F(Undo, what_fails_is_said_and_can_be_tried_again) {
    const auto widen = [](jet::Database& file, int from, int to) {
        for (int i = from; i < to; ++i)
            file.add_column(
                u"Sets",
                library::text((u"Spalte " + QString::number(i).toStdU16String()).c_str(), 255));
    };
    std::int32_t id = 0;
    open_changed([&](jet::Database& file) {
        widen(file, 0, 8);
        std::vector<jet::Cell> cells{{1, u"voll"}, {2, 70}, {3, 8}};
        for (std::size_t i = 4; i < 12; ++i) cells.push_back({i, std::u16string(248, u'語')});
        id = file.table(u"Sets")->insert(cells).auto_number;
    });
    ASSERT_TRUE(db.DB_Del_CVSet(id)) << shown();
    in_file([&](jet::Database& file) { widen(file, 8, 60); }); // leaves no room for it
    EXPECT_EQ(history.undo().outcome, Outcome::failed);
    EXPECT_EQ(shown(), "Sets: the row is too long");
    EXPECT_TRUE(history.undo_name());
}

TEST_F(Undo, a_long_run_goes_back_step_by_step) {
    open_listed("library_2003");
    Person person(db);
    std::mt19937 random(7);
    const auto any = [&](std::size_t count) { return random() % count; };
    std::vector<Content> states{content(disk)};
    const int length = support::long_tests() ? 1000 : 40;
    while (static_cast<int>(states.size()) <= length) {
        const auto sets = library::sets(db, any(4) == 0 ? 265 : 8);
        if (sets.empty()) {
            person.add_set(u"x"_s);
        } else {
            const std::int32_t set = sets[any(sets.size())].second;
            const int value = static_cast<int>(any(256));
            const std::function<void()> deeds[] = {
                [&] { person.add_set(u"Satz %1"_s.arg(value)); },
                [&] { person.rename(set, u"Name %1"_s.arg(value)); },
                [&] { db.DB_Del_CVSet(set); },
                [&] { person.write(set, 1 + value, value); },
                [&] { person.write_many(set, 1 + value % 20, value); },
                [&] { person.delete_cvs(set, 1 + value % 7); },
                [&] { person.load_scripts(set) < 16 && person.add_script(set, value); },
                [&] { person.save_script(set, 1, value); },
                [&] { person.delete_script(set, 1); }};
            deeds[any(std::size(deeds))]();
        }
        Content now = content(disk);
        if (!(now == states.back())) states.push_back(std::move(now));
        if (any(5) == 0 && states.size() > 1) { // a little back and forth in between
            expect_undone(states[states.size() - 2]);
            if (any(2) == 0)
                states.pop_back();
            else
                ASSERT_EQ(history.redo().outcome, Outcome::done) << shown();
        }
    }
    for (std::size_t i = states.size() - 1; i > 0; --i) expect_undone(states[i - 1]);
    EXPECT_FALSE(history.undo_name());
    for (std::size_t i = 1; i < states.size(); ++i)
        ASSERT_EQ(history.redo().outcome, Outcome::done) << shown();
    expect_content(states.back());
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
}

TEST_F(Undo, keys_are_not_given_twice) {
    open_listed("library_2000");
    Person person(db);
    const std::int32_t one = person.add_set(u"eins"_s);
    const std::int32_t cv = person.write(one, 900, 1).CVID;
    ASSERT_TRUE(db.DB_Del_CVSet(one));
    const std::int32_t two = person.add_set(u"zwei"_s);
    EXPECT_GT(two, one);
    EXPECT_EQ(history.undo().outcome, Outcome::done);
    EXPECT_EQ(history.undo().outcome, Outcome::done);
    EXPECT_EQ(db.DB_Get_CV(cv).CVWert, 1);
    EXPECT_EQ(history.redo_name()->kind, Undo_Kind::sets_deleted);
    EXPECT_GT(person.add_set(u"drei"_s), two) << "a key that was seen is not used again";
    EXPECT_GT(person.write(one, 901, 1).CVID, cv);
    EXPECT_FALSE(history.redo_name()) << "a new step ends what could be done again";
}

TEST_F(Undo, the_current_set_goes_with_its_row) {
    open_listed("library_2000");
    Person person(db);
    const std::int32_t set = person.add_set(u"eins"_s);
    person.write(set, 900, 1);
    EXPECT_EQ(history.undo().set, set);
    EXPECT_EQ(db.AktCVSetID(), set);
    EXPECT_EQ(history.undo().set, 0);
    EXPECT_EQ(db.AktCVSetID(), 0);
    EXPECT_EQ(history.redo().set, set);
    const int position = person.add_script(set, 3);
    ASSERT_TRUE(person.save_script(set, position, 2));
    EXPECT_EQ(history.undo().set, set) << "lines lead to the set of their script";
}

TEST_F(Undo, what_listing_completes_stays) {
    open("partly_numbered");
    Person person(db);
    std::int32_t unnumbered = 0;
    for (const QJsonObject& set : library::expected_rows("partly_numbered", u"Sets"_s))
        if (set[u"Nummer"_s].isNull() && !set[u"ResCV"_s].isNull())
            unnumbered = set[u"SetID"_s].toInt();
    ASSERT_NE(unnumbered, 0);
    const QString name = db.Get_Set_Name(unnumbered);
    ASSERT_TRUE(person.rename(unnumbered, u"Anders"_s));
    const std::int16_t res_cv = db.reset_cv(unnumbered);
    library::sets(db, res_cv);
    const std::int16_t number = db.Get_Set_Nummer2(unnumbered);
    ASSERT_NE(number, 0);
    ASSERT_EQ(history.undo().outcome, Outcome::done) << shown();
    EXPECT_EQ(db.Get_Set_Name(unnumbered), name);
    EXPECT_EQ(db.Get_Set_Nummer2(unnumbered), number);
    EXPECT_EQ(history.undo().outcome, Outcome::nothing_to_do);
    ASSERT_EQ(history.redo().outcome, Outcome::done) << shown();
    EXPECT_EQ(db.Get_Set_Name(unnumbered), u"Anders"_s);
}

TEST_F(Undo, the_history_ends_with_its_library) {
    open_listed("library_2000");
    Person person(db);
    for (const bool reopened : {true, false}) {
        person.write(1, 900, reopened ? 1 : 2);
        EXPECT_TRUE(history.undo_name());
        reopened ? reopen() : db.Connection_Close();
        EXPECT_FALSE(history.undo_name());
        EXPECT_EQ(history.undo().outcome, Outcome::nothing_to_do);
    }
}

TEST_F(Undo, the_upgrade_of_an_old_library_is_no_step) {
    open_listed("old_library");
    EXPECT_FALSE(history.undo_name());
    ASSERT_TRUE(Person(db).add_script(1, 3) > 0);
    expect_undone(before);
}

/// Whatever is left by a loss of power in the middle: all of a step or nothing of it.
TEST_F(Undo, a_crash_leaves_a_step_done_or_taken_back) {
    open_listed("old_library");
    db.Connection_Close();
    std::optional<Content> after;
    const auto work = [&](files::Disk& on) {
        clsDBConn own(on);
        Undo_History steps(own);
        own.Connection_Start(u"a.mdb"_s);
        Person person(own);
        if (!own.DB_Del_CVSet(2)) throw std::runtime_error("not deleted");
        if (!after) after = content(on);
        if (steps.undo().outcome != Outcome::done) throw std::runtime_error("not taken back");
    };
    files::Memory_Disk tried = disk.copy();
    work(tried);
    ASSERT_EQ(difference(content(tried), before), "");
    const int checked =
        support::sweep_crashes(disk, work, [&](files::Disk& found, support::Outcome outcome) {
            { // heals what was cut off
                clsDBConn opened(found);
                opened.Connection_Start(u"a.mdb"_s);
                ASSERT_TRUE(opened.Connection_Active());
            }
            const Content left = content(found);
            ASSERT_TRUE(left == before || (outcome != support::Outcome::finished && left == after));
        });
    EXPECT_GT(checked, 50);
}

} // namespace
