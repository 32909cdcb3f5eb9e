#include "platform/jet/check/data_page.h"

namespace jet::check {

namespace {

constexpr std::uint32_t offset_bits = 0x1FFF, most_slots = 256;

std::string shown(std::uint32_t table) {
    return table == long_value_page ? "the sign of long values" : words(table);
}

bool check_kind(Inspection& inspection, std::uint32_t number, Bytes bytes, std::uint32_t table,
                const std::string& use) {
    if (bytes.u16(0) != (0x100 | page_type::data)) {
        inspection.findings.fault(What::page_kind, number,
                                  words("Page ", number, " holds ", use,
                                        " but is no data page (type ", bytes.u8(0), ")."));
        return false;
    }
    const std::uint32_t found = Data_Page(inspection.format, bytes).table();
    if (found == table) return true;
    inspection.findings.fault(What::page_table, number,
                              words("Page ", number, " holds ", use, " but its table field says ",
                                    shown(found), " instead of ", shown(table), "."));
    return false;
}

bool check_slots(Inspection& inspection, std::uint32_t number, const Data_Page& page,
                 const std::string& use) {
    std::uint32_t lowest = inspection.format.page_size;
    for (std::uint32_t k = 0; k < page.slot_count(); ++k) {
        const Slot slot = page.slot(k);
        if (slot.begin > lowest || slot.begin < page.slots_end()) {
            inspection.findings.fault(What::slot_offset, number,
                                      words("Page ", number, " (", use, "), row ", k,
                                            ": begins at ", slot.begin, ", outside the room from ",
                                            page.slots_end(), " to ", lowest,
                                            " that the rows before it leave."));
            return false;
        }
        if ((slot.flags & ~Slot::deleted) != 0)
            inspection.findings.fault(
                What::slot_flags, number,
                words("Page ", number, " (", use, "), row ", k, ": unknown flag of its slot."));
        lowest = slot.begin;
    }
    const std::uint32_t free = lowest - page.slots_end();
    if (page.free() != free)
        inspection.findings.fault(What::free_field, number,
                                  words("Page ", number, " (", use, ") has ", free,
                                        " free bytes, but says ", page.free(), "."));
    return true;
}

} // namespace

std::uint32_t Data_Page::offset(std::uint32_t number) const {
    return bytes_.u16(format_.slots + std::size_t{2} * number) & offset_bits;
}

Slot Data_Page::slot(std::uint32_t number) const {
    const std::uint32_t entry = bytes_.u16(format_.slots + std::size_t{2} * number);
    return {.begin = entry & offset_bits,
            .end = number == 0 ? format_.page_size : offset(number - 1),
            .flags = entry & ~offset_bits};
}

bool check_data_page(Inspection& inspection, std::uint32_t number, std::uint32_t table,
                     const std::string& use) {
    const Page held = inspection.pages.page(number);
    if (!check_kind(inspection, number, held.bytes, table, use)) return false;
    const Data_Page page(inspection.format, held.bytes);
    if (page.slot_count() <= most_slots && page.slots_end() <= inspection.format.page_size)
        return check_slots(inspection, number, page, use);
    inspection.findings.fault(What::slot_table, number,
                              words("Page ", number, " (", use, ") claims ", page.slot_count(),
                                    " rows, more than a page can have."));
    return false;
}

} // namespace jet::check
