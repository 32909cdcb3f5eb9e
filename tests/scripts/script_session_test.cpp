// Editing a script line by line, without a window.

#include "scripts/line_columns.h"
#include "scripts/script_session.h"

#include <gmock/gmock.h>

#include <random>
#include <vector>

namespace {

using namespace scripts;
using scripts_catalogue::List;
using testing::ElementsAre;

cls_script stored_form(const Script_Session& session) {
    cls_script stored;
    session.write_back(stored);
    return stored;
}

bool same_lines(const cls_script& one, const cls_script& other) {
    if (one.StateCount != other.StateCount) return false;
    for (int i = 0; i < one.StateCount; ++i)
        if (one.GetState(i) != other.GetState(i)) return false;
    return true;
}

/// Lines that no editor makes: commands that there are not, values outside every list. The comment
/// of a line tells which it was.
cls_script made_up(std::mt19937& random, int lines) {
    cls_script script;
    script.ScriptName = QStringLiteral("Alt");
    const auto any = [&](int lowest, int highest) {
        return std::uniform_int_distribution(lowest, highest)(random);
    };
    for (int i = 0; i < lines; ++i) {
        cls_Scriptstate& state = script.GetState(i);
        state.SetCommand(any(-1, 40));
        for (int par = 0; par < cls_Scriptstate::stored_par_count; ++par)
            state.SetPar(par, any(0, 9) == 0 ? any(-40000, 40000) : any(0, 255));
        state.Info = QString::number(i);
    }
    script.StateCount = lines;
    return script;
}

/// Follows lines as break points do.
struct Follower final : Session_Listener {
    std::vector<int> lines; ///< which they were; -1: new
    int told = 0;

    explicit Follower(int count) {
        for (int i = 0; i < 2 * cls_script::max_states; ++i) lines.push_back(i < count ? i : -1);
    }
    void line_inserted(int line) override { lines.insert(lines.begin() + line, -1); }
    void line_deleted(int line) override { lines.erase(lines.begin() + line); }
    void lines_changed() override { ++told; }
};

/// One change, whatever it is.
void change(Script_Session& session, std::mt19937& random) {
    const auto below = [&](int count) {
        return count <= 0 ? 0 : std::uniform_int_distribution(0, count - 1)(random);
    };
    const int line = below(session.lines() + 1);
    switch (below(7)) {
    case 0:
        return session.insert(line);
    case 1:
        return session.copy_to_inserted(line);
    case 2:
        return session.erase(line);
    case 3:
        return session.choose_command(line, below(34), below(2) == 0);
    case 4:
        return session.put_info(line, QStringLiteral("neu"));
    default:
        return session.choose(line, below(5), below(260));
    }
}

TEST(Script_Session, keeps_the_bytes_of_lines_that_nobody_touches) {
    std::mt19937 random(11);
    for (const int lines : {0, 1, 40, 256}) {
        cls_script stored = made_up(random, lines);
        Script_Session session(stored);
        EXPECT_FALSE(session.changed());
        EXPECT_TRUE(same_lines(stored_form(session), stored)) << lines;
        if (lines < 40) continue;
        session.put_info(5, QStringLiteral("anders"));
        session.erase(0);
        session.insert(20);
        session.copy_to_inserted(30);
        const cls_script after = stored_form(session);
        for (int i = 0; i < session.lines(); ++i) {
            const bool copied = i == 20;
            cls_Scriptstate was = stored.GetState(copied ? 30 : i < 20 ? i + 1 : i);
            if (i == 4) was.Info = QStringLiteral("anders");
            if (const auto target = scripts_catalogue::JumpParameter(was.GetCommand()))
                was.SetPar(*target, after.GetState(i).GetPar(*target)); // followed its line
            EXPECT_EQ(after.GetState(i), was) << i;
        }
        session.write_back(stored);
        EXPECT_EQ(stored.ScriptName, QStringLiteral("Alt")) << "the name is not the session's";
    }
}

TEST(Script_Session, goes_back_and_forth_whatever_is_done) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const cls_script stored = made_up(random, seed % 3 == 0 ? 254 : 12);
        Script_Session session(stored);
        for (int i = 0; i < 30; ++i) change(session, random);
        session.kept();
        const cls_script end = stored_form(session);
        while (session.can_undo()) session.undo();
        EXPECT_TRUE(same_lines(stored_form(session), stored));
        EXPECT_FALSE(session.inserted());
        Follower follower(session.lines());
        session.listen(&follower);
        while (session.can_redo()) session.redo();
        EXPECT_TRUE(same_lines(stored_form(session), end));
        EXPECT_FALSE(session.changed()) << "it is where it was kept";
        for (int i = 0; i < end.StateCount; ++i) {
            const int was = follower.lines[static_cast<std::size_t>(i)];
            const QString& info = end.GetState(i).Info;
            const bool told = was >= 0 && !info.isEmpty();
            EXPECT_TRUE(!told || info == QString::number(was) || info == QStringLiteral("neu"));
        }
    }
}

