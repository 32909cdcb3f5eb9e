#pragma once

#include "export/dcc_pages.h"
#include "export/msgpack/cls_wr_msgpack.h"

#include <memory>

namespace scripts {
class cls_Script_Sets;
}
namespace store {
class cls_Sets_Coll;
}

namespace vqx_export {

/// Decides the magic of the file and whether its body starts with a main map.
enum class File_Type { oem = 0, user = 1 };

/// Builds the body of a decoder project file; docs/formats/vqx.md shows it byte by byte.
///
/// Numbers must fit what the format has for them (export_project looks first): Set_DCC_Set and
/// Set_Script_Set throw msgpack::Error and scripts::Error otherwise.
class cls_QL_project {
public:
    File_Type file_type = File_Type::oem;

    /// Writes the map of CV values anew from all sets. @return what found no place in it
    Left_Out_CVs Set_DCC_Set(const store::cls_Sets_Coll& sets);
    /// Keeps the script sets, packs their blocks and writes the map of the blocks.
    void Set_Script_Set(std::shared_ptr<scripts::cls_Script_Sets> sets);
    /// @return the body, all addresses filled in
    msgpack::Bytes Get_Array();

private:
    struct Directory_Slots {
        std::int32_t main = 0, ext = 0, dcc = 0, scr = 0;
    };

    bool has_scripts() const;
    Directory_Slots write_directory();
    void place_scripts(msgpack::Bytes& body, std::size_t& position);

    msgpack::cls_wr_msgpack main_;
    msgpack::cls_wr_msgpack directory_;
    msgpack::cls_wr_msgpack dcc_;
    msgpack::cls_wr_msgpack script_map_;
    std::shared_ptr<scripts::cls_Script_Sets> script_sets_;
};

} // namespace vqx_export
