#pragma once

#include "platform/desktop/desktop.h"
#include "platform/timing/time.h"
#include "sim/cab_drive.h"
#include "sim/ui/cab_form.h"
#include "ui/parts/LabelEditLab.h"
#include "ui/parts/window_placer.h"

#include <QWidget>
#include <memory>
#include <optional>

namespace sim_ui {

/// The simulated cab: throttle and keys of the simulated decoder, and a look at what is inside it,
/// most of which can be overwritten in place. A window of its own, so that no key of another window
/// works in it.
class frm_Sim_Fahrpult final : public QWidget, public sim::Cab {
    Q_OBJECT
public:
    /// @param listener, time, desktop, decoder live longer
    /// @param last_place where a cab stood last: there this one opens, and it says where it closed
    frm_Sim_Fahrpult(sim::Cab_Listener& listener, timing::Time& time, sim::Script_CV script_cv,
                     desktop::Desktop& desktop,
                     sim::Simulated_Decoder& decoder = sim::SimDecoderState(),
                     std::shared_ptr<std::optional<app::Window_Place>> last_place = {});
    /// Closes it, where nobody has done so yet.
    ~frm_Sim_Fahrpult() override;

    /// Shows it, with its controls all off, and begins.
    void load();

    void show_timer(int value) override;
    void step_done() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void connect_controls();
    void connect_values(Value_Array& labels, void (frm_Sim_Fahrpult::*store)(int, std::int16_t));
    void store_value(int i, std::int16_t value);
    void store_variable(int i, std::int16_t value);
    void store_event(int i, std::int16_t value);
    void type_rate(const QString& typed);
    void tick();
    /// The cab itself has changed something.
    void acted();
    void stop_simulation();

    void show_controls();
    void show_decoder();
    void show_row(std::size_t row, int value);
    void mark_changes();

    sim::Cab_Listener& listener_;
    sim::Simulated_Decoder& decoder_;
    sim::Simulated_Decoder before_step_; ///< nobody but a step has changed anything since
    sim::Cab_Drive drive_;
    Cab_Form form_;
    std::array<int, sim::wert_count> shown_{}; ///< values whose text stands in the rows
    std::vector<std::unique_ptr<ui_parts::LabelEditLab>> editors_;
    bool loaded_ = false;
    bool Unloading_ = false;
    std::unique_ptr<timing::Tick_Timer> Timer2_; ///< of the ramp
    ui_parts::Window_Placer placer_;
    std::shared_ptr<std::optional<app::Window_Place>> last_place_;
};

} // namespace sim_ui