TEST(Script_Session, forgets_nothing_for_what_was_typed_in_vain) {
    cls_script stored;
    stored.StateCount = 2;
    Script_Session session(stored);
    session.insert(1);
    session.undo();
    session.choose_command(0, 6, true);
    session.choose_command(0, 12, true);
    EXPECT_FALSE(session.can_redo());
    session.take_back_typing();
    EXPECT_FALSE(session.can_undo());
    ASSERT_TRUE(session.can_redo());
    session.redo();
    EXPECT_EQ(session.lines(), 3);
}

TEST(Script_Session, inserts_and_copies_as_its_lines_are_clicked) {
    cls_script stored;
    for (int i = 0; i < 5; ++i) stored.GetState(i).Info = QString::number(i);
    stored.GetState(4).SetCommand(6); // to 3
    stored.GetState(4).SetPar(0, 3);
    stored.StateCount = 5;
    Script_Session session(stored);
    const auto lines = [&] {
        std::vector<std::string> infos;
        for (int i = 0; i < session.lines(); ++i)
            infos.push_back(session.working().GetState(i).Info.toStdString());
        return infos;
    };
    session.insert(2);
    session.erase(0);
    EXPECT_EQ(session.inserted(), 1) << "the mark moves along";
    session.copy_to_inserted(4);
    EXPECT_THAT(lines(), ElementsAre("1", "4", "2", "3", "4"));
    EXPECT_EQ(session.working().GetState(4).GetPar(0), 3) << "follows its line";
    EXPECT_FALSE(session.inserted());
    session.choose_command(5, 0);
    EXPECT_EQ(session.lines(), 5) << "the empty command makes no line";
    session.choose_command(5, 3);
    EXPECT_EQ(session.lines(), 6);
    // what is typed is one step, wherever it led on the way, and none where it leads back
    for (const int code : {1, 2, 3, 12, 31, 6}) session.choose_command(4, code, true);
    EXPECT_EQ(session.working().GetState(4).GetCommand(), 6);
    EXPECT_EQ(session.working().GetState(4).GetPar(0), 3);
    session.choose_command(6, 1, true);
    session.choose_command(6, 7, true);
    session.choose(6, 1, 200);
    session.undo();
    EXPECT_EQ(session.working().GetState(6).GetPar(1), 0);
    session.undo();
    EXPECT_EQ(session.lines(), 6);
}

TEST(Line_Columns, take_what_is_typed) {
    struct Row {
        List list;
        const char* typed;
        std::optional<int> entry;
    };
    for (const Row& row : {Row{List::number, "255", 255},
                           {List::number, "256", {}},
                           {List::number, "-1", {}},
                           Row{List::number, "", {}},
                           {List::pwm, "32", {}},
                           {List::key, "f12", 12},
                           {List::key, "F1", 1},
                           {List::key, "CV#1019", 69},
                           {List::key, "CV#1020", {}},
                           {List::sample, "Sample 255", 255},
                           {List::sample, "Sample 256", {}},
                           {List::comparison, "ist größer", 2},
                           {List::event, "3", 2},
                           {List::output, "2", 2},
                           {List::output, "FA2", 3},
                           {List::key, "12", 12},
                           {List::script_cv, "985", 5},
                           {List::comparison, "xyz", {}},
                           {List::cv_number, "256", 255},
                           {List::event, " Event 16 ", 15}})
        EXPECT_EQ(entry_typed(row.list, QString::fromUtf8(row.typed), 0), row.entry) << row.typed;
    EXPECT_EQ(command_typed(QStringLiteral("warten"), 0), 3);
    EXPECT_EQ(command_typed(QStringLiteral("QUERY EV"), 1), 22);
    EXPECT_EQ(command_typed(QStringLiteral("gibt es nicht"), 0), std::nullopt);
    cls_Scriptstate line;
    line.SetCommand(6);
    line.SetPar(0, 200);
    choose_command(line, 15);
    EXPECT_EQ(line.GetPar(0), 0) << "there is no such output";
}

} // namespace
