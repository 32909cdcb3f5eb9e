#include "platform/files/replace.h"
#include "support/temporary_folder.h"
#include "vqx_dump/project.h"

#include <gmock/gmock.h>

#include <cctype>
#include <cstdlib>
#include <random>

namespace vqx_dump {
namespace {

using testing::HasSubstr;
using File = std::vector<std::uint8_t>;

/// Bytes from hexadecimal digits; blanks between them do not count.
File bytes(std::string_view text) {
    File result;
    std::string digits;
    for (const char sign : text) {
        if (std::isxdigit(static_cast<unsigned char>(sign)) != 0) digits += sign;
        if (digits.size() == 2)
            result.push_back(
                static_cast<std::uint8_t>(std::stoi(std::exchange(digits, {}), {}, 16)));
    }
    return result;
}

/// A header of 128 bytes with the right length, then the body.
File file(std::string_view magic, std::string_view body_text) {
    const auto body = bytes(body_text);
    File result(128);
    std::copy(magic.begin(), magic.end(), result.begin());
    result[3] = 2;
    result[5] = 0x80;
    result[11] = static_cast<std::uint8_t>(body.size() >> 8);
    result[12] = static_cast<std::uint8_t>(body.size());
    result.insert(result.end(), body.begin(), body.end());
    return result;
}

File one() {
    return file("QL", "82 CE6D61696E CE00000015 CE00657874 CE00001000" // main map
                      "81 CE00646363 CE0000000B"                       // directory
                      "81 92 08 03 81 92 00 00 C4 04 00 03 1C 06");
}

File none() { return file("LZ", "81 CE00646363 CE0000000B 80"); }

// clang-format off
File two() {
    return file("QL",
        "82 CE6D61696E CE00000015 CE00657874 CE00001000"                  // 0x80 main map
        "82 CE00646363 CE00000015 CE00736372 CE00000039"                  // 0x95 directory
        "82 92 08 03 82 92 00 00 C4 04 00 03 1C 06"                       // 0xaa 8/3: CV 1 and 29 ...
                       "92 01 02 C4 02 2B 07"                             //      ... and CV 300 on 1:2
           "92 CD0109 CCC8 81 92 CC91 00 C4 02 00 05"                     // 0xbf 265/200: CV 257 on 145:0
        "82 CC03 92 CE0000001B CE0000002D CCC8 92 CE00000048 CE00000013"  // 0xce script map
        "02 0005 0025"                                                    // 0xe9 block of set 3
        "0300 0000000000 00  01 0500000000 0000  02 00000000 000000  06 01 000000000000"
        "0000 0000000000 01"
        "01 0003  0100 0000000000 00  05 0004070000 0000");               // 0x116 block of set 200
}
// clang-format on

struct Outcome {
    Findings findings;
    std::string text;
};

Outcome dump(const File& file) {
    Outcome outcome;
    const auto project = read_project(file, outcome.findings);
    outcome.text = project_tree(file, project) + findings_text(outcome.findings);
    return outcome;
}

TEST(Vqx_Dump, shows_the_whole_file) {
    EXPECT_EQ(dump(none()).text, "0x0000  user project file, format 2, body of 12 bytes\n"
                                 "0x0080  directory\n"
                                 "0x0081    \"dcc\" = 11\n"
                                 "0x008b  CV sets: 0\n"
                                 "consistent\n");
    EXPECT_EQ(dump(two()).text,
              R"(0x0000  oem project file, format 2, body of 169 bytes
0x0080  main map
0x0081    "main" = 21
0x008b    "ext" = 4096
0x0095  directory
0x0096    "dcc" = 21
0x00a0    "scr" = 57
0x00aa  CV sets: 2
0x00ab    reset CV 8, number 3: 2 pages
0x00b4      page 0:0, 2 CVs
0x00b4        CV1 = 3, CV29 = 6
0x00bd      page 1:2, 1 CV
0x00bd        CV300 = 7
0x00bf    reset CV 265, number 200: 1 page
0x00cc      page 145:0, 1 CV
0x00cc        CV257 = 5
0x00ce  script map: 2
0x00cf    set number 3: block at 27, 45 bytes
0x00dc    set number 200: block at 72, 19 bytes
0x00e9  scripts of set number 3: 2
0x00ee    script 1: 3 states, flag 0
0x00f6      0: 1 Start sound (5, 0, 0, 0, 0, 0, 0)
0x00fe      1: 2 Stop sound (0, 0, 0, 0, 0, 0, 0)
0x0106      2: 6 Go to state (1, 0, 0, 0, 0, 0, 0)
0x010e    script 2: 0 states, flag 1
0x0116  scripts of set number 200: 1
0x0119    script 1: 1 state, flag 0
0x0121      0: 5 Query parameter (0, 4, 7, 0, 0, 0, 0)
consistent
)");
}

/// One damage to a sound file: `remove` bytes at `at` make room for `insert`; the header's body
/// length follows a change of length unless the damage lies in the header.
struct Damage {
    File (*golden)();
    std::size_t at;
    std::size_t remove;
    const char* insert;
    const char* sentence;                           ///< expected among the findings
    enum { fault, doubt, only_fault } kind = fault; ///< the last hides nothing of what follows
};

File damaged(const Damage& damage) {
    auto result = damage.golden();
    const auto at = result.begin() + static_cast<std::ptrdiff_t>(damage.at);
    const auto next = result.erase(at, at + static_cast<std::ptrdiff_t>(damage.remove));
    const auto insert = bytes(damage.insert);
    result.insert(next, insert.begin(), insert.end());
    if (damage.at < 128) return result;
    result[11] = static_cast<std::uint8_t>((result.size() - 128) >> 8);
    result[12] = static_cast<std::uint8_t>(result.size() - 128);
    return result;
}

const Damage damages[] = {
    {one, 0, 2, "4C5A", "0x0081: the directory has an unknown entry \"main\"."},
    {none, 0, 2, "514C", "0x0080: the main map does not name \"ext\"."},
    {one, 2, 2, "0003", "0x0002: the format number is 3, not 2."},
    {one, 9, 4, "0000002D", "body has 45 bytes, but 46 follow the header."},
    // main map and directory
    {one, 0x80, 1, "83", "the main map announces 3 entries, but has 2."},
    {one, 0x80, 1, "81", "the main map announces 1 entries, but has 2."},
    {one, 0x80, 1, "DE0002", "the main map (2) is written as map 16, not as fixmap."},
    {one, 0x81, 5, "A46D61696E",
     "a number (an identifier of the main map), but there is a fixstr."},
    {one, 0x86, 5, "15", "an address of the main map (21) is written as positive fixint, not as"},
    {one, 0x8B, 0, "CE00657874CE00001000", "0x0095: the main map names \"ext\" twice."},
    {one, 0x90, 5, "CE00002000", "\"ext\" is 8192; the body length rounded up"},
    {one, 0x9B, 5, "CE00000020",
     "0x009b: the address of the map of CV sets is 32, but the map of CV sets should start at 11 "
     "(counted from 0x0095)."},
    {one, 0x9B, 5, "CE7FFFFFFF", "the address of the map of CV sets is 2147483647, but"},
    {two, 0x96, 20, "CE00736372CE00000039 CE00646363CE00000015",
     "0x00a0: the directory names \"dcc\" too late."},
    // CV sets
    {one, 0xA0, 1, "82", "the file ends within the key of a set."},
    {one, 0xA1, 3, "930803 00", "the key of a set is an array of 3, not of 2."},
    {one, 0xA2, 1, "CC08",
     "the reset CV of a set (8) is written as uint 8, not as positive fixint."},
    {one, 0xA3, 1, "CE0000012C",
     "the number of a set (300) is written as uint 32, not as uint 16."},
    {one, 0xA3, 1, "CD8000", "the number of a set is 32768; it goes up to 32767."},
    {one, 0xA6, 1, "CD0100", "the high page byte is 256; page bytes go up to 255."},
    {one, 0xA7, 1, "CD0100", "the low page byte is 256; page bytes go up to 255."},
    {one, 0xA8, 2, "C50004", "page 0:0 (4) is written as bin 16, not as bin 8."},
    {one, 0xA8, 6, "C403 00031C", "0x00aa: page 0:0 has 3 bytes, an odd number; a CV takes two."},
    {one, 0xAC, 1, "00", "0x00ac: page 0:0 has two values for CV byte 0."},
    {one, 0xAE, 0, "00", "0x00ae: 1 bytes follow the last part of the body."},
    {one, 0xA0, 0, "C0", "0x00a0: here should stand a map (the map of CV sets)"},
    {two, 0xB9, 2, "0000", "has page 0:0 twice."},
    // script map
    {two, 0xCE, 1, "83", "here should stand an array of 2 (the value of a script map entry)"},
    {two, 0xCF, 2, "03", "the set number in the script map (3) is written as positive"},
    {two, 0xCF, 2, "CC04", "names set number 4, but there is no (further) set"},
    {two, 0xD2, 5, "1B", "the address of a script block (27) is written as positive"},
    {two, 0xD2, 5, "CE00000000", "script block of set number 3 is 0, but the script block"},
    {two, 0xD7, 5, "2D", "the length of a script block (45) is written as positive"},
    {two, 0xD7, 5, "CE0000002E", "has a length of 46 bytes, but its scripts end after 45."},
    {two, 0xD7, 5, "CE00000025", "the script block ends within the header of script 2."},
    {two, 0xE4, 5, "CE00000014", "script block of set number 200 ends beyond the file."},
    {two, 0x129, 0, "000000", "0x0129: 3 bytes follow the last part of the body."},
    // script blocks
    {two, 0xE9, 1, "11", "announces 17 scripts; a set has at most 16."},
    {two, 0xE9, 1, "01", "script 1 should start 3 bytes into its block"},
    {two, 0xEA, 2, "0500", "behind the offset table, but its offset is 1280."},
    {two, 0xEC, 2, "0026",
     "script 2 should start 37 bytes into its block, behind the script before, but its offset is "
     "38."},
    {two, 0xEE, 2, "0003", "script 1 has 768 states; at most 256 fit."},
    {two, 0xEE, 2, "0400", "behind the script before, but its offset is 37."},
    {two, 0xEE, 2, "0200", "behind the script before, but its offset is 37."},
    {two, 0xF2, 1, "01", "byte 4 in the header of script 1 is 1, not 0."},
    {two, 0x115, 1, "02", "0x0115: the flag of script 2 is 2, neither 0 nor 1."},
    {two, 0x119, 2, "0200", "the script block ends within the 2 states of script 1."},
    // allowed, but doubtful
    {one, 0xA2, 1, "1E", "reset CV 30 and number 3: decoders know reset CV 8 and 265.",
     Damage::doubt},
    {one, 0xA0, 1, "82 920803 80", "the set with reset CV 8 and number 3 comes twice.",
     Damage::doubt},
    {one, 0xA8, 6, "C400", "page 0:0 holds no CVs.", Damage::doubt},
    {two, 0xF6, 1, "22", "0x00f6: warning: state 0 has the unknown command 34.", Damage::doubt},
    // a wrong address or a gap
    {two, 0x9B, 5, "CE0000002A", "should start at 21 (counted from 0x0095).", Damage::only_fault},
    {two, 0xA5, 5, "CE0000004E",
     "0x00a5: the address of the script map is 78, but the script map should start at 57",
     Damage::only_fault},
    {two, 0xD2, 5, "CE00000069", "should start at 27 (counted from 0x00ce).", Damage::only_fault},
    {two, 0x80, 87, R"(82 CE6D61696E CE00000015 CE00657874 CE00001000
        82 CE00646363 CE00000017 CE00736372 CE0000003B C0C0
        82 92 08 03 82 92 00 00 C4 04 00 03 1C 06 92 01 02 C4 02 2B 07
           92 CD0109 CCC8 81 92 CC91 00 C4 02 00 05 82 CC03 92 CE0000001B)",
     "0x00aa: a gap of 2 bytes lies before the map of CV sets.", Damage::only_fault},
};

TEST(Vqx_Dump, names_each_damage) {
    for (const auto& damage : damages) {
        SCOPED_TRACE(damage.sentence);
        const auto outcome = dump(damaged(damage));
        EXPECT_THAT(outcome.text, HasSubstr(damage.sentence));
        EXPECT_EQ(outcome.findings.inconsistencies() > 0, damage.kind != Damage::doubt);
        EXPECT_TRUE(outcome.findings.warnings() > 0 || damage.kind != Damage::doubt);
        if (damage.kind != Damage::only_fault) continue;
        EXPECT_EQ(outcome.findings.inconsistencies(), 1U) << outcome.text;
        EXPECT_THAT(outcome.text, HasSubstr("CV1 = 3, CV29 = 6"));
        EXPECT_THAT(outcome.text, HasSubstr("0: 5 Query parameter"));
    }
}

TEST(Vqx_Dump, other_files_are_refused) {
    for (const auto& other : {File{}, File(127, 0x51), File(200, 0), bytes("514C0002")})
        EXPECT_THROW(dump(other), Not_A_Project_File);
    auto swapped = one();
    std::swap(swapped[0], swapped[1]);
    EXPECT_THROW(dump(swapped), Not_A_Project_File);
}

/// Offsets of bytes that are content: set numbers, pages, CVs, parameters, the flags.
bool is_content(std::size_t at) {
    static constexpr std::pair<std::size_t, std::size_t> ranges[] = {
        {0xAC, 0xAD},  {0xB0, 0xB1},   {0xB4, 0xB7},  {0xB9, 0xBA}, {0xBD, 0xBE},
        {0xC2, 0xC4},  {0xC8, 0xC9},   {0xCC, 0xCD},  {0xD0, 0xD0}, {0xDD, 0xDD},
        {0xF5, 0x10D}, {0x115, 0x115}, {0x120, 0x128}};
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [&](const auto& range) { return range.first <= at && at <= range.second; });
}

