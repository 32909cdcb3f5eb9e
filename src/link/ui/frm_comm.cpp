#include "link/ui/frm_comm.h"

#include "link/serial/cls_comm.h"

#include <QCloseEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

namespace link_ui {
namespace {

constexpr int ports_shown = 32;
constexpr int refresh_interval = 500; ///< in milliseconds

} // namespace

using link_serial::Interface_Search;
using link_serial::Port_Kind;

frm_comm::frm_comm(QWidget* parent, desktop::Desktop& desktop, const Link_Ports& ports,
                   link_types::Link_Values& values, Log_Lines& log)
    : QDialog(parent), ports_(ports), values_(values), log_(log), names_(ports.make_control()),
      korli_port_(values.ComPort), List1(new QListWidget(this)),
      cmd_ok(new QPushButton(QStringLiteral("Please Wait!"), this)), Timer2(new QTimer(this)),
      placer_(*this, desktop) {
    setObjectName(QStringLiteral("frm_comm"));
    setWindowTitle(QStringLiteral("Serieller Port"));
    List1->setObjectName(QStringLiteral("List1"));
    List1->setAccessibleName(windowTitle());
    cmd_ok->setObjectName(QStringLiteral("cmd_ok"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(List1);
    column->addWidget(cmd_ok, 0, Qt::AlignRight);
    resize(300, 260);
    Timer2->setInterval(refresh_interval);
    Timer2->setSingleShot(true);
    connect(Timer2, &QTimer::timeout, this, [this] { refresh(true); });
    connect(List1, &QListWidget::currentRowChanged, this, &frm_comm::choose);
    connect(cmd_ok, &QPushButton::clicked, this, &frm_comm::reject);
    QTimer::singleShot(0, this, [this] { refresh(false); });
}

void frm_comm::refresh(bool by_timer) {
    log_.line(QStringLiteral("Search_Comm"));
    const std::vector<int> found = link_serial::existing_ports(*names_, ports_shown);
    for (const int port : found) {
        log_.line(QStringLiteral("Comm %1 exist").arg(port));
        if (by_timer && names_->device_name(port).contains(link_serial::interface_name))
            kinds_[port] = Port_Kind::korli;
    }
    if (found != candidates_ || !refreshed_) {
        candidates_ = found;
        const QSignalBlocker quiet(List1);
        List1->clear();
        for (const int port : candidates_)
            List1->addItem(link_serial::port_text(port, kinds_[port]));
        select(values_.ComPort);
    }
    for (const int port : candidates_) show_entry(port);
    refreshed_ = true;
    cmd_ok->setText(QStringLiteral("OK"));
    if (std::exchange(ports_before_, found.size()) != found.size())
        search();
    else if (wants_to_close_)
        QDialog::reject();
    else
        Timer2->start();
}

void frm_comm::show_entry(int port) {
    const auto place = std::ranges::find(candidates_, port) - candidates_.begin();
    if (QListWidgetItem* item = List1->item(static_cast<int>(place)))
        item->setText(link_serial::port_text(port, kinds_[port]));
}

void frm_comm::select(int port) {
    const auto place = std::ranges::find(candidates_, port) - candidates_.begin();
    List1->setCurrentRow(place < List1->count() ? static_cast<int>(place) : -1);
}

void frm_comm::search() {
    values_.BasuModeActive = false;
    std::shared_ptr<serial::SComm> control = ports_.make_control();
    job_ = std::make_unique<link_jobs::Job_Thread>(
        [this, control, candidates = candidates_](timing::Interruption& stop,
                                                  link_jobs::Job_Board& board) {
            result_ = Interface_Search(*control, ports_.time, stop, board).run(candidates);
        });
    connect(job_.get(), &link_jobs::Job_Thread::news, this, [this] {
        if (const auto news = job_->board().fetch()) log_.add(news->lines);
    });
    connect(job_.get(), &link_jobs::Job_Thread::ended, this, &frm_comm::search_ended);
}

void frm_comm::search_ended() {
    if (const auto news = job_->board().fetch()) log_.add(news->lines);
    job_.release()->deleteLater(); // it is still telling
    values_.BasuModeActive = result_.BasuModeActive;
    if (result_.ComPort) values_.ComPort = *result_.ComPort;
    if (const auto& found = result_.found) {
        kinds_[found->port] = found->kind;
        if (found->kind == Port_Kind::korli) korli_port_ = found->port;
        show_entry(found->port);
    }
    {
        const QSignalBlocker quiet(List1);
        select(values_.ComPort);
    }
    if (wants_to_close_)
        QDialog::reject();
    else
        Timer2->start();
}

void frm_comm::choose(int row) {
    if (job_ || row < 0) return;
    const int port = candidates_.at(static_cast<std::size_t>(row));
    if (values_.BasuModeActive && kinds_[port] != Port_Kind::korli) leave_basu();
    values_.ComPort = static_cast<std::int16_t>(port);
}

void frm_comm::leave_basu() {
    timing::Interruption nobody;
    const std::unique_ptr<serial::SComm> control = ports_.make_control();
    Interface_Search(*control, ports_.time, nobody, log_).leave_basu(korli_port_);
    values_.BasuModeActive = false;
}

void frm_comm::reject() {
    wants_to_close_ = true;
    if (job_ || !refreshed_) return;
    Timer2->stop();
    QDialog::reject();
}

void frm_comm::closeEvent(QCloseEvent* event) {
    event->ignore(); // the window goes by reject(), now or later
    reject();
}

} // namespace link_ui
