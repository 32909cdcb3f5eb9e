#pragma once

#include "app/twips.h"
#include "platform/files/disk.h"

#include <QString>
#include <optional>

namespace app {

/// The settings file of this user: CVSets_Inits.ini in UserDataDir.
QString IniFile();

/// Reads the settings into the globals and the place of the main window, as far as they can be
/// read; what is missing or no proper value leaves what was there. Never fails.
void Load_Settings(files::Disk& disk, Window_Place& main_window);

/// Replaces the settings file in one step. @return what stood in the way; the old file is whole
/// then.
[[nodiscard]] std::optional<files::Error> Save_Settings(files::Disk& disk,
                                                        const Window_Place& main_window);

} // namespace app
