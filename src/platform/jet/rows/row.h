#pragma once

#include "platform/jet/format/definition.h"
#include "platform/jet/pages/pager.h"

#include <cstdint>
#include <optional>

namespace jet {

/// What the upper bits of a slot say about its row.
enum class Slot_Kind : std::uint8_t {
    live,
    pointer, ///< the row has moved: its first four bytes say where
    moved,   ///< a row that has moved here, reached only through its pointer
    deleted
};

/// A page of rows: of a table, of long values or of maps.
class Data_Page {
public:
    Data_Page() = default;
    /// Throws damaged when it is no data page or its slots do not fit.
    Data_Page(Pager& pager, const Layout& layout, Page_Number number);

    Page_Number number() const { return view_.page(); }
    std::size_t count() const { return count_; }
    std::uint32_t owner() const { return view_.u32(4); }
    Slot_Kind kind(std::size_t slot) const {
        return static_cast<Slot_Kind>(view_.u16(slots_ + 2 * slot) >> 14U);
    }
    View row(std::size_t slot) const;

private:
    std::size_t offset(std::size_t slot) const { return view_.u16(slots_ + 2 * slot) & 0x1FFFU; }

    Page page_;
    View view_;
    std::size_t slots_ = 0;
    std::size_t count_ = 0;
};

/// A row as it stands in the file, cut into the bytes of its cells on demand.
class Row_View {
public:
    Row_View() = default;
    /// Throws damaged when the row is too short for what it claims.
    Row_View(View row, const Definition& definition);

    /// False: the cell is null (Boolean: false), or the row is older than the column.
    bool has(const Column_Record& column) const {
        if (column.number >= columns_) return false;
        const auto bits = load_u8(row_.bytes().data() + bitmap_ + column.number / 8U);
        return (unsigned{bits} >> column.number % 8U & 1U) != 0;
    }
    /// The bytes of a cell that is not null.
    View cell(const Column_Record& column) const {
        return column.fixed() ? row_.part(count_size_ + column.offset, column.fixed_size())
                              : variable(column.slot);
    }
    View bytes() const { return row_; }

private:
    View variable(std::size_t slot) const;
    std::size_t offset(std::size_t slot) const;
    std::size_t offset_jet3(std::size_t slot) const;

    View row_;
    std::size_t count_size_ = 2;
    std::size_t columns_ = 0;
    std::size_t bitmap_ = 0;
    std::size_t slots_ = 0; ///< variable slots that the row has
    std::size_t first_ = 0; ///< where the offset of slot 0 stands; the others lie before it
    std::size_t jumps_ = 0; ///< Jet 3: bytes that add 256 to the offsets of a long row
};

/// Finds rows of one table by their place and follows those that have moved.
class Row_Source {
public:
    Row_Source(Pager& pager, const Definition& definition)
        : pager_(&pager), definition_(&definition) {}

    /// Goes to a page of the table. Throws damaged when it belongs to something else.
    const Data_Page& page(Page_Number number);
    /// Goes to a row by its original slot. @return false when there is none.
    [[nodiscard]] bool find(Row_Place id);
    Row_Place id() const { return id_; }
    /// Where the bytes of the row really stand.
    Row_Place place() const { return place_; }
    const Row_View& row() const { return row_; }
    const Definition& definition() const { return *definition_; }
    Pager& pager() const { return *pager_; }

private:
    void follow(Row_Place from, const View& pointer);
    Data_Page own_page(Page_Number number);

    Pager* pager_;
    const Definition* definition_;
    Data_Page page_;
    Data_Page target_; ///< the page of a row that has moved
    Row_View row_;
    Row_Place id_;
    Row_Place place_;
};

} // namespace jet
