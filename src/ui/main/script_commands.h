#pragma once

#include "scripts/cv_collisions.h"
#include "scripts/script_file.h"
#include "ui/main/surroundings.h"

#include <QObject>

namespace ui_main {

/// Scripts of the selected set: from and to files, and deleted.
class Script_Commands final : public QObject {
public:
    explicit Script_Commands(const Surroundings& at);

    void ImportScripts();
    void ExportScript(int position);
    void DeleteScript(int position);

private:
    std::optional<scripts::Script_File> read_scripts(const QString& path);
    void MoveCollidingCVs(scripts::Script_File& file);
    void keep_scripts(const scripts::Script_File& file, const QString& name);
    void write_script(const scripts::cls_script& script, const QString& path);
    std::optional<QString> ask_where_to_write(const QString& script);

    Surroundings at_;
};

} // namespace ui_main
