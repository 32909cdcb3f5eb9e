#include "platform/jet/check/usage_map.h"

#include "platform/jet/check/data_page.h"

namespace jet::check {

namespace {

enum Kind : std::uint32_t { inline_bits = 0, references = 1 };
constexpr std::size_t bits_at = 5, references_at = 1, map_page_bits_at = 4;

/// Collects the pages of one map.
class Reader {
public:
    Reader(Inspection& inspection, const std::string& subject, std::uint32_t seen_on, bool global)
        : inspection_(inspection), subject_(subject), seen_on_(seen_on), global_(global) {}

    bool read(Bytes row) {
        const std::uint32_t kind = row.u8(0);
        if (kind == inline_bits && row.size() >= bits_at) {
            first_page_ = row.u32(1);
            add_bits(row.from(bits_at), first_page_);
            return true;
        }
        if (kind != references) {
            inspection_.findings.fault(What::map_kind, seen_on_,
                                       words("The map of ", subject_, " on page ", seen_on_,
                                             " is of the unknown kind ", kind, "."));
            return false;
        }
        for (std::size_t k = 0; references_at + 4 * k + 4 <= row.size(); ++k)
            if (!follow(row.u32(references_at + 4 * k), k)) return false;
        return true;
    }

    Page_List pages() && { return std::move(pages_); }
    std::uint32_t first_page() const { return first_page_; }

private:
    bool follow(std::uint32_t page, std::size_t position) {
        if (page == 0) return true;
        if (!inspection_.ledger.exists(page)) {
            inspection_.findings.warning(What::map_reference, seen_on_,
                                         words("The map of ", subject_, " on page ", seen_on_,
                                               " refers to page ", page, " beyond the file."));
            return true;
        }
        if (!inspection_.ledger.claim(page, {.use = Owner::Use::map_bits})) return false;
        const Page held = inspection_.pages.page(page);
        if (held.bytes.u16(0) != (0x100 | page_type::map)) {
            inspection_.findings.fault(What::page_kind, page,
                                       words("Page ", page, " holds bits of the map of ", subject_,
                                             " but has type ", held.bytes.u8(0), "."));
            return false;
        }
        add_bits(held.bytes.from(map_page_bits_at),
                 std::uint64_t{inspection_.format.pages_per_map_page()} * position);
        return true;
    }

    void add_bits(Bytes bits, std::uint64_t first) {
        for (std::size_t i = 0; i < bits.size(); ++i) {
            if (bits.u8(i) == 0) continue;
            for (std::size_t bit = 0; bit < 8; ++bit)
                if ((bits.u8(i) >> bit & 1) != 0) add_page(first + 8 * i + bit);
        }
    }

    void add_page(std::uint64_t page) {
        if (page < inspection_.ledger.pages()) {
            pages_.push_back(static_cast<std::uint32_t>(page));
        } else if (!global_ && !reported_) {
            reported_ = true;
            inspection_.findings.fault(What::map_beyond_file, seen_on_,
                                       words("The map of ", subject_, " on page ", seen_on_,
                                             " lists page ", page, " beyond the file."));
        }
    }

    Inspection& inspection_;
    const std::string& subject_;
    std::uint32_t seen_on_;
    bool global_;
    Page_List pages_;
    std::uint32_t first_page_ = 0;
    bool reported_ = false;
};

// A page of map rows is shared by the maps on it; its layout is checked when the first one comes.
bool open_map_page(Inspection& inspection, std::uint32_t page) {
    constexpr Owner owner{.use = Owner::Use::map_rows};
    if (inspection.ledger.owner(page) == owner) return true;
    return inspection.ledger.claim(page, owner) &&
           check_data_page(inspection, page, map_row_page, inspection.ledger.describe(owner));
}

} // namespace

std::optional<Page_List> read_usage_map(Inspection& inspection, std::uint32_t pointer,
                                        const std::string& subject) {
    const Row_Place place = Row_Place::from(pointer);
    const auto refuse = [&](What what, std::string_view why) -> std::optional<Page_List> {
        inspection.findings.fault(what, place.page,
                                  words("The map of ", subject, " should be row ", place.row,
                                        " of page ", place.page, ", ", why, "."));
        return {};
    };
    if (place.page == 0 || !inspection.ledger.exists(place.page))
        return refuse(What::map_pointer, "which is no page of maps");
    if (!open_map_page(inspection, place.page)) return {};
    const Page held = inspection.pages.page(place.page);
    const Data_Page page(inspection.format, held.bytes);
    if (place.row >= page.slot_count()) return refuse(What::map_pointer, "which has no such row");
    const Slot slot = page.slot(place.row);
    if (slot.flags != 0) return refuse(What::map_pointer, "but that row is deleted");
    if (!inspection.map_rows.mark(place.page, place.row))
        return refuse(What::map_shared, "where another map is kept already");
    Reader reader(inspection, subject, place.page, false);
    if (!reader.read(page.row(slot))) return {};
    return std::move(reader).pages();
}

std::optional<Global_Map> read_global_map(Inspection& inspection) {
    const Owner owner{.use = Owner::Use::global_map};
    inspection.ledger.claim(1, owner);
    const std::string subject = "free pages";
    if (!check_data_page(inspection, 1, global_map_page, inspection.ledger.describe(owner)))
        return {};
    const Page held = inspection.pages.page(1);
    const Data_Page page(inspection.format, held.bytes);
    Reader reader(inspection, subject, 1, true);
    if (page.slot_count() == 0 || page.slot(0).flags != 0) {
        inspection.findings.fault(What::map_pointer, 1, "The map of free pages is not on page 1.");
        return {};
    }
    if (!reader.read(page.row(page.slot(0)))) return {};
    Global_Map map{.free = std::vector<bool>(inspection.ledger.pages()),
                   .first_page = reader.first_page()};
    for (const std::uint32_t free : std::move(reader).pages()) map.free[free] = true;
    return map;
}

} // namespace jet::check
