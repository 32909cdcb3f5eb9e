#pragma once

#include "ui/main/surroundings.h"

namespace vqx_export {
enum class File_Type;
}

namespace ui_main {

/// Writing decoder project files.
class Export_Commands {
public:
    explicit Export_Commands(const Surroundings& at);
    Export_Commands(const Export_Commands&) = delete;
    Export_Commands& operator=(const Export_Commands&) = delete;

private:
    void export_project(vqx_export::File_Type type);
    void write_project(const QString& path, vqx_export::File_Type type);

    Surroundings at_;
};

} // namespace ui_main
