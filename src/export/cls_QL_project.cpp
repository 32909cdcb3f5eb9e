#include "export/cls_QL_project.h"

#include "export/msgpack/error.h"
#include "scripts/cls_Script_Sets.h"
#include "store/cls_Sets_Coll.h"

#include <utility>

namespace vqx_export {
namespace {

constexpr std::size_t ext_step = 4096; // the decoder's memory is erased in pieces of this size

std::size_t round_up(std::size_t length) { return (length + ext_step - 1) / ext_step * ext_step; }

std::uint8_t one_byte(std::int32_t number) {
    if (number < 0 || number > 255)
        throw msgpack::Error(msgpack::Failure::overflow, std::to_string(number),
                             "a key of the script map has one byte");
    return static_cast<std::uint8_t>(number);
}

void write_set(msgpack::cls_wr_msgpack& to, const store::cls_CV_Set& set, Left_Out_CVs& left_out) {
    const auto pages = dcc_pages(set, left_out);
    to.Add_ItemArray(2);
    to.Add_Int(set.ResCV);
    to.Add_Int(set.Nummer);
    to.Add_Map(pages.size());
    for (const auto& page : pages) {
        to.Add_ItemArray(2);
        to.Add_Int(page.high);
        to.Add_Int(page.low);
        to.Add_ByteArray(page.pairs.size());
        to.Add_Bytes_to_Array(page.pairs);
    }
}

} // namespace

Left_Out_CVs cls_QL_project::Set_DCC_Set(const store::cls_Sets_Coll& sets) {
    Left_Out_CVs left_out;
    left_out.out_of_range = sets.CVs_Left_Out;
    dcc_.Clear();
    dcc_.Add_Map(static_cast<std::size_t>(sets.Count()));
    for (const auto& set : sets) write_set(dcc_, *set, left_out);
    return left_out;
}

void cls_QL_project::Set_Script_Set(std::shared_ptr<scripts::cls_Script_Sets> sets) {
    script_sets_ = std::move(sets);
    script_map_.Clear();
    if (!has_scripts()) return;
    script_map_.Add_Map(static_cast<std::size_t>(script_sets_->Count()));
    for (const auto& set : *script_sets_) {
        set->Write_Scripts();
        script_map_.Add_uInt8(one_byte(set->Nummer));
        script_map_.Add_ItemArray(2);
        set->AddrSlot = script_map_.Add_uInt32_Addr();
        script_map_.Add_uInt32(static_cast<std::uint32_t>(set->Datalen()));
    }
}

bool cls_QL_project::has_scripts() const { return script_sets_ && script_sets_->Count() > 0; }

cls_QL_project::Directory_Slots cls_QL_project::write_directory() {
    Directory_Slots slots;
    main_.Clear();
    if (file_type == File_Type::oem) {
        main_.Add_Map(2);
        main_.Add_Ident_uInt32("main");
        slots.main = main_.Add_uInt32_Addr();
        main_.Add_Ident_uInt32("ext");
        slots.ext = main_.Add_uInt32_Addr();
    }
    directory_.Clear();
    directory_.Add_Map(has_scripts() ? 2 : 1);
    directory_.Add_Ident_uInt32("dcc");
    slots.dcc = directory_.Add_uInt32_Addr();
    if (has_scripts()) {
        directory_.Add_Ident_uInt32("scr");
        slots.scr = directory_.Add_uInt32_Addr();
    }
    return slots;
}

void cls_QL_project::place_scripts(msgpack::Bytes& body, std::size_t& position) {
    script_map_.Skip_Array(position);
    for (const auto& set : *script_sets_) {
        script_map_.Set_uInt32_Addr(set->AddrSlot, position);
        set->Get_Array_Add(body, position);
    }
    script_map_.Array_Override(body);
}

msgpack::Bytes cls_QL_project::Get_Array() {
    const auto slots = write_directory();
    const auto oem = file_type == File_Type::oem;
    msgpack::Bytes body;
    std::size_t position = 0;
    if (oem) main_.Skip_Array(position);
    if (oem) main_.Set_uInt32_Addr(slots.main, position);
    directory_.Skip_Array(position);
    directory_.Set_uInt32_Addr(slots.dcc, position);
    dcc_.Get_Array_Add(body, position);
    if (has_scripts()) {
        directory_.Set_uInt32_Addr(slots.scr, position);
        place_scripts(body, position);
    }
    if (oem) {
        main_.Set_uInt32_Addr(slots.ext, round_up(position));
        main_.Array_Override(body);
    }
    directory_.Array_Override(body);
    return body;
}

} // namespace vqx_export
