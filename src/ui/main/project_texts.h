#pragma once

#include "export/export_project.h"

#include <QString>
#include <functional>

namespace ui_main {

/// The name of a script by its ScriptID, empty where it has none.
using Script_Names = std::function<QString(std::int32_t)>;

/// All that a project file cannot hold, for a box: set, script, line and number. The first ones are
/// spelled out and the rest counted.
QString sentences(const std::vector<vqx_export::Refusal>& refusals, const Script_Names& names);
/// What became of a project file that could be written, or why the disk refused it.
QString sentence(const QString& file, const vqx_export::Report& report);

} // namespace ui_main
