#pragma once

#include "export/export_project.h"

#include <QString>

namespace ui_main {

/// One line about something that a project file cannot hold: set, script, line and number.
QString sentence(const vqx_export::Refusal& refusal);
/// All of them for a box, the first ones spelled out and the rest counted.
QString sentences(const std::vector<vqx_export::Refusal>& refusals);
/// What became of a project file that could be written, or why the disk refused it.
QString sentence(const QString& file, const vqx_export::Report& report);

} // namespace ui_main
