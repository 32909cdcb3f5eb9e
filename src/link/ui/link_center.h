#pragma once

#include "app/job_state.h"
#include "link/jobs/job_thread.h"
#include "link/jobs/transfer.h"
#include "link/serial/cls_comm.h"
#include "link/ui/Frm_Download.h"
#include "link/ui/frm_log.h"
#include "link/ui/link_ports.h"
#include "link/ui/log_lines.h"
#include "platform/desktop/desktop.h"

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <optional>

namespace link_ui {

/// A job that somebody wants done.
struct Job {
    link_jobs::Job_Mode mode = link_jobs::Job_Mode::query;
    bool susi = false;
    QString caption;
    QString what; ///< it works on, for the window: the name of a set
    /// What is to be written, read anew for each repetition; nothing: it cannot be had, and why is
    /// said.
    std::function<std::optional<std::vector<store::CVRec>>()> cvs;
    std::function<bool()> may_repeat; ///< what it worked on is still the same
    /// @return what the user can do now, for the window
    std::function<QString(const link_jobs::Outcome&)> done;
};

/// The jobs with a decoder, one at a time, with their windows and the values that they share.
class Link_Center final : public QObject {
    Q_OBJECT
public:
    Link_Center(QWidget& window, desktop::Desktop& desktop, const Link_Ports& ports,
                app::Job_State& state);
    ~Link_Center() override;

    /// Finds a port, asks the user where there is none, and begins. Does nothing while a job runs.
    void start(Job job);
    void show_log();
    QDateTime date() const { return ports_.time.date(); }
    /// The ports, to choose one, above a window. While a job runs there is nothing to choose.
    void show_ports(QWidget& above);
    std::vector<int> existing_ports() const;
    /// Whether the last job may be repeated can have changed.
    void look_at_repeat();

private:
    void begin();
    void repeat();
    void fetch();
    void ended();
    void cancel();

    QWidget& window_;
    desktop::Desktop& desktop_;
    Link_Ports ports_;
    app::Job_State& state_;
    link_types::Link_Values values_;
    Log_Lines log_;
    QPointer<frm_log> log_window_;
    QPointer<Frm_Download> transfer_;
    std::optional<Job> job_;
    link_jobs::Outcome outcome_; ///< the thread's, until it has ended
    std::unique_ptr<link_jobs::Job_Thread> thread_;
    std::optional<app::Job_State::Run> run_;
};

} // namespace link_ui
