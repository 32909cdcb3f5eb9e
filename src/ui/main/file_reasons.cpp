#include "ui/main/file_reasons.h"

namespace ui_main {

files::Failure true_reason(files::Disk& disk, const QString& path, files::Failure told) {
    const std::string name = path.toStdString();
    try {
        if (const std::optional<files::Look> look = disk.look(disk.resolve(name)))
            return look->is_file ? told : files::Failure::no_file;
        disk.open(name, files::Access::read); // for its refusal: nothing stands there
    } catch (const files::Error& error) {
        if (error.kind == files::Failure::name_too_long) return error.kind;
    }
    return told;
}

} // namespace ui_main
