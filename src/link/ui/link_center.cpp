#include "link/ui/link_center.h"

#include "app/mod_main.h"
#include "link/serial/frm_Soundload_cls.h"
#include "link/ui/frm_comm.h"

namespace link_ui {
namespace {

/// What the link shares with the rest of the program.
void take_globals(link_types::Link_Values& values) {
    values.ComPort = app::globals.comport;
    values.TimingTarget = app::globals.TimingTarget;
    values.PreambleCount = app::globals.PreambleCount;
    values.decoder.cv_space = app::globals.DecoderCVCount;
}

void give_globals(const link_types::Link_Values& values) {
    app::globals.comport = values.ComPort;
    app::globals.DecoderCVCount = values.decoder.cv_space;
}

} // namespace

Link_Center::Link_Center(QWidget& window, desktop::Desktop& desktop, const Link_Ports& ports,
                         app::Job_State& state)
    : window_(window), desktop_(desktop), ports_(ports), state_(state) {}

Link_Center::~Link_Center() { cancel(); }

void Link_Center::start(Job job) {
    if (state_.runs()) return;
    job_ = std::move(job);
    begin();
}

void Link_Center::begin() {
    take_globals(values_);
    const std::unique_ptr<serial::SComm> names = ports_.make_control();
    link_serial::cls_comm comm(*names, values_, [this] { show_ports(window_); });
    comm.transport(job_->susi ? 2 : 1);
    comm.SelectPort();
    give_globals(values_);
    if (state_.runs()) return; // the user was asked meanwhile
    link_jobs::Order order{job_->mode, job_->susi, values_, {}};
    if (job_->cvs) {
        auto cvs = job_->cvs();
        if (!cvs) return;
        order.cvs = std::move(*cvs);
    }
    if (!transfer_) {
        transfer_ = new Frm_Download(&window_, desktop_);
        connect(transfer_, &Frm_Download::cancelled, this, [this] {
            if (thread_) thread_->cancel();
        });
        connect(transfer_, &Frm_Download::repeat_wanted, this, &Link_Center::repeat);
        connect(transfer_, &Frm_Download::log_wanted, this, &Link_Center::show_log);
    }
    transfer_->begin(job_->caption, job_->what);
    run_.emplace(state_, [this] { cancel(); });
    std::shared_ptr<serial::SComm> control = ports_.make_control();
    thread_ = std::make_unique<link_jobs::Job_Thread>(
        [this, control, order = std::move(order)](timing::Interruption& abort,
                                                  link_jobs::Job_Board& board) {
            link_serial::frm_Soundload_cls host(*control, ports_.time, abort, board);
            outcome_ = link_jobs::Transfer(order, host, board, ports_.loop).run();
        });
    connect(thread_.get(), &link_jobs::Job_Thread::news, this, &Link_Center::fetch);
    connect(thread_.get(), &link_jobs::Job_Thread::ended, this, &Link_Center::ended);
}

void Link_Center::repeat() {
    if (state_.runs() || !job_ || (job_->may_repeat && !job_->may_repeat())) return;
    begin();
}

void Link_Center::look_at_repeat() {
    if (transfer_) transfer_->allow_repeat(job_ && (!job_->may_repeat || job_->may_repeat()));
}

void Link_Center::fetch() {
    if (!thread_) return;
    const auto news = thread_->board().fetch();
    if (!news) return;
    log_.add(news->lines);
    if (transfer_) transfer_->show_display(news->display);
}

void Link_Center::ended() {
    if (!thread_) return;
    fetch();
    const bool cancelled = thread_->cancelled();
    thread_.release()->deleteLater(); // it is still telling
    values_ = outcome_.values;
    give_globals(values_);
    run_.reset();
    const QString advice = job_->done ? job_->done(outcome_) : QString();
    if (!transfer_) return;
    transfer_->end(advice);
    look_at_repeat();
    if (cancelled) transfer_->deleteLater();
}

// A job takes a tick to see that it is cancelled.
void Link_Center::cancel() {
    if (!thread_) return;
    thread_->cancel();
    thread_->wait();
    ended();
}

void Link_Center::show_log() {
    if (!log_window_) {
        log_window_ = new frm_log(&window_, log_, desktop_);
        log_window_->setAttribute(Qt::WA_DeleteOnClose);
    }
    log_window_->show();
    log_window_->raise();
    log_window_->activateWindow();
}

std::vector<int> Link_Center::existing_ports() const {
    return link_serial::existing_ports(*ports_.make_control());
}

void Link_Center::show_ports(QWidget& above) {
    if (state_.runs()) return;
    take_globals(values_);
    frm_comm(&above, desktop_, ports_, values_, log_).exec();
    give_globals(values_);
}

} // namespace link_ui
