#include "export/library.h"
#include "export/read_vqx.h"

#include <functional>

namespace vqx_export {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

Bytes file_of(const char* magic, const char* length, const std::string& body) {
    auto file = hex(std::string(magic) + " 00 02 00 80 00 00 00 " + length);
    file.resize(128);
    const auto bytes = hex(body);
    file.insert(file.end(), bytes.begin(), bytes.end());
    return file;
}

void fill_first_example(Library& library) {
    auto& set = library.add_set(5, 8, 3);
    set.Add_CV(1, 1, 3);
    set.Add_CV(1, 29, 6);
}

void fill_with_scripts(Library& library) {
    fill_first_example(library);
    library.add_set(6, 265, 300);
    auto& script = *library.add_scripts(5, 1, 1).Item(1);
    script.HeaderFlag = true;
    script.GetState(0).SetCommand(4);
    script.GetState(0).SetPar(0, 28);
    script.GetState(0).SetPar(1, 1);
}

const struct Approved {
    std::string what;
    void (*fill)(Library&);
    File_Type type;
    Bytes file;
} approved[] = {
    {"one set, oem", fill_first_example, File_Type::oem,
     file_of("51 4C", "00 00 00 2E",
             "82 CE 6D 61 69 6E CE 00 00 00 15 CE 00 65 78 74 CE 00 00 10 00 "
             "81 CE 00 64 63 63 CE 00 00 00 0B "
             "81 92 08 03 81 92 00 00 C4 04 00 03 1C 06")},
    {"one set, user", fill_first_example, File_Type::user,
     file_of("4C 5A", "00 00 00 19",
             "81 CE 00 64 63 63 CE 00 00 00 0B "
             "81 92 08 03 81 92 00 00 C4 04 00 03 1C 06")},
    {"nothing, user", [](Library&) {}, File_Type::user,
     file_of("4C 5A", "00 00 00 0C", "81 CE 00 64 63 63 CE 00 00 00 0B 80")},
    {"nothing, oem", [](Library&) {}, File_Type::oem,
     file_of("51 4C", "00 00 00 21",
             "82 CE 6D 61 69 6E CE 00 00 00 15 CE 00 65 78 74 CE 00 00 10 00 "
             "81 CE 00 64 63 63 CE 00 00 00 0B 80")},
    {"two sets, one with a script, oem", fill_with_scripts, File_Type::oem,
     file_of("51 4C", "00 00 00 61",
             "82 CE 6D 61 69 6E CE 00 00 00 15 CE 00 65 78 74 CE 00 00 10 00 "
             "82 CE 00 64 63 63 CE 00 00 00 15 CE 00 73 63 72 CE 00 00 00 2B "
             "82 92 08 03 81 92 00 00 C4 04 00 03 1C 06 92 CD 01 09 CD 01 2C 80 "
             "81 CC 03 92 CE 00 00 00 0E CE 00 00 00 13 "
             "01 00 03 01 00 00 00 00 00 00 01 04 1C 01 00 00 00 00 00")},
};

TEST(Project_File, is_the_approved_one_byte_for_byte) {
    for (const auto& a : approved) {
        SCOPED_TRACE(a.what);
        Library library;
        a.fill(library);
        const auto report = library.save(a.type);
        EXPECT_TRUE(report.written);
        EXPECT_EQ(library.file(), a.file);
        EXPECT_THAT(library.disk.paths(), ElementsAre(Library::path));
    }
}

TEST(Project_File, has_a_body_that_can_be_built_again_with_other_content) {
    Library first;
    fill_with_scripts(first);
    Library second;
    fill_first_example(second);
    const auto no_scripts = std::make_shared<scripts::cls_Script_Sets>();
    const auto scripts = std::make_shared<scripts::cls_Script_Sets>(first.script_sets);

    cls_QL_project project;
    const auto build = [&](const Library& library, const auto& script_sets, File_Type type) {
        project.file_type = type;
        project.Set_DCC_Set(library.sets);
        project.Set_Script_Set(script_sets);
        return project.Get_Array();
    };
    const auto body = build(first, scripts, File_Type::oem);
    EXPECT_EQ(project.Get_Array(), body);
    const auto body_of = [](const Bytes& file) { return Bytes(file.begin() + 128, file.end()); };
    EXPECT_EQ(build(second, no_scripts, File_Type::user), body_of(approved[1].file));
    EXPECT_EQ(build(second, no_scripts, File_Type::oem), body_of(approved[0].file));
    EXPECT_EQ(build(first, scripts, File_Type::oem), body);
}

/// The library as a reader should find it, without the code under test.
std::vector<Read_Vqx::Set> expected_sets(int sets, int pages, int cvs) {
    std::vector<Read_Vqx::Set> expected;
    for (int s = 0; s < sets; ++s) {
        auto& set = expected.emplace_back(Read_Vqx::Set{8, s, {}});
        for (int p = 0; p < pages; ++p) {
            auto& page = set.pages.emplace_back(Read_Vqx::Page{1 + p / 256, p % 256, {}});
            for (int c = 0; c < cvs; ++c) {
                page.pairs.push_back(static_cast<std::uint8_t>(c));
                page.pairs.push_back(static_cast<std::uint8_t>(s + p + c));
            }
        }
    }
    return expected;
}

void fill_many(Library& library, int sets, int pages, int cvs) {
    for (int s = 0; s < sets; ++s) {
        auto& set = library.add_set(1000 + s, 8, static_cast<std::int16_t>(s));
        for (int p = 0; p < pages; ++p)
            for (int c = 0; c < cvs; ++c)
                set.Add_CV(256 + p, static_cast<std::int16_t>(257 + c),
                           static_cast<std::uint8_t>(s + p + c));
    }
}

TEST(Project_File, holds_libraries_on_both_sides_of_every_count_limit) {
    const struct {
        int sets, pages, cvs;
    } cases[] = {
        {15, 1, 1},  {16, 1, 1},    {300, 2, 3}, // fixmap and map 16 of sets
        {1, 15, 1},  {1, 16, 1},    {2, 700, 1}, // of pages
        {1, 1, 63},  {1, 1, 127},   {1, 1, 128}, // bin 8 with 254 bytes, bin 16 with 256
        {1, 1, 256}, {3, 200, 256},              // a full page; a body of more than 64 KiB
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.sets << ' ' << c.pages << ' ' << c.cvs);
        for (const auto type : {File_Type::oem, File_Type::user}) {
            Library library;
            fill_many(library, c.sets, c.pages, c.cvs);
            library.add_scripts(1000, 1);
            ASSERT_TRUE(library.save(type).written);
            const Read_Vqx read(library.file());
            EXPECT_EQ(read.magic, type == File_Type::oem ? "QL" : "LZ");
            EXPECT_EQ(read.sets, expected_sets(c.sets, c.pages, c.cvs));
            ASSERT_TRUE(read.blocks);
            EXPECT_EQ(read.blocks->size(), 1U);
        }
    }
}

