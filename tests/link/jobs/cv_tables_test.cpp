#include "link/jobs/cv_tables.h"
#include "link/types/mod_decodertypen.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

using namespace link_jobs;

namespace {

struct Span {
    int first, last; ///< CVs of a set
    int to;          ///< of the first one, in the decoder
};

std::map<int, int> each(const std::vector<Span>& spans) {
    std::map<int, int> all;
    for (const Span& span : spans)
        for (int cv = span.first; cv <= span.last; ++cv) all[cv] = span.to + cv - span.first;
    return all;
}

/// What a decoder of 256 CVs takes beside its plain ones.
const std::vector<Span> moved{{97, 97, 104},   {309, 309, 102}, {349, 349, 101}, {351, 353, 97},
                              {355, 355, 100}, {394, 394, 103}, {430, 477, 201}, {508, 512, 249}};

std::vector<Span> with(std::vector<Span> spans, const std::vector<Span>& more) {
    spans.insert(spans.end(), more.begin(), more.end());
    return spans;
}

} // namespace

TEST(Cv_Tables, a_set_is_admitted_and_renumbered_by_family) {
    const std::vector<Span> large{{1, 6, 1}, {9, 64, 9}, {66, 249, 66}, {254, 1024, 254}};
    const std::vector<Span> small{{1, 6, 1},    {9, 25, 9},      {27, 64, 27},
                                  {66, 96, 66}, {105, 200, 105}, {254, 256, 254}};
    std::vector<Span> unknown = large; // those of moved are renumbered all the same
    const struct {
        Family_Group group;
        std::map<int, int> want;
    } cases[] = {{Family_Group::cv1024, each(large)},
                 {Family_Group::sound, each(large)},
                 {Family_Group::cv256, each(with(small, moved))},
                 {Family_Group::unknown, each(with(unknown, moved))}};
    for (const auto& [group, want] : cases)
        for (const int page : {0, 1, 2, 3, 4, 256})
            for (int cv = 1; cv <= 1024; ++cv) {
                SCOPED_TRACE(std::to_string(static_cast<int>(group)) + " " + std::to_string(cv));
                store::CVRec row;
                row.CVPageHi = static_cast<std::uint8_t>(page / 256);
                row.CVPageLo = static_cast<std::uint8_t>(page % 256);
                row.CVNr = static_cast<std::int16_t>(cv);
                const auto found = want.find(cv);
                ASSERT_EQ(is_admitted(row, group), page < 4 && found != want.end());
                if (found != want.end()) {
                    ASSERT_EQ(renumbered(cv, group), found->second);
                }
            }
}

TEST(Cv_Tables, all_cvs_are_written_and_kept_under_their_numbers) {
    const std::vector<Span> written_small{{1, 6, 1},    {9, 25, 9},      {27, 64, 27},
                                          {66, 96, 66}, {105, 200, 105}, {254, 256, 254}};
    const std::vector<Span> written_large{{1, 6, 1},       {9, 25, 9},      {27, 64, 27},
                                          {66, 240, 66},   {242, 249, 242}, {254, 259, 254},
                                          {264, 1024, 264}};
    const std::vector<Span> kept_small{
        // here the first is the decoder's
        {1, 6, 1},       {9, 64, 9},      {66, 96, 66},    {97, 99, 351},  {100, 100, 100},
        {101, 101, 349}, {102, 102, 309}, {103, 103, 394}, {104, 104, 97}, {105, 200, 105},
        {201, 248, 430}, {249, 249, 508}, {254, 256, 254}};
    const std::vector<Span> kept_large{{1, 6, 1}, {9, 64, 9}, {66, 249, 66}, {254, 1024, 254}};
    const auto compare = [](const std::map<int, int>& want, int last, auto rule) {
        for (int cv = 1; cv <= last; ++cv) {
            const auto found = want.find(cv);
            const std::optional<int> got = rule(cv);
            EXPECT_EQ(got, found == want.end() ? std::nullopt : std::optional(found->second)) << cv;
        }
    };
    compare(each(with(written_small, moved)), 512, [](int cv) { return written_as(cv, 256); });
    compare(each(kept_small), 256, [](int cv) { return kept_as(cv, 256); });
    for (const int size : {1023, 1024}) {
        compare(each(written_large), size, [&](int cv) { return written_as(cv, size); });
        compare(each(kept_large), size, [&](int cv) { return kept_as(cv, size); });
    }
}

