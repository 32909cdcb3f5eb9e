#pragma once

#include "platform/files/disk.h"

#include <QString>

namespace app {

/// The path up to and including its last separator; empty when there is none.
QString PathOf(const QString& path);
/// The path behind its last separator; the whole path when there is none.
QString FileOf(const QString& path);

/// Whether a file of that name exists; a folder does not count. A name that cannot be looked up
/// does not exist.
bool FileExists(files::Disk& disk, const QString& path);
/// Makes the folder and those above it that are missing. @return whether it is there now; false
/// when a file bears the name or the folder cannot be made
[[nodiscard]] bool EnsureFolder(files::Disk& disk, const QString& path);
/// As EnsureFolder. @throws files::Error with the reason
void make_folders(files::Disk& disk, const QString& path);

/// Makes the path the newest of LastFiles, without an older mention of it (exact comparison).
void Add_Last_File(const QString& path);
/// The newest paths first, as the menu shows them.
QStringList last_files_newest_first();
/// Whether a recent path names a database, judged by its name.
bool is_database_name(const QString& path);

/// Sets Database_Path and Database_File.
void set_current_database(const QString& path);
/// Database_Path + Database_File.
QString current_database();

} // namespace app
