#include "link/jobs/cv_tables.h"

#include <gtest/gtest.h>

#include <map>

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
