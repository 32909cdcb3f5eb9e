#pragma once

#include "app/twips.h"
#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"

#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace app {

/// What the whole program shares: plain values, read and written directly. Paths of folders end
/// with a separator. The objects that the program shares live with their own subsystems.
struct Globals {
    QString DocDir;          ///< the user's documents, folder KELDA
    QString StdSetPath;      ///< default folder of databases
    QString UserDataDir;     ///< settings, log and other files of this user
    QString CommonDataDir;   ///< files that came with the program
    QString EmptyDBTemplate; ///< empty database, copied to make a new one
    QString Database_Path;   ///< folder of the current database
    QString Database_File;   ///< file name of the current database
    QString StdSetdir;       ///< the user's standard database folder; empty means StdSetPath
    QString LastScriptdir;   ///< folder of the last imported or exported script file
    QStringList LastFiles;   ///< full paths of recently used files, oldest first

    std::int16_t comport = 1;           ///< serial port of the programming interface, 1..64
    std::int16_t AktResCV = 8;          ///< reset CV whose sets are shown: 8 or 265
    std::int16_t DecoderCVCount = 1024; ///< CVs of the connected decoder type: 256 or 1024
    std::int16_t TimingTarget = 50;     ///< of the programming track's bit timing
    std::int16_t PreambleCount = 10;    ///< of the programming track's connection
    std::int32_t LanguageIndex = 0;     ///< of the text table: 0 German, 1 English, 2 French

    std::array<QString, 30> FKeyNames; ///< shown names of the function keys F0..F28 and MAN
    /// Amplitudes 0..255 of the ten volume steps, 3 dB apart; step 0 is full volume.
    std::array<std::int16_t, 10> VolumeSteps{0, 181, 128, 91, 64, 46, 32, 23, 16, 11};

    bool ScriptWindowOpen = false;
    Window_Place Script_Window{{13665}, {12285}, {8250}, {2175}};
    bool Script_Window_Max = false;      ///< the script window is maximised
    bool Script_Info_Off = false;        ///< the script window does not show its comments
    bool Script_Info_Single_Line = true; ///< or shows one line of each
    std::int16_t Script_Info_Size = 20;  ///< of their column, 0..100
    Rectangle VirtualScreen;             ///< the whole desktop
    std::int32_t MonitorCount = 0;
    std::vector<Rectangle> MonitorRects; ///< bounds of each monitor
    std::vector<Rectangle> MonitorAreas; ///< the same without the panels of the desktop
};

inline Globals globals;

/// Gives every global value its default, as before the start of the program.
void reset_globals();

/// Name of a function key: F0..F28, MAN for 29, empty for any other number.
QString FKey_Name(int number);
/// Name of a function output: FA0v, FA0r, FA1..FA21 for 0..22, empty for any other number.
QString FA_Name(int number);

/// Fills VirtualScreen, MonitorCount, MonitorRects and MonitorAreas.
void Get_Monitors(desktop::Desktop& desktop);
/// Sets the folders and the default database, and makes UserDataDir where it is missing.
void Init_Paths(desktop::Desktop& desktop, files::Disk& disk);
/// What became of the database that the program starts with.
struct [[nodiscard]] Default_Database {
    bool made = false;                   ///< it did not exist before this run
    std::optional<files::Error> trouble; ///< what stood in the way, when there is none in the end
};

/// Makes sure that Database_Path + Database_File exists: falls back to CV-Sets.mdb in the standard
/// folder, copied from the template when it is missing. Never overwrites an existing file.
Default_Database Check_Database_File(files::Disk& disk);
/// Paths, settings, database and names, in this order.
/// @param main_window gets the place that the settings name
Default_Database Init_Globals(desktop::Desktop& desktop, files::Disk& disk,
                              Window_Place& main_window);

} // namespace app
