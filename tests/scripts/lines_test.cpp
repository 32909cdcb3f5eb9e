// The catalogue and the conversions against lines that were worked out by hand.

#include "app/mod_main.h"
#include "scripts/catalogue/commands.h"
#include "scripts/cls_Scriptstate.h"
#include "scripts/line_columns.h"
#include "scripts/line_forms.h"
#include "scripts/script_texts.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iostream>

using namespace scripts;
namespace catalogue = scripts_catalogue;
using line_tables::Form;
using line_tables::Parameters;

namespace {

cls_Scriptstate line(int command, const Parameters& parameters) {
    cls_Scriptstate made;
    made.SetCommand(command);
    made.Info = QStringLiteral("Info");
    for (int i = 0; i < 5; ++i) made.SetPar(i, parameters[static_cast<std::size_t>(i)]);
    return made;
}

cls_Scriptstate converted(const cls_Scriptstate& from, Form from_form, Form to_form) {
    struct Conversion {
        Form from, to;
        void (cls_Scriptstate::*import)(const cls_Scriptstate&);
    };
    static constexpr Conversion conversions[] = {
        {Form::decoder, Form::editor, &cls_Scriptstate::Import_vqx_2_Listindex},
        {Form::decoder, Form::file, &cls_Scriptstate::Import_vqx_2_vqr},
        {Form::editor, Form::decoder, &cls_Scriptstate::Import_Listindex_2_vqx},
        {Form::editor, Form::file, &cls_Scriptstate::Import_Listindex_2_vqr},
        {Form::file, Form::decoder, &cls_Scriptstate::Import_vqr_2_vqx},
        {Form::file, Form::editor, &cls_Scriptstate::Import_vqr_2_Listindex},
        {Form::file, Form::file, &cls_Scriptstate::Import_vqr_2_vqr},
    };
    cls_Scriptstate made;
    for (const Conversion& each : conversions)
        if (each.from == from_form && each.to == to_form) (made.*each.import)(from);
    return made;
}

std::string shown(const cls_Scriptstate& line) {
    std::string text = std::to_string(line.GetCommand()) + ':';
    for (int i = 0; i < 7; ++i) text += ' ' + std::to_string(line.GetPar(i));
    return text + ' ' + line.Info.toStdString();
}

TEST(Script_Lines, say_the_same_in_every_form) {
    for (const auto& row : line_tables::line_forms) {
        SCOPED_TRACE(row.why);
        const std::pair<Form, cls_Scriptstate> forms[] = {
            {Form::decoder, line(row.command, row.decoder)},
            {Form::editor, line(row.command, row.editor)},
            {Form::file, line(row.command, row.file)}};
        for (const auto& [from, given] : forms)
            for (const auto& [to, expected] : forms) {
                if (from == to) continue;
                EXPECT_EQ(shown(converted(given, from, to)), shown(expected))
                    << static_cast<int>(from) << " to " << static_cast<int>(to);
            }
    }
    for (const auto& row : line_tables::one_way) {
        SCOPED_TRACE(row.why);
        EXPECT_EQ(shown(converted(line(row.command, row.input), row.from, row.to)),
                  shown(line(row.command, row.output)))
            << "from " << shown(line(row.command, row.input));
    }
    for (const auto& [stored, step] : line_tables::amplitudes_read)
        for (const Form form : {Form::editor, Form::file})
            EXPECT_EQ(converted(line(1, {5, stored, 8, 0}), Form::decoder, form).GetPar(1), step)
                << stored;
}

TEST(Script_Lines, refer_to_cvs) {
    for (const auto& row : line_tables::cv_references) {
        SCOPED_TRACE(row.command);
        cls_Scriptstate given = line(row.command, row.parameters);
        EXPECT_EQ(given.CVRefCount(), row.count);
        EXPECT_EQ(given.GetCVRef(row.which), row.cv) << shown(given);
        if (row.cv == 0) continue;
        given.SetCVRef(row.which, 1001);
        EXPECT_EQ(shown(given), shown(line(row.command, row.after)));
    }
}

TEST(Script_Lines, have_columns_with_numberings_of_their_own) {
    for (const auto& [command, parameters, jump] : line_tables::command_facts) {
        EXPECT_EQ(catalogue::ParameterCount(command), parameters) << command;
        EXPECT_EQ(catalogue::JumpParameter(command).value_or(-1), jump) << command;
    }
    for (const int command : {-1, 34}) {
        EXPECT_EQ(catalogue::ParameterCount(command), 0);
        EXPECT_FALSE(catalogue::IsJumpCommand(command));
        EXPECT_EQ(catalogue::CommandName(command, 0), QString());
    }
    for (const auto& [code, index, name] : line_tables::key_codes) {
        cls_Scriptstate key = line(4, {code});
        EXPECT_EQ(key.key(), index);
        key.SetPar(0, 7);
        key.choose_key(index);
        EXPECT_EQ(key.GetPar(0), code);
    }
    for (const int code : line_tables::codes_read_as_f0) EXPECT_EQ(line(4, {code}).key(), 0);
    for (const int index : line_tables::key_indexes_that_change_nothing) {
        cls_Scriptstate key = line(4, {7});
        key.choose_key(index);
        EXPECT_EQ(key.GetPar(0), 7);
    }
    for (const auto& [decoder, editor, loop, end] : line_tables::loop_bytes) {
        cls_Scriptstate sound = line(1, {0, 0, editor, 0});
        EXPECT_EQ(sound.loop_mode(), loop);
        EXPECT_EQ(sound.end_mode(), end);
        sound.SetPar(2, 0);
        sound.choose_end_mode(end);
        sound.choose_loop_mode(loop);
        EXPECT_EQ(sound.GetPar(2), editor);
    }
}

TEST(Script_Lines, have_texts) {
    for (const auto& [output, name] : line_tables::output_names)
        EXPECT_EQ(app::FA_Name(output).toStdString(), name);
    for (const auto& [index, german, english] : line_tables::listed_outputs) {
        EXPECT_EQ(catalogue::entry_text(catalogue::List::output, index, 0).toStdString(), german);
        EXPECT_EQ(catalogue::entry_text(catalogue::List::output, index, 2).toStdString(), english);
    }
    EXPECT_EQ(catalogue::entry_count(catalogue::List::output), 19);
    for (const auto& row : line_tables::timer_times) {
        EXPECT_EQ(TimerText(row.value, row.unit, 0).toStdString(), row.german);
        EXPECT_EQ(TimerText(row.value, row.unit, 1).toStdString(), row.english);
    }
    EXPECT_EQ(catalogue::CommandName(4, 2), QStringLiteral("Query function"));
    EXPECT_EQ(catalogue::KeyName(30), QStringLiteral("-"));
}

// What a column is chosen from follows the other columns of its line.
TEST(Script_Lines, have_lists_that_follow_the_line) {
    using enum catalogue::List;
    const struct {
        int command;
        catalogue::Parameters editor;
        int column;
        catalogue::List list;
    } rows[] = {
        {5, {0, 0, 7, 9}, 2, number},
        {5, {16, 3, 7, 9}, 2, drive_mode},
        {5, {22, 0, 1, 9}, 2, operating_mode},
        {5, {22, 4, 1, 9}, 2, script_cv},
        {15, {0, 0, 2}, 0, output},
        {15, {0, 0, 2}, 1, script_cv},
        {25, {0, 0, 0}, 0, variable},
        {25, {0, 0, 1}, 0, event},
        {27, {0, 9}, 1, number},
        {27, {3, 1}, 1, setting_value},
    };
    for (const auto& row : rows)
        EXPECT_EQ(list_of(*catalogue::command(row.command), row.column, row.editor), row.list)
            << row.command << ", column " << row.column;
}

/// Calls `visit` with lines in editor form: each entry of each column, with first and last entries in
/// all others.
template <class Visit>
void for_entries(const cls_Scriptstate& begun, int column, int varied, Visit visit) {
    if (column == catalogue::most_columns) return visit(begun);
    const int count = offered_entries(column_of(begun, column, 0).list);
    if (count == 0) return for_entries(begun, column + 1, varied, visit);
    for (int entry = 0; entry < count; entry += column == varied ? 1 : std::max(1, count - 1)) {
        cls_Scriptstate chosen = begun;
        choose_entry(chosen, column, entry);
        for_entries(chosen, column + 1, varied, visit);
    }
}

TEST(Script_Lines, come_back_from_every_form_whatever_the_lists_offer) {
    int trips = 0, faults = 0;
    const auto there_and_back = [&](const cls_Scriptstate& editor) {
        const auto decoder = converted(editor, Form::editor, Form::decoder);
        bool same = true;
        for (const Form form : {Form::editor, Form::file})
            same &=
                converted(converted(decoder, Form::decoder, form), form, Form::decoder) == decoder;
        same &= converted(decoder, Form::decoder, Form::editor) == editor;
        for (int par = 0; par < cls_Scriptstate::par_count; ++par)
            same &= decoder.GetPar(par) >= 0 && decoder.GetPar(par) <= 255;
        ++trips;
        if (!same && ++faults < 10)
            ADD_FAILURE() << shown(editor) << " is " << shown(decoder) << " in the decoder";
    };
    for (const catalogue::Command& command : catalogue::commands())
        for (int varied = 0; varied < catalogue::most_columns; ++varied)
            for_entries(line(command.code, {}), 0, varied, there_and_back);
    EXPECT_EQ(faults, 0);
    std::cout << trips << " lines went into the decoder's form, the file's and back\n";
}

// Whatever stands in a library is converted without going out of bounds, and what was converted once
// stays the same.
TEST(Script_Lines, outside_all_lists_are_stable_after_the_first_conversion) {
    for (int command = -1; command <= 34; ++command)
        for (const int value : {-2147483647 - 1, -1, 0, 1, 7, 8, 64, 145, 255, 256, 2147483647})
            for (int place = 0; place < 5; ++place) {
                Parameters parameters{1, 2, 3, 4, 5};
                parameters[static_cast<std::size_t>(place)] = value;
                for (const Form form : {Form::editor, Form::file}) {
                    const auto there = converted(line(command, parameters), Form::decoder, form);
                    const auto back = converted(there, form, Form::decoder);
                    EXPECT_EQ(
                        shown(converted(converted(back, Form::decoder, form), form, Form::decoder)),
                        shown(back));
                    for (const int which : {0, 1, 2}) std::ignore = there.GetCVRef(which);
                }
            }
}

} // namespace
