#pragma once

#include "scripts/cls_script.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace scripts {

/// The scripts of one CV set, positions from 1, in the order in which they were made.
class cls_script_coll {
public:
    static constexpr int max_scripts = 16;

    std::int32_t SetID = 0;    ///< database key of the set; 0 until the scripts of one are loaded
    std::int32_t Nummer = 0;   ///< number of the set as the user sees it
    std::int32_t AddrSlot = 0; ///< address placeholder of this block in the project file
    bool Changed = false;      ///< set whenever a script is added

    void Add(std::shared_ptr<cls_script> script);
    /// Appends a new empty script without a name. @return it
    cls_script& AddScript();
    /// The new-script command without its database row: an empty script, named by its position and
    /// flagged as new. @return it, or nothing when the set has 16 scripts
    [[nodiscard]] std::shared_ptr<cls_script> add_named_script();

    std::int32_t Count() const { return static_cast<std::int32_t>(scripts_.size()); }
    /// The script at a position, 1..Count. Holding it keeps it alive when it is removed meanwhile.
    /// @throws Error (not_found)
    std::shared_ptr<cls_script> Item(std::int32_t position) const;
    void Remove(std::int32_t position); ///< @throws Error (not_found)
    bool exists(std::int32_t position) const { return position >= 1 && position <= Count(); }
    void Clear() {
        scripts_.clear();
        SetID = 0;
    }
    std::int32_t States_Left_Out() const; ///< of all scripts

    std::span<const std::shared_ptr<cls_script>> NewEnum() const { return scripts_; }
    auto begin() const { return scripts_.begin(); }
    auto end() const { return scripts_.end(); }

    /// Packs the scripts into the block that the decoder reads (docs/formats/vqx.md).
    /// @throws Error for more than 16 scripts (full) and for a number that does not fit its byte
    /// (unfit); Data is empty then
    void Write_Scripts();
    std::vector<std::uint8_t> Data;
    std::size_t Datalen() const { return Data.size(); }
    /// Copies Data to `target[position..]`, growing the target where it is too short, and moves the
    /// position behind it.
    void Get_Array_Add(std::vector<std::uint8_t>& target, std::size_t& position) const;

private:
    std::vector<std::shared_ptr<cls_script>> scripts_;
};

/// The scripts of the CV set selected in the main window; made on first use.
cls_script_coll& AktScripts();

} // namespace scripts
