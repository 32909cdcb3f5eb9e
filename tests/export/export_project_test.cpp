#include "export/library.h"
#include "export/read_vqx.h"

#include <set>

namespace vqx_export {
namespace {

using enum Reason;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;
using testing::Pair;
using Bytes = std::vector<std::uint8_t>;

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
    void (*fill)(Library&);
    File_Type type;
    std::string header, body; ///< what is not 0 of the header
} approved[] = {
    {fill_with_scripts, File_Type::oem, "51 4C 00 02 00 80 00 00 00 00 00 00 61",
     "82 CE 6D 61 69 6E CE 00 00 00 15 CE 00 65 78 74 CE 00 00 10 00 "
     "82 CE 00 64 63 63 CE 00 00 00 15 CE 00 73 63 72 CE 00 00 00 2B "
     "82 92 08 03 81 92 00 00 C4 04 00 03 1C 06 92 CD 01 09 CD 01 2C 80 "
     "81 CC 03 92 CE 00 00 00 0E CE 00 00 00 13 "
     "01 00 03 01 00 00 00 00 00 00 01 04 1C 01 00 00 00 00 00"},
    {fill_first_example, File_Type::user, "4C 5A 00 02 00 80 00 00 00 00 00 00 19",
     "81 CE 00 64 63 63 CE 00 00 00 0B 81 92 08 03 81 92 00 00 C4 04 00 03 1C 06"},
    {[](Library&) {}, File_Type::user, "4C 5A 00 02 00 80 00 00 00 00 00 00 0C",
     "81 CE 00 64 63 63 CE 00 00 00 0B 80"},
};

TEST(Project_File, is_the_approved_one_byte_for_byte_whatever_was_built_before) {
    cls_QL_project again;
    for (const auto i : {0, 1, 2, 0}) {
        SCOPED_TRACE(i);
        const auto& [fill, type, header, body] = approved[i];
        Library library;
        fill(library);
        EXPECT_TRUE(library.save(type).written);
        auto file = hex(header);
        file.resize(128);
        std::ranges::copy(hex(body), std::back_inserter(file));
        EXPECT_EQ(library.file(), file);
        EXPECT_THAT(library.disk.paths(), ElementsAre(Library::path));
        again.file_type = type;
        again.Set_DCC_Set(library.sets);
        again.Set_Script_Set(std::make_shared<scripts::cls_Script_Sets>(library.script_sets));
        for (int time = 0; time < 2; ++time) EXPECT_EQ(again.Get_Array(), hex(body));
    }
}

/// @return what a reader should find
Read_Vqx::Sets fill_many(Library& library, int sets, int pages, int cvs) {
    Read_Vqx::Sets expected;
    for (int s = 0; s < sets; ++s) {
        auto& set = library.add_set(1000 + s, 8, static_cast<std::int16_t>(s));
        auto& of_set = expected.emplace_back(Read_Vqx::Pair{8, s}, Read_Vqx::Pages()).second;
        for (int p = 0; p < pages; ++p) {
            auto& pairs = of_set.emplace_back(Read_Vqx::Pair{1 + p / 256, p % 256}, Bytes()).second;
            for (int c = 0; c < cvs; ++c) {
                const auto value = static_cast<std::uint8_t>(s + p + c);
                set.Add_CV(256 + p, static_cast<std::int16_t>(257 + c), value);
                pairs.insert(pairs.end(), {static_cast<std::uint8_t>(c), value});
            }
        }
    }
    return expected;
}

TEST(Project_File, holds_libraries_on_both_sides_of_every_count_limit) {
    const struct {
        int sets, pages, cvs;
    } cases[] = {
        {15, 1, 1},    {16, 1, 1},  {300, 2, 3}, // fixmap and map 16 of sets
        {1, 15, 1},    {1, 16, 1},  {2, 700, 1}, // of pages
        {1, 1, 63},    {1, 1, 127}, {1, 1, 128}, // bin 8 with 254 bytes, bin 16 with 256
        {3, 200, 256},                           // full pages; a body of more than 64 KiB
        {2, 10, 98},   {1, 27, 72}, // 4096 bytes, for which there is room, and one more
    };
    std::set<std::size_t> sizes;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.sets << ' ' << c.pages << ' ' << c.cvs);
        for (const auto type : {File_Type::oem, File_Type::user}) {
            Library library;
            const auto expected = fill_many(library, c.sets, c.pages, c.cvs);
            library.add_scripts(1000, 1);
            ASSERT_TRUE(library.save(type).written);
            sizes.insert(library.file().size());
            const Read_Vqx read(library.file());
            EXPECT_EQ(read.oem, type == File_Type::oem);
            EXPECT_EQ(read.sets, expected);
            EXPECT_EQ(read.blocks.value().size(), 1U);
        }
    }
    EXPECT_TRUE(sizes.contains(128 + 4096) && sizes.contains(128 + 4097));
}