TEST(Cv_Tables, every_type_code_has_its_row) {
    using enum Family_Group;
    const struct {
        int first, last;
        Family_Group group;
        int size;
        const char* name = nullptr; ///< nothing: one of its own
    } bands[] = {
        {0, 0, sound, 1024, "QR-Decoder"},
        {1, 10, sound, 1024},
        {11, 127, sound, 1024, "QRxxx"},
        {128, 129, cv1024, 1024, "Decoder"},
        {130, 130, cv1024, 1024},
        {131, 131, cv1024, 1024, "Decoder"},
        {132, 137, cv1024, 1024},
        {138, 141, cv1024, 1024, "Decoder"},
        {142, 142, cv1024, 1024},
        {143, 151, cv1024, 1024, "Decoder"},
        {152, 152, cv1024, 1024},
        {153, 159, cv1024, 1024, "Decoder"},
        {160, 160, cv1024, 1024},
        {161, 164, cv1024, 1024, "Decoder"},
        {165, 165, cv1024, 1024},
        {166, 166, cv1024, 1023},
        {167, 170, cv1024, 1024, "Decoder"},
        {171, 171, cv256, 256},
        {172, 174, cv1024, 1024, "Decoder"},
        {175, 178, cv1024, 1024},
        {179, 179, cv1024, 1024, "Decoder"},
        {180, 182, cv1024, 1024},
        {183, 184, cv256, 256},
        {185, 186, cv1024, 1024},
        {187, 188, cv256, 256},
        {189, 190, cv1024, 1024},
        {191, 191, cv1024, 1024, "Decoder"},
        {192, 193, cv1024, 1024},
        {194, 196, cv256, 256},
        {197, 198, cv1024, 1024},
        {199, 201, cv256, 256},
        {202, 205, cv1024, 1024, "Decoder"},
        {206, 207, cv256, 256},
        {208, 210, cv1024, 1024},
        {211, 213, cv256, 256},
        {214, 217, cv1024, 1024},
        {218, 220, cv256, 256},
        {221, 222, cv1024, 1024},
        {223, 223, cv256, 256},
        {224, 225, cv1024, 1024},
        {226, 226, cv256, 256},
        {227, 227, cv1024, 1024},
        {228, 228, cv256, 256},
        {229, 231, cv1024, 1024},
        {232, 236, cv256, 256},
        {237, 237, unknown, 1024},
        {238, 238, cv256, 256},
        {239, 239, cv1024, 1024, "Decoder"},
        {240, 241, unknown, 1024},
        {242, 242, cv256, 256},
        {243, 254, cv1024, 1024},
        {255, 255, cv1024, 1024, "Decoder"},
    };
    int next = 0;
    for (const auto& band : bands)
        for (int code = band.first; code <= band.last; ++code) {
            SCOPED_TRACE(code);
            ASSERT_EQ(code, next++);
            for (const Family_Group before : {unknown, cv256, sound}) {
                link_types::Link_Values values;
                values.DecoderTypeCode = static_cast<std::uint8_t>(code);
                values.decoder = {{}, before, 77};
                link_types::look_up_decoder_type(values);
                EXPECT_EQ(values.decoder.group, band.group == unknown ? before : band.group);
                EXPECT_EQ(values.decoder.cv_space, band.size);
                EXPECT_EQ(values.decoder.name, band.name != nullptr
                                                   ? QString::fromLatin1(band.name)
                                                   : QStringLiteral("Decoder %1").arg(code));
            }
        }
    EXPECT_EQ(next, 256);
}
