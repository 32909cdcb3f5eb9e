#pragma once

#include "ui/main/Frm_Main.h"

namespace ui_main {

/// One command of the window: everything that menus need to know about it. Its caption and name
/// are those under which people and manuals know it.
struct Menu_Entry {
    enum class Family { any, qr, qd }; ///< decoder family that has the command

    const char* menu; ///< name of the menu that holds it; empty for the menu bar itself
    const char* name; ///< objectName; an empty caption makes a separator
    const char16_t* caption;
    void (Frm_Main::*run)() = nullptr; ///< a command without it is shown and cannot be chosen
    Family family = Family::any;
};

} // namespace ui_main
