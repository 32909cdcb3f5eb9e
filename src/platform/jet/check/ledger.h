#pragma once

#include "platform/jet/check/findings.h"

#include <compare>
#include <map>
#include <vector>

namespace jet::check {

/// What a page in use is for.
struct Owner {
    enum class Use : std::uint8_t {
        none,
        header,
        global_map,
        map_rows,   ///< rows of usage maps, shared by tables
        map_bits,   ///< page of bits of a map of references
        definition, ///< of `table`
        data,       ///< of `table`
        index,      ///< real index `part` of `table`
        long_values ///< of the column with the number `part` of `table`
    };
    Use use = Use::none;
    std::uint16_t part = 0;
    std::uint32_t table = 0; ///< page of its definition
    auto operator<=>(const Owner&) const = default;
};

/// Who owns which page. Every page in use has exactly one owner; every claim on a page that is
/// taken or not there is refused, which also keeps each walk over pages from coming by twice.
class Ledger {
public:
    Ledger(Findings& findings, std::uint32_t pages) : findings_(findings), owners_(pages) {}

    std::uint32_t pages() const { return static_cast<std::uint32_t>(owners_.size()); }
    bool exists(std::uint32_t page) const { return page < owners_.size(); }
    Owner owner(std::uint32_t page) const { return exists(page) ? owners_[page] : Owner{}; }

    /// Gives the page to the owner. @return false, with a fault, when another one has it; a page
    /// beyond the file is the caller's to report.
    bool claim(std::uint32_t page, Owner owner);
    /// The words by which sentences call this owner.
    void name(Owner owner, std::string words) { names_[owner] = std::move(words); }
    std::string describe(Owner owner) const;

private:
    Findings& findings_;
    std::vector<Owner> owners_;
    std::map<Owner, std::string> names_;
};

} // namespace jet::check
