#include "link/jobs/cv_tables.h"

#include <algorithm>
#include <span>

namespace link_jobs {
namespace {

/// Numbers from `first` to `last`.
struct Range {
    int first;
    int last;
};

constexpr bool among(std::span<const Range> ranges, int cv) {
    return std::ranges::any_of(
        ranges, [cv](const Range& each) { return each.first <= cv && cv <= each.last; });
}

/// Decoders with 256 CVs keep these of the numbers above under lower ones: `first` to `last` move
/// to `moved` and on.
struct Move {
    int first;
    int last;
    int moved;
};

constexpr Move moves[] = {
    {97, 97, 104},   {309, 309, 102}, {349, 349, 101}, {351, 353, 97},
    {355, 355, 100}, {394, 394, 103}, {430, 477, 201}, {508, 512, 249},
};

constexpr int small_space = 256;
constexpr int highest_cv = 1024;
constexpr Range of_the_decoder[] = {
    {7, 8}, {65, 65}, {250, 253}}; ///< version, maker, serial number

// A set that is loaded
constexpr Range small_refused[] = {{26, 26}, {98, 104}, {201, 249}};
constexpr Range small_above[] = {{309, 309}, {349, 349}, {351, 353}, {355, 355},
                                 {394, 394}, {430, 477}, {508, 512}};

// All CVs, written one by one
constexpr Range large_not_written[] = {{7, 8},     {26, 26},   {65, 65},
                                       {241, 241}, {250, 253}, {260, 263}};
constexpr Range small_not_written[] = {{7, 8}, {26, 26}, {65, 65}, {98, 104}, {201, 253}};

// What reading finds under a moved number, as far as it can tell
constexpr Range not_told[] = {{100, 100}, {250, 253}};

std::optional<int> moved(int cv) {
    for (const Move& each : moves)
        if (each.first <= cv && cv <= each.last) return each.moved + cv - each.first;
    return std::nullopt;
}

bool on_first_pages(const store::CVRec& cv) { return cv.CVPageHi == 0 && cv.CVPageLo <= 3; }

/// A packet would carry another number or value instead of one that no decoder has.
bool can_be_sent(const store::CVRec& cv) {
    return cv.CVNr >= 1 && cv.CVNr <= highest_cv && cv.CVWert >= 0 && cv.CVWert <= 255;
}

} // namespace

bool is_admitted(const store::CVRec& cv, Family_Group group) {
    if (!on_first_pages(cv) || !can_be_sent(cv) || among(of_the_decoder, cv.CVNr)) return false;
    if (group != Family_Group::cv256) return true;
    if (among(small_refused, cv.CVNr)) return false;
    return cv.CVNr <= small_space || among(small_above, cv.CVNr);
}

int renumbered(int cv, Family_Group group) {
    if (group == Family_Group::cv1024 || group == Family_Group::sound) return cv;
    return moved(cv).value_or(cv);
}

std::optional<int> kept_as(int decoder_cv, int cv_space) {
    if (among(of_the_decoder, decoder_cv)) return std::nullopt;
    if (cv_space != small_space || among(not_told, decoder_cv)) return decoder_cv;
    for (const Move& each : moves) {
        const int last = each.moved + each.last - each.first;
        if (each.moved <= decoder_cv && decoder_cv <= last)
            return each.first + decoder_cv - each.moved;
    }
    return decoder_cv;
}

std::optional<int> written_as(int cv, int cv_space) {
    if (cv_space != small_space)
        return among(large_not_written, cv) ? std::nullopt : std::optional(cv);
    if (among(small_not_written, cv)) return std::nullopt;
    if (const auto there = moved(cv)) return there;
    return cv <= small_space ? std::optional(cv) : std::nullopt;
}

int last_to_write(int cv_space) { return cv_space == small_space ? 512 : cv_space; }

} // namespace link_jobs