TEST(Project_File, holds_full_script_blocks_of_many_sets_under_the_numbers_of_the_library) {
    Library library;
    for (int i = 0; i < 40; ++i) {
        library.add_set(100 + i, 8, static_cast<std::int16_t>(255 - i));
        library.add_scripts(100 + i, 16, 256).Item(16)->GetState(255).SetPar(3, i);
    }
    const auto report = library.save();
    EXPECT_EQ(report.sets_with_scripts, 40);
    const auto blocks = Read_Vqx(library.file()).blocks.value();
    ASSERT_EQ(blocks.size(), 40U);
    for (int i = 0; i < 40; ++i) {
        const auto& [number, bytes] = blocks[static_cast<std::size_t>(i)];
        EXPECT_EQ(number, 255 - i);
        ASSERT_EQ(bytes.size(), 32929U);
        EXPECT_EQ(bytes[0], 16);
        EXPECT_EQ(bytes[32929 - 4], i);
    }
}

TEST(Project_File, leaves_out_what_has_no_place_and_counts_it) {
    Library library;
    auto& set = library.add_set(5, 8, 10);
    set.Add_CV(1, 44, 1);
    set.Add_CV(0, 300, 2);
    set.Add_CV(1, 1025, 3);
    library.sets.CVs_Left_Out = 5; // at loading
    library.add_scripts(77, 3);    // of sets that are gone
    library.add_scripts(78, 1);
    auto report = library.save();
    EXPECT_TRUE(report.written);
    EXPECT_EQ(report.left_out_scripts, 4);
    EXPECT_THAT(report.left_out_cvs, FieldsAre(6, 1, 0));
    Read_Vqx read(library.file());
    EXPECT_EQ(read.sets, (Read_Vqx::Sets({{{8, 10}, Read_Vqx::Pages({{{0, 0}, {43, 1}}})}})));
    EXPECT_FALSE(read.blocks) << "no script map for scripts of nobody";

    library.add_scripts(5, 1).Item(1)->States_Left_Out = 2;
    report = library.save();
    EXPECT_EQ(report.left_out_scripts, 4);
    EXPECT_EQ(report.left_out_states, 2);
    EXPECT_EQ(report.sets_with_scripts, 1);
    EXPECT_THAT(Read_Vqx(library.file()).blocks.value(), ElementsAre(Pair(10, testing::_)));
}

TEST(Project_File, writes_sets_with_equal_keys_and_names_them) {
    Library library;
    library.add_set(1, 8, 10);
    library.add_set(2, 265, 10);
    library.add_set(3, 8, 10);
    library.add_set(4, 8, 11);
    for (const int id : {1, 2, 4}) library.add_scripts(id, 1);
    const auto report = library.save();
    const Read_Vqx read(library.file());
    EXPECT_EQ(read.sets.size(), 4U);
    EXPECT_EQ(read.blocks.value().size(), 3U);
    EXPECT_THAT(
        report.equal_keys,
        ElementsAre(FieldsAre(Equal_Keys::Map::cvs, 8, 10, ElementsAre(u"Set 1", u"Set 3")),
                    FieldsAre(Equal_Keys::Map::scripts, 0, 10, ElementsAre(u"Set 1", u"Set 2"))));
}

