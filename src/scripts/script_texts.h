#pragma once

#include "scripts/catalogue/lists.h"
#include "scripts/cls_script_coll.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace scripts {

/// A sound that can be chosen: as the editor lists it, and its number in the decoder.
struct Sample {
    QString name;
    int number = 0;
};

/// What texts of script lines say besides what stands in the line.
struct Text_Context {
    const cls_script_coll& scripts; ///< of the selected set
    cls_script* edited = nullptr;   ///< the editor's copy, instead of the one that is EditActive
    std::function<int(int cv)> cv_value; ///< in the selected set; 0 where it does not have the CV
    std::vector<Sample> samples = {};    ///< of the editor
    int language = 0;
};

/// What a column of the editor offers.
struct Column_Choices {
    QString caption; ///< empty: the column offers nothing
    QStringList choices;
    int current = -1; ///< of the choices; for the column of a state its number
    bool samples = false;
    bool state = false;
};

QString LoopText(int loop);
QString EndText(int end);
QString ConditionText(int condition);
QString JumpText(int state);
QString YesNoText(int value, int language);
QString CVSourceText(bool from_cv, int value);
/// Time of the timer of command 12: "0,3s". Empty for a unit that there is not.
QString TimerText(int value, int unit, int language);

/// Where else in the scripts of the set a script CV is used: "Script2-Sound-Lautstärke".
/// @param include_edited_line whether the line counts that is now being edited; if it does not and
/// is the first that uses the CV, its script shows values from now on, and the text is empty
QString CVUsageText(int cv, bool include_edited_line, const Text_Context& context);

/// An entry of a list as a line of the script shows it: what comes from a script CV says where else
/// the CV is used, or, where the script shows values, which value it has.
QString list_entry_text(scripts_catalogue::List list, int entry, const cls_script& script,
                        const Text_Context& context);

// Of a line in editor form.
QString GetCommandName(const cls_script& script, int state, int language);
/// Makes the line the script's CurrentState.
QString GetColumnText(cls_script& script, int state, int column, const Text_Context& context);
Column_Choices GetColumnChoices(const cls_script& script, int state, int column,
                                const Text_Context& context);
void SetColumnValue(cls_script& script, int state, int column, int chosen,
                    const Text_Context& context);

} // namespace scripts