TEST(Project_File, tells_the_room_it_needs_in_steps_of_4096) {
    bool exact = false;
    bool one_more = false;
    for (const auto number :
         {std::int16_t{3}, std::int16_t{200}}) { // the longer key makes the odd sizes
        for (int rows = 1900; rows < 2100; ++rows) {
            Library library;
            auto& set = library.add_set(1, 8, number);
            for (int i = 0; i < rows; ++i)
                set.Add_CV(300 + i / 256, static_cast<std::int16_t>(257 + i % 256), 0);
            ASSERT_TRUE(library.save(File_Type::oem).written);
            const Read_Vqx read(library.file());
            ASSERT_EQ(read.ext, read.body_size <= 4096 ? 4096U : 8192U) << read.body_size;
            exact = exact || read.body_size == 4096;
            one_more = one_more || read.body_size == 4097;
        }
    }
    EXPECT_TRUE(exact && one_more);
}

TEST(Project_File, holds_full_script_blocks_of_many_sets_under_the_numbers_of_the_library) {
    Library library;
    for (int i = 0; i < 40; ++i) {
        library.add_set(100 + i, 8, static_cast<std::int16_t>(255 - i));
        auto& scripts = library.add_scripts(100 + i, 16, 256);
        for (int line = 0; line < 256; ++line) scripts.Item(16)->GetState(line).SetPar(3, i);
    }
    const auto report = library.save();
    ASSERT_TRUE(report.written);
    EXPECT_EQ(report.sets_with_scripts, 40);
    const Read_Vqx read(library.file());
    ASSERT_TRUE(read.blocks);
    ASSERT_EQ(read.blocks->size(), 40U);
    for (int i = 0; i < 40; ++i) {
        const auto& block = (*read.blocks)[static_cast<std::size_t>(i)];
        EXPECT_EQ(block.number, 255 - i);
        ASSERT_EQ(block.bytes.size(), 32929U);
        EXPECT_EQ(block.bytes[0], 16);
        EXPECT_EQ(block.bytes[32929 - 4], i);
    }
}

