#include "scripts/script_summary.h"

#include "app/mod_main.h"
#include "scripts/catalogue/commands.h"

#include <QStringList>
#include <set>

namespace scripts {
namespace {

namespace known = scripts_catalogue;

constexpr std::int32_t queries_key = 4;
constexpr std::int32_t switches_output = 15;

using Numbers = std::set<int>;

QString cv_name(int cv) { return QStringLiteral("CV#%1").arg(cv); }

QString key_name(int entry) {
    constexpr int first_cv = 30; ///< entry of the list of keys
    return entry < first_cv ? known::KeyName(entry)
                            : cv_name(entry - first_cv + known::first_script_cv);
}

QString joined(const Numbers& numbers, QString (*name)(int)) {
    QStringList names;
    for (const int number : numbers) names.append(name(number));
    names.removeAll({}); // of what there is not
    return names.join(u',');
}

bool is_script_cv(int cv) {
    return cv >= known::first_script_cv && cv < known::first_script_cv + known::script_cvs;
}

} // namespace

Script_Summary summary(const cls_script& script) {
    Numbers keys, outputs, output_cvs, cvs;
    for (int place = 0; place < script.StateCount; ++place) {
        const cls_Scriptstate& line = script.GetState(place);
        for (int which = 0; which < line.CVRefCount(); ++which)
            if (const int cv = line.GetCVRef(which); is_script_cv(cv)) cvs.insert(cv);
        if (line.GetCommand() == queries_key) keys.insert(line.key());
        if (line.GetCommand() != switches_output) continue;
        const int cv = line.used_cv(0);
        (cv == 0 ? outputs : output_cvs).insert(cv == 0 ? line.GetPar(0) : cv);
    }
    QStringList switched{joined(outputs, app::FA_Name), joined(output_cvs, cv_name)};
    switched.removeAll({});
    return {.keys = joined(keys, key_name),
            .outputs = switched.join(u','),
            .cvs = joined(cvs, [](int cv) { return QString::number(cv); })};
}

} // namespace scripts
