#include "app/mod_main.h"

#include "app/mod_fileverwaltung.h"
#include "app/mod_save_settings.h"
#include "platform/desktop/folders.h"
#include "platform/files/replace.h"

#include <algorithm>
#include <tuple>

namespace app {
namespace {

const QString default_database = QStringLiteral("CV-Sets.mdb");
const QString template_file = QStringLiteral("CV-Sets_leer.mdb");

QString path_of(std::initializer_list<QString> elements) {
    QString path;
    for (const QString& element : elements) path += element + desktop::separator;
    return path;
}

QString data_dir(const QString& folder) {
    return path_of({folder, QStringLiteral("KELDA"), QStringLiteral("TRV")});
}

// The first folder that holds the template, else the first of all: its name then stands in the
// sentence about what is missing.
QString common_data_dir(const QStringList& folders, files::Disk& disk) {
    const auto holds_template = [&](const QString& folder) {
        return FileExists(disk, data_dir(folder) + template_file);
    };
    const auto found = std::find_if(folders.begin(), folders.end(), holds_template);
    return data_dir(found != folders.end() ? *found : folders.value(0));
}

Rectangle in_twips(const desktop::Bounds& bounds) {
    return {from_pixels(bounds.left), from_pixels(bounds.top), from_pixels(bounds.right),
            from_pixels(bounds.bottom)};
}

Rectangle around(const Rectangle& a, const Rectangle& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

} // namespace

void reset_globals() { globals = Globals{}; }

QString FKey_Name(int number) {
    if (number == 29) return QStringLiteral("MAN");
    return number >= 0 && number <= 28 ? u'F' + QString::number(number) : QString();
}

QString FA_Name(int number) {
    if (number == 0) return QStringLiteral("FA0v");
    if (number == 1) return QStringLiteral("FA0r");
    return number >= 2 && number <= 22 ? QStringLiteral("FA%1").arg(number - 1) : QString();
}

void Get_Monitors(desktop::Desktop& desktop) {
    globals.MonitorRects.clear();
    globals.MonitorAreas.clear();
    for (const desktop::Monitor& monitor : desktop.monitors()) {
        globals.MonitorRects.push_back(in_twips(monitor.bounds));
        globals.MonitorAreas.push_back(in_twips(monitor.available));
    }
    globals.MonitorCount = static_cast<std::int32_t>(globals.MonitorRects.size());
    globals.VirtualScreen = globals.MonitorRects.empty() ? Rectangle{} : globals.MonitorRects[0];
    for (const Rectangle& monitor : globals.MonitorRects) {
        globals.VirtualScreen = around(globals.VirtualScreen, monitor);
    }
}

void Init_Paths(desktop::Desktop& desktop, files::Disk& disk) {
    globals.CommonDataDir = common_data_dir(desktop.common_data_folders(), disk);
    globals.DocDir = path_of({desktop.documents_folder(), QStringLiteral("KELDA")});
    globals.StdSetPath = globals.DocDir + path_of({QStringLiteral("CV-Sets")});
    globals.UserDataDir = data_dir(desktop.local_data_folder());
    globals.EmptyDBTemplate = globals.CommonDataDir + template_file;
    globals.Database_Path = globals.StdSetPath;
    globals.Database_File = default_database;
    std::ignore = EnsureFolder(disk, globals.UserDataDir); // who stores there is told why it fails
}

Default_Database Check_Database_File(files::Disk& disk) {
    if (FileExists(disk, current_database())) return {};
    globals.Database_Path = globals.StdSetdir.isEmpty() ? globals.StdSetPath : globals.StdSetdir;
    globals.Database_File = default_database;
    try {
        make_folders(disk, globals.Database_Path);
        if (FileExists(disk, current_database())) return {};
        files::copy_file(disk, globals.EmptyDBTemplate.toStdString(),
                         current_database().toStdString());
        return {.made = true, .trouble = {}};
    } catch (const files::Error& error) {
        return {.made = false, .trouble = error};
    }
}

Default_Database Init_Globals(desktop::Desktop& desktop, files::Disk& disk,
                              Window_Place& main_window) {
    Init_Paths(desktop, disk);
    Load_Settings(disk, main_window);
    Default_Database database = Check_Database_File(disk);
    for (int key = 0; key < 30; ++key) {
        globals.FKeyNames[static_cast<std::size_t>(key)] = FKey_Name(key);
    }
    return database;
}

} // namespace app
