#pragma once

#include <QString>
#include <QStringList>

namespace desktop {

/// The character between the elements of a path on this platform.
constexpr QChar separator = u'/';

QString documents_folder();  ///< XDG documents folder, else the home folder's
QString local_data_folder(); ///< XDG_DATA_HOME
/// `share` beside the folder of the program first (the build tree and an installed prefix have the
/// same shape), so that a program that is not installed finds its own data; then XDG_DATA_DIRS.
QStringList common_data_folders(const QString& program_folder);

} // namespace desktop
