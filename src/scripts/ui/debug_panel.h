#pragma once

#include "scripts/ui/debug_list.h"
#include "scripts/ui/debug_models.h"
#include "scripts/ui/debug_values.h"
#include "sim/debugger.h"
#include "ui/parts/status_line.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSplitter>
#include <QWidget>
#include <memory>
#include <vector>

namespace scripts_ui {

/// What the debugger of a simulation knows: its last steps, watched values and break points, and
/// why it stands. For the foot or the side of a window; lays itself out for either.
class Debug_Panel final : public QWidget {
    Q_OBJECT
public:
    /// @param debugger, decoder live longer
    Debug_Panel(sim::Debugger& debugger, const sim::Simulated_Decoder& decoder, QWidget* parent);

    /// After every step, and when the simulation has stopped or something has been edited; also
    /// while the panel is hidden, when it costs nearly nothing.
    void refresh();
    /// Asks for the condition of the break point at a line, and puts one there if there is none;
    /// nothing for a line outside 0..255. Returns at once.
    void edit_break(int line);
    /// Why the simulation stands; empty for nothing to say.
    void say(const QString& sentence);
    void show_own_clock(bool on);
    void take_focus(); ///< for the trace

    QSize sizeHint() const override;

Q_SIGNALS:
    void line_wanted(int line);
    void breaks_changed();
    void own_clock_wanted(bool on);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int row_height() const; ///< of the controls above a list: those of all lists are equally high
    QWidget* trace_part();
    QWidget* watch_part();
    QWidget* break_part();
    void watch(sim::Value_Ref value);
    void unwatch(int row);
    void go_to_break(int row);
    void edit_condition(int row);
    void remove_break(int row);

    sim::Debugger& debugger_;
    Trace_Model trace_;
    Watch_Model watch_;
    Break_Model breaks_;

    QSplitter* parts_;
    Value_Choice* add_watch_;
    QPushButton* condition_;
    ui_parts::Status_Line* reason_;
    QCheckBox* own_clock_;
    Trace_List* debug_trace_;
    Debug_List* debug_watch_;
    Debug_List* debug_breaks_;
    std::vector<std::unique_ptr<ui_parts::Empty_Hint>> hints_;
};

} // namespace scripts_ui
