#pragma once

#include "app/mod_main.h"

namespace app {

/// What the start and the end of the program ask of the main window.
class Main_Window {
public:
    virtual ~Main_Window() = default;
    virtual Window_Place place() = 0;
    /// Brings the window to a place on the screen.
    virtual void move_to(const Window_Place& place) = 0;
    /// The file that is opened first is new: nobody's work is in it yet.
    virtual void default_database_made() = 0;
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
/// The order in which it ends. @return why the settings could not be kept
[[nodiscard]] std::optional<files::Error> shut_down(Main_Window& window, files::Disk& disk);

} // namespace app