TEST(Project_File, leaves_out_scripts_of_sets_that_are_gone) {
    Library library;
    fill_first_example(library);
    library.add_scripts(77, 3);
    auto report = library.save();
    EXPECT_TRUE(report.written);
    EXPECT_EQ(report.left_out_scripts, 3);
    EXPECT_FALSE(Read_Vqx(library.file()).blocks) << "no script map for scripts of nobody";

    library.add_scripts(5, 1);
    report = library.save();
    EXPECT_EQ(report.left_out_scripts, 3);
    const Read_Vqx read(library.file());
    ASSERT_TRUE(read.blocks);
    ASSERT_EQ(read.blocks->size(), 1U);
    EXPECT_EQ((*read.blocks)[0].number, 3);
}

TEST(Project_File, counts_cvs_without_a_place_those_lost_at_loading_too) {
    Library library;
    auto& set = library.add_set(1, 8, 10);
    set.Add_CV(1, 44, 1);
    set.Add_CV(0, 300, 2);
    set.Add_CV(1, 1025, 3);
    library.sets.CVs_Left_Out = 5;
    const auto report = library.save();
    EXPECT_TRUE(report.written);
    EXPECT_EQ(report.left_out_cvs.out_of_range, 6);
    EXPECT_EQ(report.left_out_cvs.covered, 1);
    EXPECT_EQ(Read_Vqx(library.file()).sets,
              (std::vector<Read_Vqx::Set>{{8, 10, {{0, 0, {43, 1}}}}}));
}

TEST(Project_File, writes_sets_with_equal_keys_and_names_them) {
    Library library;
    library.add_set(1, 8, 10);
    library.add_set(2, 265, 10);
    library.add_set(3, 8, 10);
    library.add_set(4, 8, 11);
    for (const int id : {1, 2, 4}) library.add_scripts(id, 1);
    const auto report = library.save();
    EXPECT_TRUE(report.written);
    const Read_Vqx read(library.file());
    EXPECT_EQ(read.sets.size(), 4U);
    EXPECT_EQ(read.blocks->size(), 3U);
    ASSERT_EQ(report.equal_keys.size(), 2U);
    const auto& cvs = report.equal_keys[0];
    EXPECT_EQ(cvs.map, Equal_Keys::Map::cvs);
    EXPECT_EQ(cvs.reset_cv, 8);
    EXPECT_EQ(cvs.set_number, 10);
    EXPECT_THAT(cvs.set_names, ElementsAre(QStringLiteral("Set 1"), QStringLiteral("Set 3")));
    const auto& scripts = report.equal_keys[1];
    EXPECT_EQ(scripts.map, Equal_Keys::Map::scripts);
    EXPECT_EQ(scripts.set_number, 10);
    EXPECT_THAT(scripts.set_names, ElementsAre(QStringLiteral("Set 1"), QStringLiteral("Set 2")));
}

struct Refused {
    std::string what;
    std::function<void(Library&)> spoil;
    Refusal expected; ///< of set 2
};

scripts::cls_script_coll& scripts_of_set_2(Library& library) {
    return *library.script_sets.Item(QStringLiteral("2"));
}

