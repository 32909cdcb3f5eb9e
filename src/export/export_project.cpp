#include "export/export_project.h"

#include "export/cls_VQX_QL.h"
#include "export/findings.h"
#include "scripts/cls_Script_Sets.h"
#include "store/cls_Sets_Coll.h"

#include <map>

namespace vqx_export {
namespace {

/// What the writer of the format says, and not disk or folder.
bool is_of_format(failure::Kind kind) {
    return kind == failure::Kind::overflow || kind == failure::Kind::negative ||
           kind == failure::Kind::outside;
}

/// The script sets whose set exists, with the number that it has in the library.
std::shared_ptr<scripts::cls_Script_Sets> living(const scripts::cls_Script_Sets& script_sets,
                                                 const store::cls_Sets_Coll& sets, Report& report) {
    std::map<std::int32_t, std::int32_t> numbers;
    for (const auto& set : sets) numbers[set->SetID] = set->Nummer;
    auto kept = std::make_shared<scripts::cls_Script_Sets>();
    for (const auto& scripts : script_sets) {
        const auto number = numbers.find(scripts->SetID);
        if (number == numbers.end()) {
            report.left_out_scripts += scripts->Count();
            continue;
        }
        scripts->Nummer = number->second;
        report.left_out_states += scripts->States_Left_Out();
        kept->Add(scripts, QString::number(scripts->SetID));
    }
    return kept;
}

} // namespace

Report export_project(const store::cls_Sets_Coll& sets, const scripts::cls_Script_Sets& script_sets,
                      File_Type type, files::Disk& disk, const std::string& path) {
    Report report;
    const auto kept = living(script_sets, sets, report);
    report.sets = sets.Count();
    report.sets_with_scripts = kept->Count();
    report.equal_keys = find_equal_keys(sets, *kept);
    report.refusals = find_refusals(sets, *kept);
    if (!report.refusals.empty()) return report;
    try {
        cls_QL_project project;
        project.file_type = type;
        report.left_out_cvs = project.Set_DCC_Set(sets);
        project.Set_Script_Set(kept);
        cls_VQX_QL(disk).Write_VQX(path, project);
        report.written = true;
    } catch (const files::Error& error) {
        if (is_of_format(error.kind))
            report.refusals.emplace_back(); // the reason of a refusal without a place is the size
        else
            report.failure = error;
    }
    return report;
}

} // namespace vqx_export
