#pragma once

#include "scripts/script_session.h"
#include "scripts/ui/row_view.h"
#include "scripts/ui/script_place.h"
#include "sim/cls_script_sim.h"
#include "sim/debugger.h"
#include "sim/script_clock.h"

#include <QWidget>
#include <memory>
#include <optional>

class QLabel;

namespace ui_parts {
class Status_Line;
class Window_Placer;
} // namespace ui_parts

namespace scripts_ui {

class Debug_Panel;
class Editor_Form;

/// The script editor: one script of the current set, line by line, and its simulation. There is one
/// such window; it is hidden while no script is open. It holds the script by the keys of set and
/// script, so nothing is ever stored into another one.
class frm_script final : public QWidget,
                         private app::Work_Holder,
                         private scripts::Session_Listener,
                         private sim::Simulated_Script {
    Q_OBJECT
public:
    /// How closing came about.
    enum class Closing { close_box = 0, request = 1, ok = 2, cancel = 3 };

    explicit frm_script(Script_Place place);
    ~frm_script() override;

    /// Opens the script at a position of the current set. Another one must be closed before.
    void open(int position);
    bool is_open() const { return session_ != nullptr; }
    bool is_closing() const { return closing_; }
    /// Closes for another part of the program, which asks whether to store what is not.
    /// @return false: it stays open
    bool request_close() { return close_as(Closing::request); }
    /// The scripts of the set have been loaded anew.
    void scripts_loaded();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override; ///< keys of the cab

private:
    bool may_leave() override { return request_close(); }
    void put_into_safety() override;
    void line_inserted(int line) override;
    void line_deleted(int line) override;
    void lines_changed() override;
    const scripts::cls_script* working_script() const override;
    void line_changed(int old_line, int new_line) override;

    void wire();
    void keep_debugger_for(const scripts::cls_script& script);
    void wire_simulation();
    void show_rows();
    void number_clicked(int line, quint64 moment);
    void insert_before(int line);
    void copy_from(int line);
    void ask_to_delete(int line);
    /// To the next change, to the one before, or forth to it again.
    enum class Going { on, back, forth };
    void go(Going way);
    void follow_info();
    void refresh_buttons();

    bool close_as(Closing how);
    bool leave_changes(Closing how);
    bool save();
    void offer_file(const QString& reason);
    scripts::cls_script in_file_form() const;
    void end();
    int position() const; ///< of the script in AktScripts; 0: it is not there
    scripts::Text_Context texts();
    int info_width(); ///< in characters

    void switch_simulation();
    void begin_simulation();
    void end_simulation();
    void pause();
    void set_pace();
    void stopped(int line, sim::Stop_Reason why);
    void step();
    void say_why_it_stands(const QString& sentence);
    /// @param how with %1 for the line
    void stand(QString how, QString why = {});
    void restate(); ///< after lines have moved
    void toggle_break(int line);
    void debug_changed();
    void show_debug(bool on);
    void make_debug_panel();
    void edit_break(int line);
    void show_margin_menu(int line);
    void run_to(int line);
    bool debug_key(const QKeyEvent& key);
    void go_to_panel(bool from_rows);

    Script_Place place_;
    Editor_Form* form_;
    Debug_Panel* debug_ = nullptr; ///< made when it is first looked at
    std::unique_ptr<ui_parts::Window_Placer> placer_;
    std::unique_ptr<scripts::Script_Session> session_;
    std::int32_t SetID_ = 0, ScriptID_ = 0;
    QString name_, library_;
    std::optional<std::size_t> stored_states_; ///< what the library held when it was loaded
    bool closing_ = false;
    bool lines_dropped_ = false; ///< at the last closing

    std::optional<quint64> inserted_at_; ///< when the click was that inserted a line
    int insert_took_ = 0;                ///< milliseconds until the new numbers were seen

    /// What a deleted line had of a break point, and of the simulation.
    struct Left_Break {
        bool there;
        std::optional<sim::Condition> condition;
        bool current;
    };
    sim::Script_Clock clock_;
    sim::Debugger debugger_;
    /// Of all lines that undo or redo can bring back, the next one last.
    std::vector<Left_Break> left_for_undo_, left_for_redo_;
    Going going_ = Going::on;
    QString stands_, why_it_stands_; ///< as it was said; empty: it does not stand
    bool deletes_nothing_ = false;   ///< what is half written
    std::unique_ptr<sim::cls_script_sim> simulation_;
};

} // namespace scripts_ui
