#include "store/script_import.h"

#include "scripts/cls_script_coll.h"

namespace store {
namespace {

constexpr int parameter_without_column = scripts::cls_Scriptstate::stored_par_count;

void cut(QString& text, int width, Script_Import_Report& report) {
    if (text.size() <= width) return;
    text.truncate(width);
    ++report.texts_cut;
}

bool is_byte(std::int32_t number) { return number >= 0 && number <= 255; }

bool fits_decoder(const scripts::cls_Scriptstate& line) {
    bool fits = is_byte(line.GetCommand());
    for (int par = 0; par < scripts::cls_Scriptstate::stored_par_count; ++par)
        fits = fits && is_byte(line.GetPar(par));
    return fits;
}

bool add(clsDBConn& library, const scripts::cls_script& source, Script_Import_Report& report) {
    scripts::cls_script_coll& of_set = scripts::AktScripts();
    scripts::cls_script& script = of_set.AddScript();
    script.Import_vqr_2_vqx(source);
    cut(script.ScriptName, library.script_name_width(), report);
    for (int place = 0; place < script.StateCount; ++place) {
        scripts::cls_Scriptstate& line = script.GetState(place);
        cut(line.Info, library.script_info_width(), report);
        if (!fits_decoder(line)) ++report.values_wide;
        if (line.GetPar(parameter_without_column) != 0) ++report.sources_lost;
    }
    ++report.scripts;
    return library.DB_Add_Script(of_set.Count()) && library.DB_Save_Script_States(of_set.Count());
}

} // namespace

Script_Import_Report
import_scripts(clsDBConn& library, std::span<const std::shared_ptr<scripts::cls_script>> imported) {
    Script_Import_Report report;
    if (library.script_name_width() == 0) return report; // the columns are not known now
    {
        Operation operation(library);
        bool done = true;
        for (const auto& script : imported) done = done && add(library, *script, report);
        report.kept = done && operation.keep();
    }
    if (!report.kept) library.DB_Load_Scripts();
    return report;
}

} // namespace store
