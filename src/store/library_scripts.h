#pragma once

#include "scripts/cls_Script_Sets.h"
#include "store/library_operation.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace store {

/// The tables Scripte and Scriptstates. Operations named as those of clsDBConn do what these say.
class Library_Scripts {
public:
    explicit Library_Scripts(Library_Operation& operation)
        : operation_(operation), file_(operation.file()) {}

    void fill(scripts::cls_Script_Sets& sets);
    void load(scripts::cls_script_coll& into, std::int32_t SetID);

    [[nodiscard]] bool add(std::int32_t SetID, scripts::cls_script_coll& of, std::int32_t position);
    [[nodiscard]] bool save_states(std::int32_t SetID, scripts::cls_script_coll& of,
                                   std::int32_t position);
    [[nodiscard]] bool rename(std::int32_t SetID, scripts::cls_script_coll& of,
                              std::int32_t position);
    [[nodiscard]] bool erase(std::int32_t SetID, scripts::cls_script_coll& of,
                             std::int32_t position);
    /// Refuses (changed) when positions no longer name the scripts that were loaded.
    [[nodiscard]] bool expect_positions(std::int32_t SetID, const scripts::cls_script_coll& of);
    void erase_all(std::int32_t SetID); ///< with their states; throws

    int count(std::int32_t SetID);
    QString name(std::int32_t ScriptID);
    std::int32_t set_of(std::int32_t ScriptID);

private:
    using Script = scripts::cls_script;

    /// @return what tells these states from others
    std::size_t visit_states(
        std::int32_t ScriptID,
        const std::function<void(std::int32_t number, const scripts::cls_Scriptstate&)>& visit);
    void load_states(Script& script);
    void load_all(scripts::cls_script_coll& into, std::int32_t SetID, bool with_names);
    std::vector<std::int32_t> stored_keys(std::int32_t SetID);
    void erase_one(std::int32_t ScriptID);
    /// Runs work on the script at a position as one operation of a set.
    bool changing(std::int32_t SetID, scripts::cls_script_coll& of, std::int32_t position,
                  const std::function<void(Script&)>& work);
    /// Runs work on the row of a script, if there is one.
    void with_row(std::int32_t ScriptID, const std::function<void(ado::Recordset&)>& work);

    Library_Operation& operation_;
    Library_File& file_;
};

} // namespace store
