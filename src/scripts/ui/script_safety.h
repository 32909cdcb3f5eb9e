#pragma once

#include "platform/files/disk.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <vector>

namespace scripts_ui {

/// A script that was not stored when the program had to end. It lies as a script file in the folder
/// of this user's data; its name tells where it came from.
struct Kept_Script {
    QString path;
    QString name; ///< as far as a file name has it
    std::int32_t SetID = 0;
};

/// @param library path of the library that it was opened from
/// @return where it lies; throws files::Error
QString keep_script(files::Disk& disk, const QByteArray& file, const QString& name,
                    std::int32_t SetID, std::int32_t ScriptID, const QString& library);

/// Those of a library; none where the folder cannot be read.
std::vector<Kept_Script> kept_scripts(files::Disk& disk, const QString& library);

/// It stays where it is, since its letters or a value may have no room in the library, but is not
/// offered any more. @return false: it is offered again, since that failed
[[nodiscard]] bool set_kept_aside(files::Disk& disk, const Kept_Script& script);

/// The letters of a script's name that any file may have.
QString plain_file_name(const QString& script);

} // namespace scripts_ui
