#pragma once

#include "scripts/catalogue/commands.h"
#include "scripts/script_texts.h"

#include <QString>
#include <optional>

namespace scripts {

/// What a column of a line in editor form chooses.
struct Line_Column {
    QString caption;
    scripts_catalogue::List list = scripts_catalogue::List::none; ///< none: there is no such column
    int entry = 0; ///< of the list; one outside it for a value that the list does not have
};

Line_Column column_of(const cls_Scriptstate& line, int column, int language);

/// A line in a row of texts: "Abfrage Taste: F3, Ein, 9".
QString line_text(const cls_Scriptstate& line, int language);

/// Takes an entry of the column's list; one that the list does not have changes nothing.
void choose_entry(cls_Scriptstate& line, int column, int entry);

/// Changes the command; of the parameters stays what the new command's columns can show.
void choose_command(cls_Scriptstate& line, std::int32_t code);

/// An entry as the editor shows it. What comes from a script CV says where else the CV is used, or
/// which value it has.
/// @param state the line that shows it; it becomes the script's CurrentState
QString EntryText(scripts_catalogue::List list, int entry, cls_script& script, int state,
                  const Text_Context& context);

/// How many entries the editor offers: its own samples end at 255.
int offered_entries(scripts_catalogue::List list);

/// What was typed as an entry: a number where the list counts something, the text of an entry in any
/// case, the beginning of one, or the number at its end. Nothing where the list has no such entry.
std::optional<int> entry_typed(scripts_catalogue::List list, const QString& typed, int language);

/// The first command whose name contains what was typed, in any case.
std::optional<std::int32_t> command_typed(const QString& typed, int language);

} // namespace scripts
