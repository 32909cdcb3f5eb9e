#include "scripts/script_file.h"

#include "scripts/cv_collisions.h"
#include "support/crash_sweep.h"

#include <gmock/gmock.h>
#include <random>

using namespace scripts;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using Lines = std::initializer_list<std::pair<int, std::vector<int>>>; // command, parameters

std::shared_ptr<cls_script> script_of(Lines lines) {
    auto script = std::make_shared<cls_script>();
    script->ScriptName = QStringLiteral("Pfiff");
    for (const auto& [command, parameters] : lines) {
        cls_Scriptstate& line = script->GetState(script->StateCount++);
        line.SetCommand(command);
        for (int i = 0; i < static_cast<int>(parameters.size()); ++i)
            line.SetPar(i, parameters[static_cast<std::size_t>(i)]);
    }
    return script;
}

/// What a reader of the records finds, line by line: "command:parameters".
std::string told(const cls_script& script) {
    std::string text = script.ScriptName.toStdString();
    for (int i = 0; i < script.StateCount; ++i) {
        const cls_Scriptstate& line = script.GetState(i);
        text += '|' + std::to_string(line.GetCommand());
        for (int par = 0; par < 5; ++par) text += ' ' + std::to_string(line.GetPar(par));
        text += line.Info.toStdString();
    }
    return text;
}

TEST(Script_File, is_written_as_others_read_it) {
    const auto script = script_of({{4, {28, 1, 5}}});
    script->ScriptName = QStringLiteral("Test");
    int replaced = 0;
    EXPECT_EQ(script_file_of(*script, replaced),
              "\"Scripts\"\r\n\"Script\",\"1\"\r\n\"Name\",\"Test\"\r\n\"State\",0\r\n"
              "\"Command\",4\r\n\"Parameter\",1,28\r\n\"Parameter\",2,1\r\n\"Parameter\",3,5\r\n"
              "\"Info\",\"\"\r\n\"/Scripts\"\r\n");
}

TEST(Script_File, comes_back_with_every_text) {
    const auto script = script_of({{30, {0, 3, 255, 7, 1}}, {9, {}}});
    script->ScriptName = QStringLiteral("Größe \"7\", grün\r\n€");
    script->GetState(1).Info = QStringLiteral("\"/Scripts\"\r\n") + QString(300, u'x');
    int replaced = 0;
    const Script_File read = read_script_file(script_file_of(*script, replaced));
    ASSERT_EQ(read.scripts.size(), 1U);
    EXPECT_EQ(told(*read.scripts[0]), told(*script));
    EXPECT_EQ(replaced, 0);
    script->ScriptName = QStringLiteral("✓");
    std::ignore = script_file_of(*script, replaced);
    EXPECT_EQ(replaced, 1);
    EXPECT_EQ(told(*read_script_file(whole_script_file_of(*script)).scripts.at(0)), told(*script));
}

struct Reading {
    const char* what;
    const char* file;
    std::vector<std::string> scripts;
    int places_skipped = 0;
    int numbers_lost = 0;
    std::vector<std::string> broken_off = {};
};

TEST(Script_File, is_read_as_far_as_it_goes) {
    const std::vector<Reading> readings = {
        {"nothing", "", {}},
        {"comment, sections of others, LF",
         ";x\n\"Sounds\",1\n\"Scripts\"\n/Sounds\nScripts\nScript,1\nName,A\nState,0\nCommand,2\n"
         "/Scripts\n\"Script\",1\n",
         {"A|2 0 0 0 0 0"}},
        {"what no script or line has begun yet, and what nobody knows",
         "Scripts\rName,B\rState,1\rScript,1\rCommand,3\rParameter,1,9\rInfo,x\rColour,7,8\r"
         "Name,A\rState,0,9\rCommand,9\r/Scripts",
         {"A|9 0 0 0 0 0"}},
        {"fewer lines after more; a place that is missing keeps what it had",
         "Scripts\nScript\nName,A\nState,2\nCommand,2\nState,0\nInfo,i\n/Scripts",
         {"A|0 0 0 0 0 0i"}},
        {"places that there are not take theirs with them",
         "Scripts\nScript\nName,A\nState,0\nCommand,9\nParameter,8,1\nParameter,0,1\nState,256\n"
         "Command,3\nParameter,1,5\nState,-1\n/Scripts",
         {"A|9 0 0 0 0 0"},
         4},
        {"fields that are no number, or not there, are not looked for in the next record",
         "Scripts\nScript\nName,A\nState,0\nCommand,x\nParameter,1,99999999999\nParameter,2\n"
         "Info\n/Scripts",
         {"A|0 0 0 0 0 0"},
         0,
         3},
        {"the end within a script",
         "Scripts\nScript\nName,A\nState,0\nScript\nName,B\nState,0\nInfo,\"/Scripts\n",
         {"A|0 0 0 0 0 0"},
         0,
         0,
         {"B"}},
    };
    for (const Reading& expected : readings) {
        SCOPED_TRACE(expected.what);
        const Script_File read = read_script_file(expected.file);
        std::vector<std::string> scripts, broken_off;
        for (const auto& script : read.scripts) scripts.push_back(told(*script));
        for (const QString& name : read.broken_off) broken_off.push_back(name.toStdString());
        EXPECT_EQ(scripts, expected.scripts);
        EXPECT_EQ(read.places_skipped, expected.places_skipped);
        EXPECT_EQ(read.numbers_lost, expected.numbers_lost);
        EXPECT_EQ(broken_off, expected.broken_off);
        EXPECT_EQ(read.has_section, *expected.file != 0);
    }
}

