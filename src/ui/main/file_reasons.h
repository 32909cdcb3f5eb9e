#pragma once

#include "platform/files/disk.h"

#include <QString>

namespace ui_main {

/// Why a file at this path can be neither read nor made, where the name alone tells it. The floors
/// below know the file only by what the medium says of it.
/// @param told by them
files::Failure true_reason(files::Disk& disk, const QString& path, files::Failure told);

} // namespace ui_main