const Refused refused[] = {
    {"number",
     [](auto& l) { l.sets.Item(2)->Nummer = -1; },
     {.reason = Reason::set_number_negative, .set_number = -1, .value = -1}},
    {"reset CV",
     [](auto& l) { l.sets.Item(2)->ResCV = -8; },
     {.reason = Reason::reset_cv_negative, .set_number = 20, .value = -8}},
    {"number of a set with scripts",
     [](auto& l) { l.sets.Item(2)->Nummer = 256; },
     {.reason = Reason::set_number_above_255, .set_number = 256, .value = 256}},
    {"17 scripts",
     [](auto& l) {
         while (scripts_of_set_2(l).Count() < 17) scripts_of_set_2(l).AddScript();
     },
     {.reason = Reason::too_many_scripts, .set_number = 20, .value = 17}},
    {"257 lines",
     [](auto& l) { scripts_of_set_2(l).Item(2)->StateCount = 257; },
     {.reason = Reason::too_many_lines, .set_number = 20, .script = 2, .value = 257}},
    {"sample 256",
     [](auto& l) { scripts_of_set_2(l).Item(3)->GetState(9).SetPar(0, 256); },
     {.reason = Reason::parameter,
      .set_number = 20,
      .script = 3,
      .line = 9,
      .parameter = 1,
      .value = 256}},
    {"sample 257",
     [](auto& l) { scripts_of_set_2(l).Item(1)->GetState(0).SetPar(0, 257); },
     {.reason = Reason::parameter,
      .set_number = 20,
      .script = 1,
      .line = 0,
      .parameter = 1,
      .value = 257}},
    {"parameter",
     [](auto& l) { scripts_of_set_2(l).Item(2)->GetState(4).SetPar(6, -1); },
     {.reason = Reason::parameter,
      .set_number = 20,
      .script = 2,
      .line = 4,
      .parameter = 7,
      .value = -1}},
    {"command",
     [](auto& l) { scripts_of_set_2(l).Item(2)->GetState(0).SetCommand(256); },
     {.reason = Reason::command, .set_number = 20, .script = 2, .line = 0, .value = 256}},
};

void fill_for_refusals(Library& library) {
    library.add_set(1, 8, 300); // above 255, but without scripts
    library.add_set(2, 8, 20);
    library.add_scripts(2, 3, 10);
    library.add_scripts(3, 20);                                     // of a set that is gone
    scripts_of_set_2(library).Item(1)->GetState(10).SetPar(0, 999); // behind the end
}

TEST(Project_File, is_not_written_where_a_number_does_not_fit) {
    for (const auto& r : refused) {
        SCOPED_TRACE(r.what);
        Library library;
        fill_for_refusals(library);
        ASSERT_TRUE(library.save().written);
        const auto before = library.file();
        r.spoil(library);
        const auto report = library.save();
        EXPECT_FALSE(report.written);
        EXPECT_EQ(library.file(), before);
        ASSERT_EQ(report.refusals.size(), 1U);
        const auto& refusal = report.refusals[0];
        EXPECT_EQ(refusal.SetID, 2);
        EXPECT_EQ(refusal.set_name, QStringLiteral("Set 2"));
        EXPECT_EQ(refusal.reason, r.expected.reason);
        EXPECT_EQ(refusal.set_number, r.expected.set_number);
        EXPECT_EQ(refusal.script, r.expected.script);
        EXPECT_EQ(refusal.line, r.expected.line);
        EXPECT_EQ(refusal.parameter, r.expected.parameter);
        EXPECT_EQ(refusal.value, r.expected.value);
    }
}

TEST(Project_File, names_everything_that_does_not_fit_at_once) {
    Library library;
    fill_for_refusals(library);
    for (const auto& r : refused) r.spoil(library);
    library.sets.Item(1)->Nummer = -7;
    const auto report = library.save();
    std::vector<Reason> reasons;
    for (const auto& refusal : report.refusals) reasons.push_back(refusal.reason);
    // Of one set a number is either too low or too high; 257 lines hide what stands in them.
    EXPECT_THAT(reasons, ElementsAre(Reason::set_number_negative, Reason::reset_cv_negative,
                                     Reason::set_number_above_255, Reason::too_many_scripts,
                                     Reason::parameter, Reason::too_many_lines, Reason::parameter));
    EXPECT_THAT(library.disk.paths(), IsEmpty());
}

TEST(Project_File, is_refused_for_its_size_when_a_count_has_too_few_bits) {
    Library library;
    auto& set = library.add_set(1, 8, 10);
    for (int page = 0; page < 65536; ++page) set.Add_CV(page, 257, 1);
    const auto report = library.save();
    EXPECT_FALSE(report.written);
    ASSERT_EQ(report.refusals.size(), 1U);
    EXPECT_EQ(report.refusals[0].reason, Reason::too_large);
    EXPECT_THAT(library.disk.paths(), IsEmpty());
}

} // namespace
} // namespace vqx_export
