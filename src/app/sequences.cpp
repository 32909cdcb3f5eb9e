#include "app/sequences.h"

namespace app {

void start_up(Main_Window& window, desktop::Desktop& desktop, files::Disk& disk) {
    Get_Monitors(desktop);
    const std::optional<files::Error> trouble = Init_Globals(desktop, disk);
    window.Fill_Last_Files_Menu();
    window.Redraw_Script_List();
    window.Open_Database();
    window.choose_decoder_family(0);
    if (trouble) window.no_default_database(*trouble); // last, so that its sentence stays in view
}

void shut_down(Main_Window& window) {
    window.close_other_windows();
    window.Connection_Close();
}

} // namespace app
