#pragma once

#include "platform/files/disk.h"

#include <QString>

namespace app {

/// Copies a file to a name of its own first and renames it when it is whole and on the medium, so
/// that the target is either as before or complete. Replaces an existing target.
/// @throws files::Error; nothing is left behind then
void copy_file(files::Disk& disk, const QString& from, const QString& to);

} // namespace app
