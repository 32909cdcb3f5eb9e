#pragma once

#include "app/diagnostic_log.h"
#include "app/sequences.h"
#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"
#include "store/clsDBConn.h"
#include "ui/main/cv_panel.h"

#include <QMainWindow>
#include <memory>
#include <vector>

class QLabel;
class QMenu;

namespace vqx_export {
enum class File_Type;
}

namespace ui_main {

class Main_Form;
class Status_Line;
struct Menu_Entry;
class frm_get_2_string;

/// The program's only top-level window: the sets of the open library, the CVs and scripts of the
/// selected one, and the menus through which everything else is reached.
///
/// The state "no set is current" (AktCVSetID 0, no CVs, no scripts) goes with "nothing is selected
/// in the set list".
class Frm_Main final : public QMainWindow, public app::Main_Window, public Cv_Panel_Owner {
    Q_OBJECT
public:
    Frm_Main(desktop::Desktop& desktop, files::Disk& disk, store::clsDBConn& database);
    ~Frm_Main() override;

    /// The start-up sequence. Call once, before the window is shown.
    void load();
    /// The shut-down sequence; does nothing the second time.
    void unload();

    void Refresh_Sets();
    void Show_CVs(std::int32_t SetID) override;
    void Delete_Set(std::int32_t SetID);
    void Show_Page_Fields(bool visible);

    void Open_Database() override;
    void Redraw_Script_List() override;
    void Fill_Last_Files_Menu() override;
    void choose_decoder_family(int index) override;
    void close_other_windows() override;
    void Connection_Close() override;
    void no_default_database(const files::Error& reason) override;

    void say(const QString& sentence) override;
    bool say_trouble() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    friend struct Menu_Entry;

    // Frm_Main.cpp: lists and options
    void wire();
    void fill_sets();
    void select_set(std::int32_t SetID);
    void select_first_set();
    void set_selected();
    void end_program();
    QString status() const; ///< the sentence in the status bar
    /// Says a sentence and keeps it in the log, with the reason in the words of the system.
    void say_and_log(const QString& sentence, const QString& reason);
    app::Diagnostic_Log log();
    void choose_reset_cv(int index);
    void show_title();

    // menus.cpp
    static const std::vector<Menu_Entry>& menu_entries();
    void build_menus();
    void enable_commands();

    // set_commands.cpp
    void add_set();
    void rename_set();
    void delete_set();
    void delete_set_at_once();
    QString with_cut(const QString& sentence, const frm_get_2_string& dialog) const;
    QString shown_set() const; ///< the selected entry of the set list

    // file_commands.cpp
    void open_database();
    void create_database();
    void reopen(int entry);
    void export_oem();
    void export_user();
    void export_project(bool user);
    void write_project(const QString& path, vqx_export::File_Type type);
    void say_opening();
    bool make_database(const QString& path);

    desktop::Desktop& desktop_;
    files::Disk& disk_;
    store::clsDBConn& database_;
    Main_Form* form_;
    std::unique_ptr<Cv_Panel> cv_panel_;
    Status_Line* status_;
    QLabel* write_protected_; ///< stays in the status bar while the library cannot be changed
    QMenu* mnu_open_last_ = nullptr;
    QMenu* mnu_cv_set_ = nullptr;
    QMenu* mnu_copymenu_ = nullptr;
    int family_ = 0; ///< 0 QR, 1 QD
    bool redrawing_scripts_ = false;
    bool unloaded_ = false;
};

} // namespace ui_main
