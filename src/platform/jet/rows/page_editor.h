#pragma once

#include "platform/jet/rows/row.h"

#include <optional>
#include <span>

namespace jet {

/// Changes the rows of one page (of a table or of long values) of Jet 4. Rows are packed from the
/// end of the page downwards in the order of their slots; all free space is the gap before them.
class Page_Editor {
public:
    /// Throws damaged when the rows of the page overlap.
    Page_Editor(Pager& pager, Page_Number number);

    /// Makes the page an empty one of `owner`.
    void format(std::uint32_t owner);

    std::size_t free_bytes() const;
    bool fits(std::size_t length) const;
    /// Puts a row into the first deleted slot, else into a new one.
    /// @return nothing when there is no room, bytes of deleted rows counted as room.
    [[nodiscard]] std::optional<std::uint8_t> add(std::span<const std::byte> row, Slot_Kind kind);
    /// Gives a row other bytes. @return false (and nothing changed) when they do not fit.
    [[nodiscard]] bool replace(std::size_t slot, std::span<const std::byte> row, Slot_Kind kind);
    void remove(std::size_t slot);
    bool empty() const; ///< all slots are deleted

private:
    std::size_t count() const;
    std::size_t offset(std::size_t slot) const;
    std::size_t end(std::size_t slot) const; ///< where the row of the slot ends
    Slot_Kind kind(std::size_t slot) const;
    std::size_t lowest() const;
    std::size_t first_deleted() const; ///< count() if there is none
    std::size_t deleted_bytes() const;
    void set_slot(std::size_t slot, std::size_t offset, Slot_Kind kind);
    void resize(std::size_t slot, std::size_t length);
    void squeeze();
    void note_free();

    std::span<std::byte> page_;
};

} // namespace jet
