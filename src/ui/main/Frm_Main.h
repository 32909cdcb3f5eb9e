#pragma once

#include "app/job_state.h"
#include "app/leaving_gate.h"
#include "app/sequences.h"
#include "link/ui/link_ports.h"
#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"
#include "scripts/ui/script_place.h"
#include "store/clsDBConn.h"
#include "ui/parts/window_placer.h"

#include <QMainWindow>
#include <QPointer>
#include <memory>

class QLabel;

namespace ui_parts {
class Status_Line;
}

namespace ui_main {

class Main_Form;

/// The program's only top-level window: the sets of the open library, the CVs and scripts of the
/// selected one, and the menus through which everything else is reached. It puts together what
/// others bring: the view of the library and the groups of commands.
class Frm_Main final : public QMainWindow, public app::Main_Window {
    Q_OBJECT
public:
    Frm_Main(desktop::Desktop& desktop, files::Disk& disk, store::clsDBConn& database,
             const link_ui::Link_Ports& ports, scripts_ui::Make_Cab make_cab = {});
    ~Frm_Main() override;

    /// The start-up sequence. Call once, before the window is shown.
    void load();
    /// The shut-down sequence, with nobody asked; does nothing the second time.
    void unload();

    void Refresh_Sets();
    void Show_CVs(std::int32_t SetID);
    void Open_Script(int position); ///< of the selected set, in the script editor
    void Delete_Set(std::int32_t SetID);

    app::Window_Place place() override { return placer_.place(); }
    void move_to(const app::Window_Place& place) override { placer_.bring_to(place); }
    void default_database_made() override;
    void no_default_database(const files::Error& reason) override;
    void Open_Database() override;
    void Redraw_Script_List() override;
    void Fill_Last_Files_Menu() override;
    void choose_decoder_family(int index) override;
    void close_other_windows() override {}
    void Connection_Close() override { database_.Connection_Close(); }

    /// Passed before a set or the library is left, and before the program ends.
    app::Leaving_Gate& gate() { return gate_; }
    /// While a job runs, lists, fields and most commands are off.
    app::Job_State& job() { return job_; }

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    struct Inside;

    void build_foot();
    void bring_program_commands();
    void show_settings();
    void wire();
    void show_title();
    void meet(const store::Trouble& trouble);
    void follow_job();
    void end_program();
    void shut_down();

    desktop::Desktop& desktop_;
    files::Disk& disk_;
    store::clsDBConn& database_;
    link_ui::Link_Ports ports_;
    scripts_ui::Make_Cab make_cab_;
    app::Job_State job_;
    app::Leaving_Gate gate_{job_};
    Main_Form* form_;
    ui_parts::Status_Line* status_;
    QLabel* write_protected_; ///< stays in the status bar while the library cannot be changed
    QLabel* settings_lost_;   ///< stays there while nothing can be kept for the next run
    std::unique_ptr<Inside> inside_;
    ui_parts::Window_Placer placer_{*this, desktop_};
    QPointer<QWidget> focus_before_job_;
    bool unloaded_ = false;
};

} // namespace ui_main
