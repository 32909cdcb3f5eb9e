#pragma once

#include "app/leaving_gate.h"
#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"

class QWidget;

namespace store {
class clsDBConn;
}

namespace ui_main {

class Kept_Copies;
class Library_View;
class Main_Form;
class Menus;
class Messages;

/// What the window gives to those who bring it commands.
struct Surroundings {
    QWidget& window; ///< for dialogs
    desktop::Desktop& desktop;
    files::Disk& disk;
    store::clsDBConn& database;
    Main_Form& form;
    Menus& menus;
    Messages& messages;
    Library_View& view;
    Kept_Copies& copies;
    app::Leaving_Gate& gate; ///< to be passed before a set or the library is left
};

} // namespace ui_main
