#pragma once

#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"
#include "store/clsDBConn.h"

#include <QString>
#include <optional>

namespace scripts_ui {

/// Asks where to write a script file, and what is there already must be given up for it. The open
/// library never is, whatever name leads to it. The folder is where the next one is asked for.
std::optional<QString> ask_script_file(desktop::Desktop& desktop, files::Disk& disk,
                                       const store::clsDBConn& database, const QString& proposed);

} // namespace scripts_ui
