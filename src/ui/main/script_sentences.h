#pragma once

#include "scripts/cv_collisions.h"
#include "scripts/script_file.h"
#include "store/CVRec.h"
#include "store/script_import.h"

#include <QString>

namespace ui_main {

QString sentence_too_many_scripts();
QString sentence_added(const QString& script);
QString sentence_renamed(const QString& script); ///< its new name
QString sentence_no_name();
/// @param cv that holds the flag now
QString sentence_active(const QString& script, bool active, const store::CVRec& cv);
QString sentence_too_few_cvs(const scripts::Cv_Collisions& found);
QString sentence_fixed_cvs(const scripts::Cv_Collisions& found);
QString question_move_cvs(const scripts::Cv_Collisions& found);
QString question_delete(const QString& script);

/// What came of an import, with everything that was left out.
QString sentence_imported(const scripts::Script_File& file,
                          const store::Script_Import_Report& report, const QString& name);
QString sentence_exported(const QString& script, const QString& name);

} // namespace ui_main
