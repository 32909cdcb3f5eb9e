#include "store/pasting.h"

#include "store/set_name.h"

#include <variant>

namespace store {

namespace {

/// Takes the objects of a clipboard text one after the other. @return false: it ends here
class Paster {
public:
    Paster(clsDBConn& library, std::int16_t ResCV, int name_width, Paste_Report& report)
        : library_(library), ResCV_(ResCV), name_width_(name_width), report_(report) {}

    bool operator()(const Pasted_Set& set) {
        const QString name = fitted_name(set.name, name_width_);
        std::int16_t number = set.number;
        const std::int32_t SetID = library_.DB_Add_CVSet(name, number, ResCV_);
        if (SetID == 0) return false;
        library_.AktCVSetID(SetID);
        report_.last_set = SetID;
        report_.names_cut += name.size() < set.name.size() ? 1 : 0;
        ++report_.sets;
        return true;
    }

    bool operator()(CVRec cv) {
        if (library_.AktCVSetID() == 0)
            ++report_.cvs_without_set;
        else
            report_.cvs += library_.DB_Write_CV(cv) ? 1 : 0;
        return true;
    }

private:
    clsDBConn& library_;
    std::int16_t ResCV_;
    int name_width_;
    Paste_Report& report_;
};

} // namespace

Paste_Report paste(clsDBConn& library, const Pasted& pasted, std::int16_t ResCV) {
    const std::int32_t current = library.AktCVSetID();
    const int name_width = library.set_name_width();
    if (name_width == 0 && library.Connection_Active())
        return {}; // names must not be cut to nothing because it is unknown
    Paste_Report report;
    Paster paster(library, ResCV, name_width, report);
    Operation operation(library);
    for (const auto& object : pasted.objects)
        if (!std::visit(paster, object)) break;
    report.kept = operation.keep();
    if (report.kept) return report;
    if (library.Connection_Active()) library.AktCVSetID(current);
    return {};
}

} // namespace store
