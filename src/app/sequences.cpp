#include "app/sequences.h"

#include "app/mod_save_settings.h"

namespace app {

void start_up(Main_Window& window, desktop::Desktop& desktop, files::Disk& disk) {
    Get_Monitors(desktop);
    Window_Place place = window.place();
    const Default_Database database = Init_Globals(desktop, disk, place);
    window.move_to(place);
    window.Fill_Last_Files_Menu();
    window.Redraw_Script_List();
    if (database.made) window.default_database_made();
    if (database.trouble)
        window.no_default_database(*database.trouble); // why there is none to open
    window.Open_Database();
    window.choose_decoder_family(0);
}

std::optional<files::Error> shut_down(Main_Window& window, files::Disk& disk) {
    window.close_other_windows();
    window.Connection_Close();
    return Save_Settings(disk, window.place());
}

} // namespace app
