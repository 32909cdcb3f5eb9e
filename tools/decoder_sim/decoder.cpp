#include "decoder.h"

#include <algorithm>
#include <utility>

namespace decoder_sim {

namespace {

constexpr int manufacturer = 13; ///< reserved for do-it-yourself decoders

/// Type codes of the families with 256 CVs. All others from 128 on have 1024, one has 1023.
constexpr int small_types[] = {171, 183, 184, 187, 188, 194, 195, 196, 199, 200,
                               201, 206, 207, 211, 212, 213, 218, 219, 220, 223,
                               226, 228, 232, 233, 234, 235, 236, 238, 242};
constexpr int odd_type = 166;
constexpr int last_sound_type = 127;

/// Set sizes by capacity class. How many class 7 takes is not known: as many as there are CVs.
constexpr std::size_t set_limits[] = {0, 62, 94, 126, 84, 169, 255, last_cv};

/// What a decoder keeps to itself. Writing 250..253 is taken by decoders of 256 CVs, which keep
/// other things there than they show.
constexpr int never_written[] = {7, 8, 65};
bool is_serial(int cv) { return cv >= 250 && cv <= 253; }

constexpr struct {
    int cv;
    Byte value;
} first_values[] = {{1, 3},    {3, 20},  {4, 15},   {5, 200},  {6, 90},           {7, 4},
                    {29, 6},   {65, 2},  {17, 192}, {18, 100}, {8, manufacturer}, {251, 1},
                    {252, 35}, {253, 69}};

} // namespace

const std::array<Example, 9> examples{{
    {201, "256 CVs, CV sets of 94"},
    {171, "256 CVs, old: no CV sets, no checksums"},
    {130, "1024 CVs, CV sets of 169"},
    {166, "1023 CVs, CV sets of 84"},
    {255, "1024 CVs, without a name, no CV sets"},
    {237, "1024 CVs, one of three whose family is not known, CV sets of 255"},
    {3, "sound, 1024 CVs"},
    {0, "sound, without a model"},
    {64, "sound, of a model to come"},
}};

Traits usual_traits(int type_code) {
    if (type_code <= last_sound_type) return {type_code, 1024, 2, 7};
    switch (type_code) {
    case 171:
        return {type_code, 256, std::nullopt, 0};
    case odd_type:
        return {type_code, 1023, 1, 4};
    case 237:
        return {type_code, 1024, 1, 6};
    case 255:
        return {type_code, 1024, 0, 0};
    default:
        break;
    }
    const bool is_small = std::ranges::count(small_types, type_code) > 0;
    return {type_code, is_small ? 256 : 1024, 1, is_small ? 2 : 5};
}

Decoder::Decoder(const Traits& traits) : traits_(traits) {
    for (const auto& [cv, value] : first_values) put_cv(cv, value);
    put_cv(250, static_cast<Byte>(traits.type_code));
}

bool Decoder::understands_checksums() const {
    return traits_.protocol.value_or(0) > 0 || knows_sets();
}

std::optional<std::pair<int, int>> Decoder::other_page(int cv) const {
    if (cv <= 256 || cv > 512) return std::nullopt;
    const std::pair<int, int> page{this->cv(31), this->cv(32)};
    if (page.first == 0 && page.second <= 1) return std::nullopt;
    return page;
}

std::optional<Byte> Decoder::read(int cv) const {
    if (cv < 1 || cv > traits_.size) return std::nullopt;
    if (const auto page = other_page(cv)) {
        const auto found = pages_.find(*page);
        return found != pages_.end() ? found->second.at(static_cast<std::size_t>(cv - 257))
                                     : Byte{0};
    }
    return this->cv(cv);
}

bool Decoder::write(int cv, Byte value) {
    if (cv < 1 || cv > traits_.size || std::ranges::count(never_written, cv) > 0) return false;
    if (is_serial(cv)) return traits_.size == 256;
    if (const auto page = other_page(cv))
        pages_[*page].at(static_cast<std::size_t>(cv - 257)) = value;
    else
        put_cv(cv, value);
    return true;
}

void Decoder::start_set() {
    set_.clear();
    set_open_ = true;
}

bool Decoder::add_to_set(int cv, Byte value) {
    if (!set_open_) return false;
    const auto found = std::ranges::find(set_, cv, &Set_Cv::cv);
    if (found != set_.end()) {
        found->value = value;
        return true;
    }
    if (set_.size() >= set_limits[static_cast<std::size_t>(traits_.capacity_class)]) return false;
    set_.push_back({cv, value});
    return true;
}

bool Decoder::end_set() { return std::exchange(set_open_, false); }

} // namespace decoder_sim
