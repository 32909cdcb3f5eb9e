#include "app/mod_fileverwaltung.h"

#include "app/mod_main.h"
#include "platform/desktop/folders.h"

#include <algorithm>

namespace app {

QString PathOf(const QString& path) { return path.left(path.lastIndexOf(desktop::separator) + 1); }

QString FileOf(const QString& path) { return path.mid(path.lastIndexOf(desktop::separator) + 1); }

bool FileExists(files::Disk& disk, const QString& path) {
    try {
        return disk.file_exists(path.toStdString());
    } catch (const files::Error&) {
        return false;
    }
}

void make_folders(files::Disk& disk, const QString& path) {
    QString folder = path;
    while (folder.size() > 1 && folder.endsWith(desktop::separator)) folder.chop(1);
    const std::string name = folder.toStdString();
    if (disk.file_exists(name)) {
        throw files::Error(files::Failure::exists, name, "a file has the name of the folder");
    }
    if (disk.folder_exists(name)) return;
    const QString parent = PathOf(folder);
    if (parent.isEmpty() || parent == folder) {
        throw files::Error(files::Failure::not_found, name, "no folder lies above it");
    }
    make_folders(disk, parent);
    disk.make_folder(name);
    disk.sync_folder(files::folder_of(name)); // or what is kept in it goes with the power
}

bool EnsureFolder(files::Disk& disk, const QString& path) {
    try {
        make_folders(disk, path);
        return true;
    } catch (const files::Error&) {
        return false;
    }
}

void Add_Last_File(const QString& path) {
    globals.LastFiles.removeAll(path);
    globals.LastFiles.append(path);
}

QStringList last_files_newest_first() {
    return {globals.LastFiles.rbegin(), globals.LastFiles.rend()};
}

bool is_database_name(const QString& path) {
    return path.toUpper().contains(QStringLiteral(".MDB"));
}

void set_current_database(const QString& path) {
    globals.Database_Path = PathOf(path);
    globals.Database_File = FileOf(path);
}

QString current_database() { return globals.Database_Path + globals.Database_File; }

} // namespace app
