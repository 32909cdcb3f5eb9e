#pragma once

#include "scripts/cls_Scriptstate.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

namespace scripts {

/// One script: up to 256 lines (states) with their jump targets, as the decoder runs them.
class cls_script {
public:
    static constexpr int max_states = 256; ///< indexes 0..255

    std::int32_t StateCount = 0; ///< states 0..StateCount-1 are the script; 0..256
    QString ScriptName;
    bool HeaderFlag =
        false; ///< made with the new-script command; flag byte of the script block, not stored
    bool EditActive = false;       ///< open in the script editor
    std::int32_t CurrentState = 0; ///< index of the state last rendered or being edited
    bool ShowCVValues = false; ///< rendered CV references show the value in the selected set too
    std::int32_t ScriptID = 0; ///< key of the database row; 0 when there is none
    /// Stored lines that were not loaded, because their number lies outside 0..255.
    std::int32_t States_Left_Out = 0;
    /// Tells whether the stored lines are still those that were loaded or saved last; nothing where
    /// none were.
    std::optional<std::size_t> Stored_States;

    /// Every index 0..255 yields a state, an empty one where nothing was put yet. A reference stays
    /// good as long as the script; inserting and deleting move contents, not places.
    /// @throws Error (not_found) for an index outside 0..255, as do the operations below
    cls_Scriptstate& GetState(int index);
    const cls_Scriptstate& GetState(int index) const;
    void SetState(int index, const cls_Scriptstate& state) { GetState(index) = state; }

    /// The states themselves stay, only the count goes to 0.
    void ClearStates() { StateCount = 0; }

    /// Takes over StateCount, ScriptName, HeaderFlag and EditActive.
    void CopyHeader(const cls_script& other);

    /// Puts an empty state at `index` and moves what follows; jumps to moved lines follow them.
    /// @throws Error (full) when the script has 256 states
    void Insert_ScriptState(int index);
    /// Jump targets behind the line follow it up; a jump to the line itself then names its
    /// successor.
    /// @throws Error (not_found) for a line that the script does not have
    void Delete_ScriptState(int index);
    /// Overwrites the target line. A jump keeps its distance where that leads to a line 1..255,
    /// else its target. StateCount stays.
    void Copy_ScriptState(int source, int target);

private:
    std::deque<cls_Scriptstate>
        states_; // grows when touched: most scripts are short, sets carry many
};

} // namespace scripts
