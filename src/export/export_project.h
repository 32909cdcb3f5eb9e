#pragma once

#include "export/cls_QL_project.h"
#include "platform/files/disk.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace vqx_export {

/// Why no file is written. The numbers of the model are wider than those of the decoder.
enum class Reason {
    set_number_negative,
    reset_cv_negative,
    set_number_above_255, ///< of a set with scripts: the key of the script map is one byte
    too_many_scripts,     ///< more than 16 in one set
    too_many_lines,       ///< more than 256 in one script
    command,              ///< outside 0..255
    parameter,            ///< outside 0..255
    too_large             ///< more sets, pages or bytes than the counts of the format can tell
};

/// One thing that keeps the file from being written, with its place.
struct Refusal {
    Reason reason = Reason::too_large;
    std::int32_t SetID = 0;
    QString set_name = {};
    std::int32_t set_number = 0;
    std::int32_t script = 0;    ///< position in the set, from 1; 0 where it is about the set
    std::int32_t ScriptID = 0;  ///< the model of all scripts holds no names
    std::int32_t line = -1;     ///< state number, from 0; -1 where it is about the script or set
    std::int32_t parameter = 0; ///< 1..7 for Reason::parameter, else 0
    std::int64_t value = 0;     ///< the number that does not fit
};

/// Sets that the decoder cannot tell apart. They are written all the same.
struct Equal_Keys {
    enum class Map { cvs, scripts };
    Map map = Map::cvs;
    std::int32_t reset_cv = 0; ///< for Map::cvs
    std::int32_t set_number = 0;
    std::vector<QString> set_names; ///< two or more
};

/// What became of an export. `written` and nothing else means that all went well and in full.
struct [[nodiscard]] Report {
    bool written = false;
    std::vector<Refusal> refusals; ///< not empty: no file was written, an old one stands as it was
    /// Of disk or folder. An old file stands as it was, or, when only the last sync of the folder
    /// was refused, the new one stands whole.
    std::optional<files::Error> failure;
    Left_Out_CVs left_out_cvs;
    std::int32_t left_out_scripts = 0; ///< of sets that are gone
    std::int32_t left_out_states = 0;  ///< script lines that the model has no place for
    std::vector<Equal_Keys> equal_keys;
    std::int32_t sets = 0;
    std::int32_t sets_with_scripts = 0;
};

/// Saves all sets with their scripts as one decoder project file at `path` (UTF-8), in one step.
///
/// `sets` decides which number a set has and which sets exist; entries of `script_sets` take their
/// number from it. Fields of `script_sets` that belong to the export (Nummer, Data, AddrSlot)
/// change.
/// @throws nothing that has to do with disk or data: all of that is in the report
Report export_project(const store::cls_Sets_Coll& sets, const scripts::cls_Script_Sets& script_sets,
                      File_Type type, files::Disk& disk, const std::string& path);

} // namespace vqx_export
