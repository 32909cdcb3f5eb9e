#include "platform/jet/check/long_value.h"

#include "platform/jet/check/data_page.h"

namespace jet::check {

/// What stands in the row: 12 bytes, followed by the data of a short value.
struct Long_Values::Head {
    explicit Head(Bytes stored)
        : length(stored.u32(0) & 0x3FFFFFFF), kind(stored.u32(0) >> 30),
          first(Row_Place::from(stored.u32(4))), stamp(stored.u32(8)) {}
    enum Kind : std::uint32_t { chain = 0, one_row = 1, in_row = 2 };
    static constexpr std::size_t size = 12;
    std::uint32_t length, kind;
    Row_Place first;
    std::uint32_t stamp;
};

void check_free_map(Inspection& inspection, std::uint32_t pointer, const Page_List& owned,
                    const std::string& subject) {
    if (pointer == 0) return;
    const auto free = read_usage_map(inspection, pointer, "free space in " + subject);
    if (!free) return;
    for (const std::uint32_t page : *free)
        if (!std::ranges::binary_search(owned, page)) {
            inspection.findings.warning(What::free_map_not_owned, page,
                                        words("The map of free space in ", subject, " lists page ",
                                              page, ", which is not one of its pages."));
            return;
        }
}

Long_Values::Long_Values(Inspection& inspection, const Definition& table, const Column& column)
    : inspection_(inspection), owner_{.use = Owner::Use::long_values,
                                      .part = static_cast<std::uint16_t>(column.number),
                                      .table = table.page},
      words_(inspection.ledger.describe(owner_)) {
    read_maps(table);
}

void Long_Values::read_maps(const Definition& table) {
    const auto maps = std::ranges::find(table.long_values, owner_.part, &Long_Value_Maps::column);
    if (maps == table.long_values.end() || maps->owned == 0) return;
    mapped_ = true;
    auto pages = read_usage_map(inspection_, maps->owned, words_);
    sound_ = pages.has_value();
    if (!pages) return;
    pages_ = std::move(*pages);
    for (const std::uint32_t page : pages_)
        sound_ = inspection_.ledger.claim(page, owner_) &&
                 check_data_page(inspection_, page, long_value_page, words_) && sound_;
    check_free_map(inspection_, maps->free, pages_, words_);
}

bool Long_Values::refuse(What what, std::uint32_t page, const Row_Name& where,
                         const std::string& why) {
    inspection_.findings.fault(what, page, words(where, ": its long value ", why, "."));
    return false;
}

// A column without a map gets its pages as its values lead to them.
bool Long_Values::own(std::uint32_t page, const Row_Name& where) {
    if (!inspection_.ledger.exists(page))
        return refuse(What::long_piece, page, where,
                      words("lies on page ", page, " beyond the file"));
    if (inspection_.ledger.owner(page) == owner_) return true;
    if (mapped_)
        return refuse(What::long_piece, page, where,
                      words("lies on page ", page, ", which belongs to ",
                            inspection_.ledger.describe(inspection_.ledger.owner(page))));
    if (!inspection_.ledger.claim(page, owner_)) return false;
    pages_.push_back(page);
    return check_data_page(inspection_, page, long_value_page, words_);
}

Long_Values::Piece Long_Values::piece(Row_Place place, bool chained) {
    constexpr std::size_t next = 4;
    Piece piece;
    if (!inspection_.ledger.exists(place.page)) return piece;
    piece.keep = inspection_.pages.page(place.page);
    const Data_Page page(inspection_.format, piece.keep.bytes);
    if (place.row >= page.slot_count() || page.slot(place.row).flags != 0) return piece;
    const Bytes row = page.row(page.slot(place.row));
    piece.found = !chained || row.size() >= next;
    piece.data = chained ? row.from(next) : row;
    if (chained) piece.next = Row_Place::from(row.u32(0));
    return piece;
}

bool Long_Values::use(Bytes stored, const Row_Name& where) {
    const Head head(stored);
    if (stored.size() < Head::size || head.kind > Head::in_row)
        return refuse(What::long_header, 0, where, "begins with a broken header");
    if (head.kind == Head::in_row) {
        if (stored.size() - Head::size >= head.length) return true;
        return refuse(What::long_header, 0, where,
                      words("should have ", head.length, " bytes, but the row holds ",
                            stored.size() - Head::size));
    }
    if (stored.size() != Head::size)
        return refuse(What::long_header, 0, where,
                      words("has a header of ", stored.size(), " bytes instead of 12"));
    return use_piece(head, head.first, where);
}

bool Long_Values::use_piece(const Head& head, Row_Place place, const Row_Name& where) {
    std::uint32_t left = head.length;
    std::vector<Row_Place> mine;
    const bool chained = head.kind == Head::chain;
    do {
        if (place == Row_Place{})
            return refuse(What::long_short, 0, where, words("ends ", left, " bytes too early"));
        if (!own(place.page, where)) return false;
        const Piece piece = this->piece(place, chained);
        const std::string row = words("row ", place.row, " of page ", place.page);
        if (!piece.found)
            return refuse(What::long_piece, place.page, where,
                          words("should go on in ", row, ", which is not there"));
        if (!used_.mark(place.page, place.row)) {
            const bool loop = std::ranges::find(mine, place) != mine.end();
            return refuse(loop ? What::long_loop : What::long_shared, place.page, where,
                          words("uses ", row, loop ? " twice" : ", which another value uses"));
        }
        mine.push_back(place);
        left -= std::min(left, static_cast<std::uint32_t>(piece.data.size()));
        place = piece.next;
    } while (chained && left > 0);
    if (left > 0)
        return refuse(What::long_short, head.first.page, where,
                      words("ends ", left, " bytes too early"));
    if (chained) check_stamp(head, where);
    return true;
}

void Long_Values::check_stamp(const Head& head, const Row_Name& where) {
    if (!inspection_.format.jet4) return;
    const Page page = inspection_.pages.page(head.first.page);
    if (page.bytes.u32(8) != head.stamp)
        inspection_.findings.warning(What::long_stamp, head.first.page,
                                     words(where, ": the stamp of its long value differs from ",
                                           "that of page ", head.first.page, "."));
}

std::vector<std::byte> Long_Values::read(Bytes stored, std::size_t limit) {
    const Head head(stored);
    const std::size_t wanted = std::min<std::size_t>(head.length, limit);
    std::vector<std::byte> out;
    const auto take = [&](Bytes data) {
        const Bytes part = data.part(0, wanted - out.size());
        out.insert(out.end(), part.span().begin(), part.span().end());
    };
    if (head.kind == Head::in_row) {
        take(stored.from(Head::size));
        return out;
    }
    const bool chained = head.kind == Head::chain;
    Row_Place place = head.first;
    while (out.size() < wanted && place != Row_Place{}) {
        const std::size_t before = out.size();
        const Piece piece = this->piece(place, chained);
        take(piece.data);
        if (out.size() == before) break;
        place = piece.next;
    }
    return out;
}

void Long_Values::report_unused() {
    if (!sound_) return;
    std::size_t unused = 0;
    std::uint32_t first = 0;
    for (const std::uint32_t number : pages_) {
        const Page held = inspection_.pages.page(number);
        const Data_Page page(inspection_.format, held.bytes);
        for (std::uint32_t k = 0; k < page.slot_count(); ++k)
            if (page.slot(k).flags == 0 && !used_.marked(number, k) && unused++ == 0)
                first = number;
    }
    if (unused > 0)
        inspection_.findings.warning(What::long_unused, first,
                                     words("Of ", words_, ", ", unused,
                                           " rows are used by no value; the first one is on page ",
                                           first, "."));
}

} // namespace jet::check
