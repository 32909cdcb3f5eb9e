#pragma once

#include "protocol.h"

#include <array>
#include <map>
#include <optional>
#include <string_view>

namespace decoder_sim {

/// What one decoder is. Identity that is read as CVs stands in the CVs: 7 version, 8 manufacturer,
/// 65 sub-version, 250 type code, 251..253 serial number.
struct Traits {
    int type_code = 0;
    int size = 1024;             ///< highest CV: 256, 1023 or 1024
    std::optional<int> protocol; ///< nothing: does not answer the question
    int capacity_class = 0;      ///< 0: knows no CV sets and does not answer; above 7 answers only
};

/// One known type: its code and what stands behind it.
struct Example {
    int type_code;
    std::string_view what;
};
extern const std::array<Example, 9> examples;

/// Any code has a family, hence a size and what its decoders usually can.
/// @param type_code 0..255
Traits usual_traits(int type_code);

struct Set_Cv {
    int cv;
    int value;
    bool operator==(const Set_Cv&) const = default;
};

/// What a decoder remembers.
class Decoder {
public:
    explicit Decoder(const Traits& traits);

    const Traits& traits() const { return traits_; }
    bool understands_checksums() const;
    bool knows_sets() const { return traits_.capacity_class >= 1 && traits_.capacity_class <= 7; }

    /// Over track or SUSI; 257..512 as CV31 and CV32 choose. Nothing: there is no such CV.
    std::optional<Byte> read(int cv) const;
    /// Whether the decoder took it.
    bool write(int cv, Byte value);
    /// By hand, which also reaches what cannot be written. Page 0:0 is page 0:1.
    /// @param cv 1..1024, else std::out_of_range
    void put_cv(int cv, Byte value) { flat_.at(static_cast<std::size_t>(cv - 1)) = value; }
    Byte cv(int cv) const { return flat_.at(static_cast<std::size_t>(cv - 1)); }

    /// Begins the CV set anew.
    void start_set();
    /// A CV that is there already gets the value; false without a start, or when all is full.
    bool add_to_set(int cv, Byte value);
    bool end_set(); ///< false without a start
    const std::vector<Set_Cv>& set() const { return set_; }
    bool set_open() const { return set_open_; } ///< started and not ended: half a set

private:
    using Page = std::array<Byte, 256>;
    std::optional<std::pair<int, int>> other_page(int cv) const;

    Traits traits_;
    std::array<Byte, last_cv> flat_{};
    std::map<std::pair<int, int>, Page> pages_;
    std::vector<Set_Cv> set_;
    bool set_open_ = false;
};

} // namespace decoder_sim
