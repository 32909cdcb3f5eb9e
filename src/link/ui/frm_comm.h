#pragma once

#include "link/jobs/job_thread.h"
#include "link/serial/interface_search.h"
#include "link/ui/link_ports.h"
#include "link/ui/log_lines.h"
#include "platform/desktop/desktop.h"
#include "ui/parts/window_placer.h"

#include <QDialog>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <map>
#include <memory>
#include <vector>

namespace link_ui {

/// The existing ports, searched for an interface; the user may choose another one.
class frm_comm final : public QDialog {
    Q_OBJECT
public:
    /// @param values ComPort and BasuModeActive change with what is found and chosen
    frm_comm(QWidget* parent, desktop::Desktop& desktop, const Link_Ports& ports,
             link_types::Link_Values& values, Log_Lines& log);

protected:
    void reject() override; ///< waits for the end of a search
    void closeEvent(QCloseEvent* event) override;

private:
    struct Search;

    void refresh(bool by_timer);
    void search();
    void search_ended();
    void choose(int row);
    void leave_basu();
    void show_entry(int port);
    void select(int port);

    Link_Ports ports_;
    link_types::Link_Values& values_;
    Log_Lines& log_;
    std::unique_ptr<serial::SComm> names_; ///< for device names
    std::vector<int> candidates_;
    std::map<int, link_serial::Port_Kind> kinds_;
    std::unique_ptr<link_jobs::Job_Thread> job_;
    link_serial::Interface_Search::Result result_;
    int korli_port_ = 0;
    std::size_t ports_before_ = 0;
    bool refreshed_ = false;
    bool wants_to_close_ = false;
    QListWidget* List1;
    QPushButton* cmd_ok;
    QTimer* Timer2;
    ui_parts::Window_Placer placer_;
};

} // namespace link_ui
