#pragma once

#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"
#include "scripts/cls_script.h"
#include "store/clsDBConn.h"

#include <QString>
#include <optional>

namespace scripts_ui {

/// Asks where to write a script file, and what is there already must be given up for it. The open
/// library never is, whatever name leads to it. The folder is where the next one is asked for.
std::optional<QString> ask_script_file(desktop::Desktop& desktop, files::Disk& disk,
                                       const store::clsDBConn& database, const QString& proposed);

/// @return what is to be said besides that it is done: letters that such a file does not have; throws
/// files::Error
QString write_script_file(files::Disk& disk, const scripts::cls_script& in_file_form,
                          const QString& path);

} // namespace scripts_ui