// Whatever is read can be written, and is then read as the same.
TEST(Script_File, spoiled_in_any_way_is_read_to_its_end) {
    std::mt19937 random(20261125);
    const auto below = [&](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    int replaced = 0;
    const QByteArray sound =
        script_file_of(*script_of({{1, {7, 3, 17, 1}}, {28, {5, 31, 3, 1}}, {6, {1}}}), replaced);
    const std::string_view pieces[] = {
        "\"",         ",",   "\r\n", "\n",           "/",    ";",          "Scripts",
        "\"State\",", "255", "-1",   "\"Script\"\n", "\xFF", "99999999999"};
    for (int run = 0; run < (support::long_tests() ? 2000000 : 3000); ++run) {
        std::string file = sound.toStdString();
        for (std::size_t edits = 1 + below(5); edits > 0; --edits) {
            const std::size_t at = below(file.size());
            if (below(2) == 0) file.erase(at, 1 + below(20));
            if (below(2) == 0)
                file.insert(std::min(at, file.size()), pieces[below(std::size(pieces))]);
            if (file.empty()) file = "x";
        }
        const Script_File read = read_script_file(QByteArray::fromStdString(file));
        ASSERT_LE(read.scripts.size(), 16U) << file;
        for (const auto& script : read.scripts) {
            ASSERT_TRUE(script->StateCount >= 0 && script->StateCount <= 256) << file;
            const QByteArray written = script_file_of(*script, replaced);
            const Script_File again = read_script_file(written);
            ASSERT_EQ(again.scripts.size(), 1U) << file;
            ASSERT_EQ(script_file_of(*again.scripts[0], replaced), written) << file;
        }
    }
}

// Collisions

TEST(Cv_Collisions, move_only_what_is_imported_and_only_to_free_cvs) {
    const std::vector imported{script_of({{1, {7, 0, 0, 1}}, {15, {0, 1, 3}}, {4, {32}}})};
    const std::vector in_set{script_of({{5, {0, 4, 0, 0}}, {12, {0, 2}}, {29, {2, 9, 1}}})};
    const Cv_Collisions found = find_collisions(imported, in_set);
    EXPECT_THAT(found.cvs, ElementsAre(980, 981)); // 982 is the volume of command 29
    EXPECT_THAT(found.moves, ElementsAre(Pair(980, 983), Pair(981, 984)));
    move_cvs(imported, found);
    EXPECT_EQ(told(*imported[0]), "Pfiff|1 7 3 0 1 0|15 3 4 3 0 0|4 35 0 0 0 0");
    EXPECT_EQ(told(*in_set[0]), "Pfiff|5 0 4 0 0 0|12 0 2 0 0 0|29 2 9 1 0 0");
}

TEST(Cv_Collisions, without_enough_free_cvs_nothing_moves) {
    auto all = script_of({});
    for (int cv = 0; cv < 40; ++cv) {
        cls_Scriptstate& line = all->GetState(all->StateCount++);
        line.SetCommand(12);
        line.SetPar(1, cv + 1);
    }
    const std::vector in_set{all};
    const std::vector imported{script_of({{12, {0, 40}}, {29, {0, 0, 1}}})};
    const Cv_Collisions found = find_collisions(imported, in_set);
    EXPECT_TRUE(found.too_few_free);
    EXPECT_THAT(found.cvs, ElementsAre(1019));
    EXPECT_THAT(found.fixed, ElementsAre(980));
    move_cvs(imported, found);
    EXPECT_EQ(imported[0]->GetState(0).GetPar(1), 40);
    EXPECT_THAT(find_collisions(imported, {}).cvs, IsEmpty());
}

} // namespace