const struct Refused {
    void (*spoil)(store::cls_CV_Set& set, scripts::cls_script_coll& its_scripts);
    Reason reason;
    std::array<std::int64_t, 6> at; ///< set number, script, its key, line, parameter, value
} refused[] = {
    {[](auto& set, auto&) { set.Nummer = -1; }, set_number_negative, {-1, 0, 0, -1, 0, -1}},
    {[](auto& set, auto&) { set.ResCV = -8; }, reset_cv_negative, {20, 0, 0, -1, 0, -8}},
    {[](auto& set, auto&) { set.Nummer = 256; }, set_number_above_255, {256, 0, 0, -1, 0, 256}},
    {[](auto&, auto& s) { s.AddScript(); }, too_many_scripts, {20, 0, 0, -1, 0, 17}},
    {[](auto&, auto& s) { s.Item(2)->StateCount = 257; }, too_many_lines, {20, 2, 72, -1, 0, 257}},
    {[](auto&, auto& s) { s.Item(3)->GetState(9).SetPar(0, 256); },
     parameter,
     {20, 3, 73, 9, 1, 256}},
    {[](auto&, auto& s) { s.Item(2)->GetState(4).SetPar(6, -1); },
     parameter,
     {20, 2, 72, 4, 7, -1}},
    {[](auto&, auto& s) { s.Item(2)->GetState(0).SetCommand(256); },
     command,
     {20, 2, 72, 0, 0, 256}},
};

struct Sound_Library : Library {
    store::cls_CV_Set& set;
    scripts::cls_script_coll& scripts;
    Sound_Library()
        : set((add_set(1, 8, 300), add_set(2, 8, 20))), scripts(add_scripts(2, 16, 10)) {
        add_scripts(3, 20); // of a set that is gone; number 300 has no scripts
        for (int i = 1; i <= 16; ++i) scripts.Item(i)->ScriptID = 70 + i;
        scripts.Item(1)->GetState(9).SetPar(0, 255);
        scripts.Item(1)->GetState(10).SetPar(0, 999); // behind the end
    }
};

TEST(Project_File, is_not_written_where_a_number_does_not_fit) {
    for (const auto& r : refused) {
        SCOPED_TRACE(testing::PrintToString(r.at));
        Sound_Library library;
        ASSERT_TRUE(library.save().written);
        const auto before = library.file();
        r.spoil(library.set, library.scripts);
        const auto report = library.save();
        EXPECT_FALSE(report.written);
        EXPECT_EQ(library.file(), before);
        EXPECT_THAT(report.refusals, ElementsAre(FieldsAre(r.reason, 2, u"Set 2", r.at[0], r.at[1],
                                                           r.at[2], r.at[3], r.at[4], r.at[5])));
    }
}

TEST(Project_File, names_everything_that_does_not_fit_at_once) {
    Sound_Library library;
    for (const auto& r : refused) r.spoil(library.set, library.scripts);
    library.sets.Item(1)->Nummer = -7;
    const auto report = library.save();
    std::vector<Reason> reasons;
    for (const auto& refusal : report.refusals) reasons.push_back(refusal.reason);
    // Of one set a number is either too low or too high; 257 lines hide what stands in them.
    EXPECT_THAT(reasons, ElementsAre(set_number_negative, reset_cv_negative, set_number_above_255,
                                     too_many_scripts, too_many_lines, parameter));
    EXPECT_THAT(library.disk.paths(), IsEmpty());
}

TEST(Project_File, is_refused_for_its_size_when_a_count_has_too_few_bits) {
    Library library;
    auto& set = library.add_set(1, 8, 10);
    for (int page = 0; page < 65536; ++page) set.Add_CV(page, 257, 1);
    const auto report = library.save();
    EXPECT_FALSE(report.written);
    EXPECT_EQ(report.refusals.at(0).reason, too_large);
    EXPECT_THAT(library.disk.paths(), IsEmpty());
}

} // namespace
} // namespace vqx_export
