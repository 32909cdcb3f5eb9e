#pragma once

#include "platform/jet/check/findings.h"
#include "platform/jet/check/format.h"
#include "platform/jet/check/ledger.h"
#include "platform/jet/check/pages.h"

#include <bitset>
#include <unordered_map>

namespace jet::check {

/// Slots of pages that something has used already; a row number has one byte.
class Slot_Marks {
public:
    /// @return false when the slot was marked before.
    bool mark(std::uint32_t page, std::uint32_t slot) {
        std::bitset<256>& slots = marks_[page];
        const bool fresh = !slots[slot & 0xFF];
        slots.set(slot & 0xFF);
        return fresh;
    }
    bool marked(std::uint32_t page, std::uint32_t slot) const {
        const auto found = marks_.find(page);
        return found != marks_.end() && found->second[slot & 0xFF];
    }

private:
    std::unordered_map<std::uint32_t, std::bitset<256>> marks_;
};

/// What every step of one check works with.
struct Inspection {
    Pages& pages;
    const Format& format;
    Findings& findings;
    Ledger& ledger;
    std::uint32_t code_page = 0; ///< of all text, Jet 3 only
    Slot_Marks map_rows{};       ///< rows of usage maps that have an owner
    bool all_seen = true;        ///< false: a fault kept pages from being claimed
};

/// A row pointer as it stands in rows, tables and maps: `u8 row, u24 page`.
struct Row_Place {
    std::uint32_t page = 0;
    std::uint32_t row = 0;
    static Row_Place from(std::uint32_t pointer) { return {pointer >> 8, pointer & 0xFF}; }
    bool operator==(const Row_Place&) const = default;
};

/// A row as sentences call it; written out only when there is something to say.
struct Row_Name {
    const std::string& table;
    Row_Place place;
    friend std::ostream& operator<<(std::ostream& out, const Row_Name& name) {
        return out << name.table << ", page " << name.place.page << ", row " << name.place.row;
    }
};

} // namespace jet::check
