#include "export/findings.h"

#include "scripts/cls_Script_Sets.h"
#include "store/cls_Sets_Coll.h"

#include <compare>
#include <map>
#include <utility>

namespace vqx_export {
namespace {

using scripts::cls_script;
using scripts::cls_script_coll;
using scripts::cls_Scriptstate;

bool is_byte(std::int32_t value) { return value >= 0 && value <= 255; }

/// Walks one set down to its script lines and notes what does not fit; knows the place it is at.
class Set_Inspector {
public:
    Set_Inspector(const store::cls_CV_Set& set, std::vector<Refusal>& found) : found_(found) {
        place_.SetID = set.SetID;
        place_.set_name = set.Name;
        place_.set_number = set.Nummer;
        if (set.Nummer < 0) refuse(Reason::set_number_negative, set.Nummer);
        if (set.ResCV < 0) refuse(Reason::reset_cv_negative, set.ResCV);
    }

    void inspect(const cls_script_coll& scripts) {
        if (scripts.Nummer > 255) refuse(Reason::set_number_above_255, scripts.Nummer);
        if (scripts.Count() > cls_script_coll::max_scripts)
            refuse(Reason::too_many_scripts, scripts.Count());
        for (const auto& script : scripts) {
            ++place_.script;
            place_.ScriptID = script->ScriptID;
            inspect(std::as_const(*script));
        }
    }

private:
    void inspect(const cls_script& script) {
        if (script.StateCount < 0 || script.StateCount > cls_script::max_states)
            return refuse(Reason::too_many_lines, script.StateCount);
        for (int line = 0; line < script.StateCount; ++line) {
            place_.line = line;
            inspect(script.GetState(line));
        }
        place_.line = -1;
    }

    void inspect(const cls_Scriptstate& state) {
        if (!is_byte(state.GetCommand())) refuse(Reason::command, state.GetCommand());
        for (int i = 0; i < cls_Scriptstate::par_count; ++i) {
            if (!is_byte(state.GetPar(i))) refuse(Reason::parameter, state.GetPar(i), i + 1);
        }
    }

    void refuse(Reason reason, std::int64_t value, std::int32_t parameter = 0) {
        auto& refusal = found_.emplace_back(place_);
        refusal.reason = reason;
        refusal.value = value;
        refusal.parameter = parameter;
    }

    Refusal place_;
    std::vector<Refusal>& found_;
};

/// By which the decoder knows the CVs of a set.
struct Cv_Key {
    std::int32_t reset_cv = 0;
    std::int32_t set_number = 0;
    auto operator<=>(const Cv_Key&) const = default;
};

/// Collects names under a key and hands out the groups of two and more.
template <typename Key>
class Groups {
public:
    void add(const Key& key, const QString& name) { names_[key].push_back(name); }

    template <typename Describe>
    void report(std::vector<Equal_Keys>& to, Equal_Keys::Map map, Describe describe) {
        for (auto& [key, names] : names_) {
            if (names.size() < 2) continue;
            auto& equal = to.emplace_back();
            equal.map = map;
            equal.set_names = std::move(names);
            describe(equal, key);
        }
    }

private:
    std::map<Key, std::vector<QString>> names_;
};

} // namespace

std::vector<Refusal> find_refusals(const store::cls_Sets_Coll& sets,
                                   const scripts::cls_Script_Sets& script_sets) {
    std::map<std::int32_t, const cls_script_coll*> scripts_of;
    for (const auto& scripts : script_sets) scripts_of[scripts->SetID] = scripts.get();
    std::vector<Refusal> found;
    for (const auto& set : sets) {
        Set_Inspector inspector(*set, found);
        const auto scripts = scripts_of.find(set->SetID);
        if (scripts != scripts_of.end()) inspector.inspect(*scripts->second);
    }
    return found;
}

std::vector<Equal_Keys> find_equal_keys(const store::cls_Sets_Coll& sets,
                                        const scripts::cls_Script_Sets& script_sets) {
    std::vector<Equal_Keys> found;
    Groups<Cv_Key> of_cvs;
    for (const auto& set : sets)
        of_cvs.add({.reset_cv = set->ResCV, .set_number = set->Nummer}, set->Name);
    of_cvs.report(found, Equal_Keys::Map::cvs, [](Equal_Keys& equal, const Cv_Key& key) {
        equal.reset_cv = key.reset_cv;
        equal.set_number = key.set_number;
    });
    Groups<std::int32_t> of_scripts;
    for (const auto& scripts : script_sets)
        of_scripts.add(scripts->Nummer, sets.Item(QString::number(scripts->SetID))->Name);
    of_scripts.report(found, Equal_Keys::Map::scripts,
                      [](Equal_Keys& equal, std::int32_t key) { equal.set_number = key; });
    return found;
}

} // namespace vqx_export
