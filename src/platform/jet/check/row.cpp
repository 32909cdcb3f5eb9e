#include "platform/jet/check/row.h"

namespace jet::check {

Row_Shape::Row_Shape(const Definition& table) {
    std::size_t variable = 0;
    std::vector<bool> present(table.max_columns);
    for (const Column& column : table.columns) {
        if (column.number < present.size()) present[column.number] = true;
        if (column.fixed()) continue;
        ++variable;
        first_variable_ = std::min(first_variable_, column.number);
    }
    if (table.variable_slots <= variable) return;
    const auto gap = std::ranges::find(present, false);
    first_deleted_variable_ = static_cast<std::uint32_t>(gap - present.begin());
}

Row_Shape::Trailer Row_Shape::trailer(std::uint32_t columns) const {
    if (first_variable_ < columns) return Trailer::present;
    return first_deleted_variable_ < columns ? Trailer::unknown : Trailer::absent;
}

std::optional<Problem> Row::take_apart(Bytes row) {
    row_ = row;
    offsets_.clear();
    columns_ = format_.jet4 ? row.u16(0) : row.u8(0);
    const std::uint32_t bitmap = (columns_ + 7) / 8, head = format_.count_width;
    if (columns_ > table_.max_columns)
        return Problem{What::row_columns,
                       words("has ", columns_, " columns, its table at most ", table_.max_columns)};
    if (row.size() < head + bitmap)
        return Problem{What::row_short, words("has only ", row.size(), " bytes")};
    bitmap_at_ = static_cast<std::uint32_t>(row.size()) - bitmap;
    fixed_end_ = bitmap_at_;
    const Row_Shape::Trailer trailer = shape_.trailer(columns_);
    if (trailer == Row_Shape::Trailer::absent) return check_values();
    std::optional<Problem> problem = read_trailer();
    if (problem && trailer == Row_Shape::Trailer::unknown) {
        offsets_.clear();
        fixed_end_ = bitmap_at_;
        problem.reset();
    }
    return problem ? problem : check_values();
}

// From the end: null bits, number of slots, (Jet 3: jump bytes,) offsets of slots 0, 1 ..., end.
std::optional<Problem> Row::read_trailer() {
    const std::uint32_t width = format_.count_width;
    if (bitmap_at_ < 3 * width)
        return Problem{What::row_short, words("has only ", row_.size(), " bytes")};
    const std::uint32_t count_at = bitmap_at_ - width;
    const std::uint32_t slots = format_.jet4 ? row_.u16(count_at) : row_.u8(count_at);
    if (slots > table_.variable_slots)
        return Problem{
            What::row_slots,
            words("has ", slots, " variable columns, its table at most ", table_.variable_slots)};
    const std::uint32_t size = static_cast<std::uint32_t>(row_.size());
    const std::uint32_t jumps = format_.jet4 ? 0 : (size - 1) / 256;
    const std::uint32_t needed = width * (slots + 1) + jumps;
    if (count_at < needed + width)
        return Problem{What::row_short, words("is too short for ", slots, " variable columns")};
    if (format_.jet4)
        for (std::uint32_t i = 0; i <= slots; ++i)
            offsets_.push_back(row_.u16(count_at - 2 - 2 * i));
    else
        read_offsets_jet3(slots);
    return check_offsets(count_at - needed);
}

// Offsets have one byte; jump byte j is the first slot whose offset is at least 256 (j + 1).
void Row::read_offsets_jet3(std::uint32_t slots) {
    const std::uint32_t count_at = bitmap_at_ - 1;
    const std::uint32_t all = (static_cast<std::uint32_t>(row_.size()) - 1) / 256;
    const std::uint32_t first_at = count_at - all - 1;
    const std::uint32_t used = (first_at - slots) / 256 < all ? all - 1 : all;
    std::uint32_t jump = 0;
    for (std::uint32_t i = 0; i <= slots; ++i) {
        while (jump < used && row_.u8(count_at - 1 - jump) == i) ++jump;
        offsets_.push_back(row_.u8(first_at - i) + 256 * jump);
    }
}

std::optional<Problem> Row::check_offsets(std::uint32_t room_end) {
    std::uint32_t last = format_.count_width;
    for (const std::uint32_t offset : offsets_) {
        if (offset < last || offset > room_end)
            return Problem{What::row_offsets,
                           words("has a value at ", offset, ", outside the room from ", last,
                                 " to ", room_end)};
        last = offset;
    }
    fixed_end_ = offsets_.front();
    return {};
}

std::optional<Problem> Row::check_values() const {
    for (const Column& column : table_.columns) {
        if (column.is_boolean() || column.number >= columns_ || !bit(column.number)) continue;
        const std::uint32_t end = format_.count_width + column.fixed_offset + column.fixed_size();
        if (column.fixed() && end > fixed_end_)
            return Problem{What::row_fixed_part, words("ends its fixed part at ", fixed_end_,
                                                       ", inside column ", quoted(column.name))};
        if (!column.fixed() && column.slot >= slots())
            return Problem{What::row_slots,
                           words("has no place for its column ", quoted(column.name))};
    }
    return {};
}

Value Row::value(const Column& column) const {
    const bool set = column.number < columns_ && bit(column.number);
    if (column.is_boolean()) return {.null = false, .truth = set};
    if (!set) return {};
    if (column.fixed())
        return {.null = false,
                .bytes = row_.part(std::size_t{format_.count_width} + column.fixed_offset,
                                   column.fixed_size())};
    const std::uint32_t begin = offsets_[column.slot];
    return {.null = false, .bytes = row_.part(begin, offsets_[column.slot + 1] - begin)};
}

bool Row::has_stray_bits() const {
    return columns_ % 8 != 0 && row_.u8(bitmap_at_ + columns_ / 8) >> columns_ % 8 != 0;
}

} // namespace jet::check
