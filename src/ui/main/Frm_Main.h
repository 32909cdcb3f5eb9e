#pragma once

#include "app/diagnostic_log.h"
#include "app/sequences.h"
#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"
#include "store/undo_history.h"
#include "ui/main/cv_panel.h"
#include "ui/parts/window_placer.h"

#include <QMainWindow>
#include <functional>
#include <memory>
#include <vector>

class QLabel;
class QMenu;

namespace store {
class Backups;
struct Paste_Report;
struct Pasted;
} // namespace store

namespace vqx_export {
enum class File_Type;
}

namespace ui_main {

class Main_Form;
class Status_Line;
struct Menu_Entry;
class frm_get_2_string;
enum class Text;

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

    app::Window_Place place() override;
    void move_to(const app::Window_Place& place) override;
    void default_database_made() override;
    void Open_Database() override;
    void Redraw_Script_List() override;
    void Fill_Last_Files_Menu() override;
    void choose_decoder_family(int index) override;
    void close_other_windows() override;
    void Connection_Close() override;
    void no_default_database(const files::Error& reason) override;

    void say(const QString& sentence) override;
    bool say_trouble() override;
    bool leave_gone_set() override;
    Status_Line& status_line() override { return *status_; }

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    friend struct Menu_Entry;

    // Frm_Main.cpp: lists and options
    void wire();
    void fill_sets();
    void select_set(std::int32_t SetID);
    /// Fills the set list anew and selects the set, or its neighbour. @return whether it is there
    bool refill_sets(std::int32_t SetID);
    void select_first_set();
    void set_selected(); ///< shows the set that is selected now
    void set_chosen();   ///< the same, when the user has selected it
    void end_program();
    /// A command as one that says all it has to say in one message.
    std::function<void()> command(void (Frm_Main::*run)());
    /// Says a sentence and keeps it in the log, with the reason in the words of the system.
    void say_and_log(const QString& sentence, const QString& reason);
    void say_and_log(const QString& sentence, const store::Trouble& reason);
    void say_missing_copy(); ///< that no backup could be made, if so
    /// Says what a command did, what loading has left out, and what was refused.
    void say_outcome(const QString& done);
    void say_of_choice(); ///< the same, when the user has chosen another set or view
    static QString with_left_out(const QString& sentence);
    /// Whether there are CV sets to work on; says why not.
    bool expect_library();
    void say_no_set(); ///< that none is selected, and why
    app::Diagnostic_Log log();
    void choose_reset_cv(int index);
    void show_title();

    // menus.cpp
    static const std::vector<Menu_Entry>& menu_entries();
    void build_menus();
    void build_extras();
    void enable_commands();

    // set_commands.cpp
    void add_set();
    void rename_set();
    void delete_set();
    void delete_set_at_once();
    void delete_shown_set(std::int32_t SetID, const QString& shown);
    QString with_cut(const QString& sentence, const frm_get_2_string& dialog) const;
    QString shown_set() const; ///< the selected entry of the set list, as sentences quote it
    int stored_number(std::int32_t SetID); ///< of the selected set
    void say_set_gone(const QString& set); ///< @param set as it was shown
    /// Takes a set out of view that another copy of the program has deleted, and says so.
    /// @param shown as it was shown
    /// @return false: it is there
    bool leave_gone_set(std::int32_t SetID, const QString& shown);

    // clipboard_commands.cpp
    void copy_cvs();
    void copy_set();
    void copy_listing();
    void paste_cvs();
    void paste_set();
    void put_on_clipboard(const desktop::Clipboard& content, const QString& sentence);
    bool refuse_incomplete_copy();
    /// Loads the whole library into SetsObj. @return the selected set in it; nullptr: why is said
    const store::cls_CV_Set* load_selected_set();
    void paste(const store::Pasted& pasted);
    static QString sentence_on(const store::Pasted& pasted, const store::Paste_Report& report);

    // extras_commands.cpp
    void settings();
    void undo();
    void redo();
    void go_through_history(const store::Undo_Result& result, Text done, Text nothing);
    void show_set(std::int32_t SetID);
    void name_steps(bool menu_open);
    void restore_backup();
    store::Backups& backups(); ///< made when the folders are known

    // hints.cpp
    void show_hints(); ///< to be called when a list was filled or its set has changed
    Text hint_for_sets();
    bool sets_unreadable();

    // window_events.cpp
    void refill_if_changed();

    // file_commands.cpp
    void open_database();
    void create_database();
    void reopen(int entry);
    void export_oem();
    void export_user();
    void export_project(bool user);
    void write_project(const QString& path, vqx_export::File_Type type);
    void say_opening();
    void append_protection(QStringList& parts, const store::Opening& opening) const;
    bool make_database(const QString& path);
    /// Why a file at this path can be neither read nor made, where the name alone tells it.
    files::Failure true_reason(const QString& path, files::Failure told);
    QString why_not_opened(const QString& path, const store::Trouble& trouble);
    void say_not_made(const QString& path, files::Error reason);

    desktop::Desktop& desktop_;
    files::Disk& disk_;
    store::clsDBConn& database_;
    Main_Form* form_;
    std::unique_ptr<Cv_Panel> cv_panel_;
    Status_Line* status_;
    QLabel* write_protected_; ///< stays in the status bar while the library cannot be changed
    QLabel* settings_lost_;   ///< stays there while nothing can be kept for the next run
    QMenu* mnu_open_last_ = nullptr;
    QMenu* mnu_cv_set_ = nullptr;
    QMenu* mnu_copymenu_ = nullptr;
    QMenu* menu_extras_ = nullptr;
    QAction* mnu_undo_ = nullptr;
    QAction* mnu_redo_ = nullptr;
    store::Undo_History history_;
    std::unique_ptr<store::Backups> backups_;
    ui_parts::Window_Placer placer_{*this};
    std::uint64_t shown_state_ = 0; ///< of the library, when the lists were last compared with it
    int family_ = 0;                ///< 0 QR, 1 QD
    bool redrawing_scripts_ = false;
    bool unloaded_ = false;
};

} // namespace ui_main
