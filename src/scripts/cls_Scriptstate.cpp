#include "scripts/cls_Scriptstate.h"

#include "scripts/error.h"

#include <algorithm>

namespace scripts {
namespace {

std::size_t checked_parameter(int index) {
    if (index < 0 || index >= cls_Scriptstate::par_count)
        throw Error(Failure::not_found, "parameter " + std::to_string(index), "outside 0..6");
    return static_cast<std::size_t>(index);
}

} // namespace

std::int32_t cls_Scriptstate::GetPar(int index) const { return Par_[checked_parameter(index)]; }

void cls_Scriptstate::SetPar(int index, std::int32_t value) {
    Par_[checked_parameter(index)] = value;
}

void cls_Scriptstate::CopyFrom(const cls_Scriptstate& other) {
    constexpr auto copied = 5;
    Command_ = other.Command_;
    Info = other.Info;
    std::copy_n(other.Par_.begin(), copied, Par_.begin());
}

} // namespace scripts
