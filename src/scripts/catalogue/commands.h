#pragma once

#include "scripts/catalogue/forms.h"
#include "scripts/catalogue/lists.h"

#include <optional>
#include <span>

namespace scripts_catalogue {

constexpr int no_cv = -1;

/// A column of the editor: what it chooses, and from what. Column c holds parameter c of the editor
/// form, but for those of the sound of command 1 and the key of command 4, which share or recode.
struct Column {
    Text caption;
    List list = List::none;
    /// Where a bit of another parameter is set, the value is the number of a script CV instead.
    int cv_parameter = no_cv;
    std::int32_t cv_bit = 0;
    Text addition = {}; ///< behind the caption: the unit or the range

    constexpr bool exists() const { return list != List::none; }
};

/// When a parameter says that a value comes from a script CV: a bit that is set, or a range of
/// values that the parameter itself must be in.
struct Cv_Reference {
    int parameter = -1; ///< which holds the CV
    int base = 0;       ///< CV = base + parameter
    int flag_parameter = -1;
    std::int32_t flag_bit = 0;
    std::int32_t lowest = 0, highest = 0; ///< without a flag
    bool moves = true;                    ///< the import may give it another CV

    constexpr bool exists() const { return parameter >= 0; }
    bool applies(const Parameters& parameters) const;
};

constexpr int most_columns = 5;
constexpr int no_jump = -1;

/// Everything that is known of a command.
struct Command {
    std::int32_t code;
    Text name;
    int parameters = 0; ///< that a line has in script files
    int jump = no_jump; ///< parameter with the line to jump to, in every form
    Packing packing = Packing::none;
    Cv_Reference references[2] = {};
    Column columns[most_columns] = {};
};

constexpr std::int32_t last_command = 33;

/// All commands, by their code.
std::span<const Command> commands();
/// Nothing for a code outside 0..33.
const Command* command(std::int32_t code);

/// The parameter that holds the line to jump to, in every form; nothing for commands that never
/// jump.
std::optional<int> JumpParameter(std::int32_t code);
inline bool IsJumpCommand(std::int32_t code) { return JumpParameter(code).has_value(); }
/// How many parameters a line of the command has in script files.
int ParameterCount(std::int32_t code);

// Names; empty, but for keys, where there is no such thing.
QString CommandName(std::int32_t code, int language);
QString QueryParameterName(int index, int language);
QString SettableParameterName(int index, int language);
QString KeyName(int number);  ///< F0..F28, MAN; "-" for any other number
QString VolumeText(int step); ///< "-9 dB"

/// From what a column of a line is chosen now, which may depend on what the line's other columns
/// say. @param editor the line's parameters in editor form
List list_of(const Command& command, int column, const Parameters& editor);

} // namespace scripts_catalogue
