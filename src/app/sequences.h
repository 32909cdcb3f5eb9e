#pragma once

#include "app/mod_main.h"

namespace app {

/// What the start and the end of the program ask of the main window.
class Main_Window {
public:
    virtual ~Main_Window() = default;
    virtual void Fill_Last_Files_Menu() = 0;
    virtual void Redraw_Script_List() = 0;
    virtual void Open_Database() = 0;                  ///< opens Database_Path + Database_File
    virtual void choose_decoder_family(int index) = 0; ///< 0 QR, 1 QD
    virtual void close_other_windows() = 0;
    virtual void Connection_Close() = 0;
    /// The default database could not be made; the start goes on without one.
    virtual void no_default_database(const files::Error& reason) = 0;
};

/// The order in which the program starts.
void start_up(Main_Window& window, desktop::Desktop& desktop, files::Disk& disk);
/// The order in which it ends.
void shut_down(Main_Window& window);

} // namespace app
