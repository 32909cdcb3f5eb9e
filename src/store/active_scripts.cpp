#include "store/active_scripts.h"

#include "platform/failure/sure.h"

namespace store {
namespace {

constexpr std::int16_t flag_cvs[] = {837, 843};
constexpr int flags_in_cv = 8;

// Other programs store values that no byte holds; the decoder would see their low byte.
unsigned byte_of(std::int16_t value) { return static_cast<unsigned>(value) & 0xFFU; }

} // namespace

Active_Scripts active_scripts(clsDBConn& library) {
    unsigned off = 0;
    if (library.Connection_Active() && library.AktCVSetID() != 0)
        off = byte_of(Get_CV_Wert(library, flag_cvs[0])) |
              byte_of(Get_CV_Wert(library, flag_cvs[1])) << flags_in_cv;
    return ~Active_Scripts(off);
}

CVRec store_script_active(clsDBConn& library, int position, bool active) {
    SURE(position >= 1 && position <= static_cast<int>(Active_Scripts().size()));
    const int flag = (position - 1) % flags_in_cv;
    Operation operation(library);
    if (!library.expect_script_positions()) return {};
    // The other flags are those that stand there when this is written.
    CVRec cv{.CVPageHi = 0, .CVPageLo = 1, .CVNr = flag_cvs[(position - 1) / flags_in_cv]};
    std::bitset<flags_in_cv> off(byte_of(Get_CV_Wert(library, cv.CVNr)));
    cv.CVWert =
        static_cast<std::int16_t>(off.set(static_cast<std::size_t>(flag), !active).to_ulong());
    const bool written = library.DB_Write_CV(cv);
    return operation.keep() && written ? cv : CVRec{};
}

} // namespace store
