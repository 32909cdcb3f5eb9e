#include "scripts/cls_script_coll.h"

#include "platform/failure/sure.h"
#include "scripts/error.h"

#include <algorithm>
#include <utility>

namespace scripts {
namespace {

constexpr std::size_t buffer_size = 65536; // offsets in the block have 16 bits
constexpr std::size_t header_size = 8;
constexpr std::size_t state_size = 8;

std::string named(int script, int line) {
    return "script " + std::to_string(script) + ", line " + std::to_string(line);
}

std::uint8_t low_byte(std::size_t number) { return static_cast<std::uint8_t>(number & 0xFF); }
std::uint8_t high_byte(std::size_t number) { return static_cast<std::uint8_t>(number >> 8 & 0xFF); }

/// Writes one script at the end of a block; remembers which it is for the sake of errors.
class Script_Packer {
public:
    Script_Packer(std::vector<std::uint8_t>& block, int position)
        : block_(block), position_(position) {}

    void pack(const cls_script& script) {
        if (script.StateCount < 0 || script.StateCount > cls_script::max_states)
            throw Error(Failure::unfit, "script " + std::to_string(position_),
                        std::to_string(script.StateCount) + " lines");
        const auto count = static_cast<std::size_t>(script.StateCount);
        block_.insert(block_.end(), {low_byte(count), high_byte(count), 0, 0, 0, 0, 0,
                                     script.HeaderFlag ? std::uint8_t{1} : std::uint8_t{0}});
        for (line_ = 0; line_ < script.StateCount; ++line_) pack(script.GetState(line_));
    }

private:
    void pack(const cls_Scriptstate& state) {
        put(state.GetCommand());
        for (int i = 0; i < cls_Scriptstate::par_count; ++i) put(state.GetPar(i));
    }

    void put(std::int32_t value) {
        if (value < 0 || value > 255)
            throw Error(Failure::unfit, named(position_, line_), std::to_string(value));
        block_.push_back(static_cast<std::uint8_t>(value));
    }

    std::vector<std::uint8_t>& block_;
    int position_;
    int line_ = 0;
};

std::size_t block_size(const cls_script_coll& scripts) {
    std::size_t size = 1;
    for (const auto& script : scripts)
        size += 2 + header_size +
                state_size * static_cast<std::size_t>(std::max(0, script->StateCount));
    return size;
}

} // namespace

void cls_script_coll::Add(std::shared_ptr<cls_script> script) {
    scripts_.push_back(std::move(script));
    Changed = true;
}

cls_script& cls_script_coll::AddScript() {
    Add(std::make_shared<cls_script>());
    return *scripts_.back();
}

std::shared_ptr<cls_script> cls_script_coll::add_named_script() {
    if (Count() >= max_scripts) return nullptr;
    auto& script = AddScript();
    script.HeaderFlag = true;
    script.ScriptName = QStringLiteral("Script%1").arg(Count());
    return scripts_.back();
}

std::shared_ptr<cls_script> cls_script_coll::Item(std::int32_t position) const {
    if (!exists(position))
        throw Error(Failure::not_found, "script " + std::to_string(position), "no such position");
    return scripts_[static_cast<std::size_t>(position - 1)];
}

void cls_script_coll::Remove(std::int32_t position) {
    const auto kept = Item(position);
    scripts_.erase(scripts_.begin() + (position - 1));
}

std::int32_t cls_script_coll::States_Left_Out() const {
    std::int32_t count = 0;
    for (const auto& script : scripts_) count += script->States_Left_Out;
    return count;
}

void cls_script_coll::Write_Scripts() {
    Data.clear();
    if (Count() > max_scripts)
        throw Error(Failure::full, "set " + std::to_string(Nummer),
                    std::to_string(Count()) + " scripts");
    std::vector<std::uint8_t> block;
    block.reserve(std::min(block_size(*this), buffer_size));
    block.push_back(static_cast<std::uint8_t>(Count()));
    if (!scripts_.empty()) block.resize(1 + 2 * scripts_.size());
    for (std::size_t i = 0; i < scripts_.size(); ++i) {
        block[2 * i + 1] = high_byte(block.size());
        block[2 * i + 2] = low_byte(block.size());
        Script_Packer(block, static_cast<int>(i + 1)).pack(*scripts_[i]);
    }
    SURE(block.size() < buffer_size);
    Data = std::move(block);
}

void cls_script_coll::Get_Array_Add(std::vector<std::uint8_t>& target,
                                    std::size_t& position) const {
    target.resize(std::max(target.size(), position + Data.size()));
    std::ranges::copy(Data, target.begin() + static_cast<std::ptrdiff_t>(position));
    position += Data.size();
}

cls_script_coll& AktScripts() {
    static cls_script_coll scripts;
    return scripts;
}

} // namespace scripts