/// The format has hardly a byte that may be anything: outside its content every other value is
/// noticed.
TEST(Vqx_Dump, every_cut_and_every_changed_byte_outside_the_content_is_noticed) {
    const auto sound = two();
    const bool thorough = std::getenv("LONG_TESTS") != nullptr;
    for (std::size_t at = 2; at < sound.size(); ++at) {
        const File cut(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(at));
        if (at < 128)
            EXPECT_THROW(dump(cut), Not_A_Project_File);
        else
            EXPECT_GT(dump(cut).findings.inconsistencies(), 1U); // the length and what is missing
        if (is_content(at)) continue;
        for (unsigned change = 1; change < 256; change += thorough ? 1 : 1 + (change & 15)) {
            auto changed = sound;
            changed[at] = static_cast<std::uint8_t>(changed[at] ^ change);
            Findings findings;
            read_project(changed, findings);
            ASSERT_GT(findings.inconsistencies() + findings.warnings(), 0U)
                << hex(at) << " became " << hex(changed[at], 2);
        }
    }
}

TEST(Vqx_Dump, survives_thousands_of_mutations) {
    std::mt19937 random(20);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    const int rounds = std::getenv("LONG_TESTS") != nullptr ? 200'000 : 4'000;
    for (int round = 0; round < rounds; ++round) {
        auto mutated = round % 3 == 0 ? one() : two();
        for (auto changes = 1 + below(6); changes > 0; --changes) {
            const auto at = 2 + below(mutated.size() - 2);
            const auto there = mutated.begin() + static_cast<std::ptrdiff_t>(at);
            const auto kind = below(3);
            if (kind == 0) mutated[at] = static_cast<std::uint8_t>(random());
            if (kind == 1) mutated.insert(there, below(40), static_cast<std::uint8_t>(random()));
            if (kind == 2 && mutated.size() > 140) mutated.erase(there, there + 1);
        }
        const auto outcome = dump(mutated);
        ASSERT_LE(outcome.findings.kept().size(), Findings::most_kept);
        ASSERT_LE(outcome.text.size(), 60'000U) << round;
    }
}

/// Counts that promise more than the file has, and addresses that lead back into what was read.
TEST(Vqx_Dump, hostile_files_cost_no_more_than_their_size) {
    auto entries = std::string("82 CE00646363 CE00000015 CE00736372 CE00000016 80 DE4E20");
    for (int i = 0; i < 20'000; ++i) entries += "CC00 92 CE00000003 CE00008000";
    auto circling = file("LZ", entries);
    circling.resize(circling.size() + 40'000, 1);
    EXPECT_GT(dump(circling).findings.inconsistencies(), 20'000U);

    auto promising = file("LZ", "81 CE00646363 CE0000000B DFFFFFFFFF 92 08 03 DFFFFFFFFF 92 00 00");
    promising.insert(promising.end(), {0xC6, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_THAT(dump(promising).text,
                HasSubstr("page 0:0 is 4294967295 bytes long, but only 0 follow."));
}

TEST(Vqx_Dump, the_program_ends_with_the_status) {
    const support::Temporary_Folder folder;
    const std::tuple<const char*, std::optional<File>, int> cases[] = {
        {"sound", one(), 0},
        {"doubtful", damaged({one, 0xA2, 1, "1E", ""}), 0},
        {"damaged", damaged({one, 2, 2, "0003", ""}), 1},
        {"other", File(1000), 2},
        {"empty", File(), 2},
        {"missing", {}, 2},
        {".", {}, 2}};
    for (const auto& [name, bytes, status] : cases) {
        const auto path = folder / name;
        if (bytes) files::replace_file(files::real_disk(), path, std::as_bytes(std::span(*bytes)));
        const auto command = std::string(CV_SETS_BIN) + "/vqx_dump '" + path + "' >/dev/null 2>&1";
        const int result = std::system(command.c_str());
        EXPECT_EQ(WEXITSTATUS(result), status) << name;
    }
}

} // namespace
} // namespace vqx_dump
