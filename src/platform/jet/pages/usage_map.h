#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/pages/pager.h"

#include <functional>
#include <optional>
#include <vector>

namespace jet {

class Page_Space;

/// A set of pages, kept as a row of bits on a page of map rows: either the bits themselves from a
/// first page on (inline), or the numbers of pages that hold nothing but bits (references). Every
/// call looks at the file as it is; nothing is kept beside it.
///
/// All calls throw Error (damaged) when row or page are not what they must be.
class Usage_Map {
public:
    Usage_Map(Pager& pager, Row_Place place) : pager_(&pager), place_(place) {}

    Row_Place place() const { return place_; }
    bool contains(Page_Number page) const;
    /// The lowest page of the set that is not below `from`; nothing at the end. Pages beyond the
    /// end of the file are passed over.
    std::optional<Page_Number> next_from(Page_Number from) const;
    std::vector<Page_Number> pages() const; ///< ascending
    /// The highest page whose bit is there and set (or clear), also one beyond the end of the file.
    std::optional<std::uint64_t> last(bool set) const;

    /// Adds a page, lengthening or converting the map as needed; nothing happens if it is there.
    void add(Page_Space& space, Page_Number page);
    /// Takes a page out; nothing happens if it is not there.
    void remove(Page_Number page);

    /// Appends an empty inline map to `near`, if that is a page of map rows with room, else to a
    /// new page of map rows. `near` = 0: always to a new page.
    static Usage_Map make(Pager& pager, Page_Space& space, Page_Number near);

private:
    friend class Page_Space;

    /// How a map grows. The global map holds what is free: bits past its end mean "free", bits
    /// before its first page "in use"; in the maps of owners both mean "not ours".
    struct Growth {
        bool global;
        std::size_t longest; ///< bytes of an inline row before references take over
        std::function<Page_Number()> take_page;
    };

    [[nodiscard]] bool set(Page_Number page, bool on);
    void put(Page_Number page, bool on); ///< one that the map has a place for; else damaged
    void cover(Page_Number page, const Growth& growth);
    [[nodiscard]] bool stretch(Page_Number page, const Growth& growth);
    void refer(Page_Number page, const Growth& growth);
    void add_reference(std::size_t span, const Growth& growth);
    std::size_t reference_place(std::size_t span);

    Pager* pager_;
    Row_Place place_;
};

} // namespace jet
