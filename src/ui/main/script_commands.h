#pragma once

#include "scripts/cv_collisions.h"
#include "scripts/script_file.h"
#include "ui/main/surroundings.h"

#include <QObject>

namespace ui_main {

class Cv_Panel;

/// Scripts of the selected set: made, named, switched on and off, deleted, from and to files.
class Script_Commands final : public QObject {
public:
    Script_Commands(const Surroundings& at, Cv_Panel& cv_panel);

    void add_script();
    void rename_script(std::int32_t ScriptID, const QString& name);
    void make_active(int position, bool active);

    void ImportScripts();
    void ExportScript(int position);
    void DeleteScript(int position);

private:
    std::optional<scripts::Script_File> read_scripts(const QString& path);
    void MoveCollidingCVs(scripts::Script_File& file);
    void keep_scripts(const scripts::Script_File& file, const QString& name);
    void write_script(const scripts::cls_script& script, const QString& path);

    void say_refusal(); ///< of a change to a script

    Surroundings at_;
    Cv_Panel& cv_panel_;
};

} // namespace ui_main
