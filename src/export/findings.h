#pragma once

#include "export/export_project.h"

namespace vqx_export {

/// Everything in the library that the format cannot hold, in the order of sets, scripts and lines.
/// Every entry of `script_sets` has its set in `sets` and that set's number.
std::vector<Refusal> find_refusals(const store::cls_Sets_Coll& sets,
                                   const scripts::cls_Script_Sets& script_sets);

/// Groups of sets with one reset CV and number, and of sets with scripts and one number.
std::vector<Equal_Keys> find_equal_keys(const store::cls_Sets_Coll& sets,
                                        const scripts::cls_Script_Sets& script_sets);

} // namespace vqx_export
