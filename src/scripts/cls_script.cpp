#include "scripts/cls_script.h"

#include "scripts/error.h"
#include "scripts/jumps.h"

#include <utility>

namespace scripts {
namespace {

std::size_t checked_state(int index) {
    if (index < 0 || index >= cls_script::max_states)
        throw Error(Failure::not_found, "line " + std::to_string(index), "outside 0..255");
    return static_cast<std::size_t>(index);
}

/// Gives every jump target t of the first `count` states the value change(t).
template <typename Change>
void retarget(cls_script& script, int count, Change change) {
    for (int i = 0; i < count; ++i) {
        auto& state = script.GetState(i);
        if (const auto par = JumpParameter(state.GetCommand()))
            state.SetPar(*par, change(state.GetPar(*par)));
    }
}

} // namespace

cls_Scriptstate& cls_script::GetState(int index) {
    const auto place = checked_state(index);
    if (place >= states_.size()) states_.resize(place + 1); // growing at the end keeps references
    return states_[place];
}

const cls_Scriptstate& cls_script::GetState(int index) const {
    static const cls_Scriptstate empty;
    const auto place = checked_state(index);
    return place < states_.size() ? states_[place] : empty;
}

void cls_script::CopyHeader(const cls_script& other) {
    StateCount = other.StateCount;
    ScriptName = other.ScriptName;
    HeaderFlag = other.HeaderFlag;
    EditActive = other.EditActive;
}

void cls_script::Insert_ScriptState(int index) {
    checked_state(index);
    if (StateCount >= max_states) throw Error(Failure::full, "script", "has 256 lines");
    for (int i = StateCount; i > index; --i) GetState(i) = std::move(GetState(i - 1));
    GetState(index) = {};
    retarget(*this, StateCount + 1, [&](std::int32_t target) {
        return index <= target && target < StateCount ? target + 1 : target;
    });
    ++StateCount;
}

void cls_script::Delete_ScriptState(int index) {
    checked_state(index);
    if (index >= StateCount)
        throw Error(Failure::not_found, "line " + std::to_string(index), "is not in the script");
    for (int i = index; i + 1 < StateCount; ++i) GetState(i) = std::move(GetState(i + 1));
    --StateCount;
    GetState(StateCount) = {};
    retarget(*this, StateCount,
             [&](std::int32_t target) { return target > index ? target - 1 : target; });
}

void cls_script::Copy_ScriptState(int source, int target) {
    checked_state(source);
    auto& copy = GetState(target);
    copy.CopyFrom(std::as_const(*this).GetState(source));
    if (const auto par = JumpParameter(copy.GetCommand())) {
        const auto shifted = std::int64_t{copy.GetPar(*par)} + target - source;
        if (shifted >= 1 && shifted < max_states)
            copy.SetPar(*par, static_cast<std::int32_t>(shifted));
    }
}

} // namespace scripts
