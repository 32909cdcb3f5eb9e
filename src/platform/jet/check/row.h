#pragma once

#include "platform/jet/check/definition.h"

namespace jet::check {

/// What is wrong with one row or value; the caller adds where it is.
struct Problem {
    What what;
    std::string words;
};

struct Value {
    bool null = true;
    bool truth = false; ///< of a Boolean, which has no bytes and is never null
    Bytes bytes{};
};

/// When the rows of a table have a table of variable columns at their end: only if the table had a
/// variable column when they were written.
class Row_Shape {
public:
    explicit Row_Shape(const Definition& table);
    enum class Trailer { absent, present, unknown };
    /// @param columns the count at the beginning of the row
    Trailer trailer(std::uint32_t columns) const;

private:
    std::uint32_t first_variable_ = 0xFFFF;         ///< lowest number of a variable column
    std::uint32_t first_deleted_variable_ = 0xFFFF; ///< lowest number it may have had
};

/// One row taken apart. Made to be used again for the next one.
class Row {
public:
    Row(const Format& format, const Definition& table)
        : format_(format), table_(table), shape_(table) {}

    /// Takes the row apart. @return why it cannot be read, or nothing. The bytes must outlive use.
    std::optional<Problem> take_apart(Bytes row);
    /// Of a row that was taken apart without a problem.
    Value value(const Column& column) const;
    /// Whether the row has null bits beyond its columns.
    bool has_stray_bits() const;

private:
    std::optional<Problem> read_trailer();
    void read_offsets_jet3(std::uint32_t slots);
    std::optional<Problem> check_offsets(std::uint32_t room_end);
    std::optional<Problem> check_values() const;
    bool bit(std::uint32_t column) const {
        return (row_.u8(bitmap_at_ + column / 8) >> column % 8 & 1) != 0;
    }
    std::uint32_t slots() const {
        return offsets_.empty() ? 0 : static_cast<std::uint32_t>(offsets_.size()) - 1;
    }

    const Format& format_;
    const Definition& table_;
    Row_Shape shape_;
    Bytes row_;
    std::uint32_t columns_ = 0;
    std::uint32_t bitmap_at_ = 0;
    std::uint32_t fixed_end_ = 0;
    std::vector<std::uint32_t> offsets_; ///< of slots 0, 1 ...; the last one is where values end
};

} // namespace jet::check
