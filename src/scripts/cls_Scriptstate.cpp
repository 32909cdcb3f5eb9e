#include "scripts/cls_Scriptstate.h"

#include "scripts/catalogue/commands.h"
#include "scripts/error.h"

#include <algorithm>
#include <iterator>

namespace scripts {

namespace catalogue = scripts_catalogue;

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

namespace {

constexpr std::int32_t read_cv = 32;

constexpr bool is_byte(std::int32_t value) { return value >= 0 && value <= 255; }

const catalogue::Cv_Reference* reference(std::int32_t command, int which) {
    const catalogue::Command* known = catalogue::command(command);
    if (known == nullptr || which < 0 || which >= static_cast<int>(std::size(known->references)))
        return nullptr;
    return &known->references[which];
}

} // namespace

int cls_Scriptstate::CVRefCount() const {
    const catalogue::Command* known = catalogue::command(Command_);
    if (known == nullptr) return 0;
    return static_cast<int>(std::ranges::count_if(
        known->references, [](const auto& each) { return each.exists() && each.moves; }));
}

int cls_Scriptstate::used_cv(int which) const {
    const catalogue::Cv_Reference* found = reference(Command_, which);
    if (found == nullptr || !found->applies(Par_)) return 0;
    const std::int32_t there = GetPar(found->parameter);
    return is_byte(there) ? found->base + there : 0;
}

int cls_Scriptstate::GetCVRef(int which) const {
    if (Command_ == read_cv) return which == 0 ? catalogue::cv_of(Par_[0], Par_[1]) : 0;
    const catalogue::Cv_Reference* found = reference(Command_, which);
    return found != nullptr && found->moves ? used_cv(which) : 0;
}

void cls_Scriptstate::SetCVRef(int which, int cv) {
    const catalogue::Cv_Reference* found = reference(Command_, which);
    if (found != nullptr && found->exists() && found->moves)
        SetPar(found->parameter, cv - found->base);
}

void cls_Scriptstate::import(const cls_Scriptstate& source, catalogue::Form from,
                             catalogue::Form to) {
    const catalogue::Command* known = catalogue::command(source.Command_);
    const auto packing = known == nullptr ? catalogue::Packing::none : known->packing;
    Par_ = catalogue::converted(packing, source.Par_, from, to);
    Command_ = source.Command_;
    Info = source.Info;
}

using enum catalogue::Form;

void cls_Scriptstate::Import_vqr_2_Listindex(const cls_Scriptstate& source) {
    import(source, file, editor);
}
void cls_Scriptstate::Import_Listindex_2_vqr(const cls_Scriptstate& source) {
    import(source, editor, file);
}
void cls_Scriptstate::Import_vqr_2_vqx(const cls_Scriptstate& source) {
    import(source, file, decoder);
}
void cls_Scriptstate::Import_vqr_2_vqr(const cls_Scriptstate& source) {
    import(source, file, file);
}
void cls_Scriptstate::Import_vqx_2_vqr(const cls_Scriptstate& source) {
    import(source, decoder, file);
}
void cls_Scriptstate::Import_vqx_2_Listindex(const cls_Scriptstate& source) {
    import(source, decoder, editor);
}
void cls_Scriptstate::Import_Listindex_2_vqx(const cls_Scriptstate& source) {
    import(source, editor, decoder);
}

int cls_Scriptstate::volume() const { return catalogue::volume_of(Par_); }

void cls_Scriptstate::choose_volume(int entry) {
    if (entry >= 0 && entry < catalogue::entry_count(catalogue::List::volume))
        catalogue::choose_volume(Par_, entry);
}

int cls_Scriptstate::loop_mode() const { return catalogue::loop_of_editor(Par_[2]).loop; }

int cls_Scriptstate::end_mode() const { return catalogue::loop_of_editor(Par_[2]).end; }

void cls_Scriptstate::choose_loop_mode(int entry) {
    if (entry >= 0 && entry < catalogue::entry_count(catalogue::List::loop))
        Par_[2] = catalogue::loop_of_choice(entry, end_mode()).editor;
}

void cls_Scriptstate::choose_end_mode(int entry) {
    if (entry >= 0 && entry < catalogue::entry_count(catalogue::List::sound_end))
        Par_[2] = catalogue::loop_of_choice(loop_mode(), entry).editor;
}

int cls_Scriptstate::key() const { return catalogue::key_index(Par_[0]); }

void cls_Scriptstate::choose_key(int entry) {
    if (const auto code = catalogue::key_code(entry)) Par_[0] = *code;
}

} // namespace scripts
