#pragma once

#include "platform/jet/check/row.h"
#include "platform/jet/check/usage_map.h"

namespace jet::check {

/// The long values of one Memo or OLE column: its pages, and which of their rows are used.
class Long_Values {
public:
    /// Claims and checks the pages that the column's maps list.
    Long_Values(Inspection& inspection, const Definition& table, const Column& column);

    /// Checks one value by what stands in the row and marks the rows that it uses; `where` names
    /// the row in sentences. @return false, with a fault, when it cannot be read.
    bool use(Bytes stored, const Row_Name& where);
    /// The first bytes of a value that was found good, at most `limit`.
    std::vector<std::byte> read(Bytes stored, std::size_t limit);
    /// Warns of rows that no value uses. For the end, when all values have been seen.
    void report_unused();
    std::uint32_t column() const { return owner_.part; }

private:
    struct Head;
    struct Piece {
        Page keep;
        Bytes data;
        Row_Place next;
        bool found = false;
    };
    Piece piece(Row_Place place, bool chained);
    bool use_piece(const Head& head, Row_Place place, const Row_Name& where);
    bool own(std::uint32_t page, const Row_Name& where);
    bool refuse(What what, std::uint32_t page, const Row_Name& where, const std::string& why);
    void check_stamp(const Head& head, const Row_Name& where);
    void read_maps(const Definition& table);

    Inspection& inspection_;
    Owner owner_;
    std::string words_;
    bool mapped_ = false;
    bool sound_ = true;
    Page_List pages_;
    Slot_Marks used_;
};

/// Warns of pages in the free-space map behind `pointer` that are not in `owned`, the ascending
/// pages of the same table or column. 0:0 means that there is no such map.
void check_free_map(Inspection& inspection, std::uint32_t pointer, const Page_List& owned,
                    const std::string& subject);

} // namespace jet::check
