#include "link/transport/services.h"

#include "link/serial/port_trouble.h"

namespace link_transport {

Services::Services(link_serial::frm_Soundload_cls& host, link_types::Link_Values& values)
    : host_(host), values_(values) {}

Services::~Services() {
    if (host_.ActiveTransport == this) host_.close();
}

void Services::TimerTick() {
    if (ticks_left_ > 0) --ticks_left_;
    if (ticks_left_ > 0) return;
    timed_out_ = true;
    pause_over_ = true;
    host_.Timer1_Enabled(false);
}

void Services::Pause(int ticks) {
    ticks_left_ = ticks;
    pause_over_ = false;
    host_.Timer1_Enabled(true);
    while (!pause_over_ && !aborted()) host_.yield();
    host_.Timer1_Enabled(false);
}

void Services::WaitReceive(int ticks) {
    if (!connected_) return;
    ticks_left_ = ticks;
    host_.RxFlag = false;
    timed_out_ = false;
    host_.Timer1_Enabled(true);
    while (!host_.RxFlag && !timed_out_ && !aborted()) {
        host_.yield();
        if (host_.SComm1.input_count() > 0) host_.receive(serial::Event::data_received);
    }
    host_.Timer1_Enabled(false);
}

void Services::fail(const serial::Error& error) {
    note(error);
    log(QStringLiteral("Unerwarteter Fehler"));
    log(link_serial::sentence(error));
}

void Services::SendBytes(std::span<const std::uint8_t> bytes) {
    if (connected_) host_.SComm1.write_bytes(bytes);
}

void Services::open_port() {
    serial::SComm& control = host_.SComm1;
    if (!control.is_open()) {
        control.port(values_.ComPort);
        control.settings(QStringLiteral("38400,N,8,2"));
        control.receive_threshold(0);
        control.rts(false);
        control.open();
    }
    control.read_length(0);
}

void Services::close_port() { host_.SComm1.close(); }

void Services::receive_bytes() {
    host_.SComm1.read_length(1);
    host_.SComm1.receive_threshold(1);
}

} // namespace link_transport
