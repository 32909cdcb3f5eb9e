#pragma once

#include "platform/jet/check/inspection.h"

namespace jet::check {

/// One slot of a data page.
struct Slot {
    std::uint32_t begin = 0, end = 0; ///< its bytes on the page
    std::uint32_t flags = 0;
    static constexpr std::uint32_t pointer = 0x4000, moved_in = 0x8000, deleted = 0xC000;
};

/// The slots of a page of type 1. What it says is to be trusted only after check_data_page().
class Data_Page {
public:
    Data_Page(const Format& format, Bytes bytes) : format_(format), bytes_(bytes) {}

    std::uint32_t table() const { return bytes_.u32(4); }
    std::uint32_t free() const { return bytes_.u16(2); }
    std::uint32_t slot_count() const { return bytes_.u16(format_.slot_count); }
    std::uint32_t slots_end() const { return format_.slots + 2 * slot_count(); }
    Slot slot(std::uint32_t number) const;
    Bytes row(const Slot& slot) const { return bytes_.part(slot.begin, slot.end - slot.begin); }

private:
    std::uint32_t offset(std::uint32_t number) const;

    const Format& format_;
    Bytes bytes_;
};

/// What the field at 4 of a data page says of its use.
inline constexpr std::uint32_t long_value_page = 0x4C41564C, map_row_page = 0, global_map_page = 1;

/// Checks type, owner field, slot table and free field of page `number`, which `use` calls by name.
/// @return whether its slots may be used.
bool check_data_page(Inspection& inspection, std::uint32_t number, std::uint32_t table,
                     const std::string& use);

} // namespace jet::check
