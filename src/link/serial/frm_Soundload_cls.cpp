#include "link/serial/frm_Soundload_cls.h"

namespace link_serial {
namespace {

struct Event_Text {
    serial::Event event;
    const char16_t* text;
};

constexpr Event_Text event_texts[] = {
    {serial::Event::break_received, u"COM-Int: Break"},
    {serial::Event::framing_error, u"COM-Int: Framing error"},
    {serial::Event::overrun, u"COM-Int: Overrun"},
    {serial::Event::receive_overflow, u"COM-Int: RxOver"},
    {serial::Event::parity_error, u"COM-Int: Parity Error"},
    {serial::Event::transmit_full, u"COM-Int: TX Full"},
    {serial::Event::unexpected_error, u"COM-Int: Unexpected Error"},
    {serial::Event::no_modem_lines, u"COM-Int: RTS nicht schaltbar"},
};

} // namespace

frm_Soundload_cls::frm_Soundload_cls(serial::SComm& control, timing::Time& time,
                                     timing::Interruption& abort, link_types::Link_Log& log)
    : SComm1(control), time_(time), abort_(abort), log_(log) {
    SComm1.on_event = [this](serial::Event event) { receive(event); };
}

frm_Soundload_cls::~frm_Soundload_cls() { SComm1.on_event = nullptr; }

void frm_Soundload_cls::receive(serial::Event event) {
    if (event == serial::Event::data_received) take_received();
    for (const Event_Text& each : event_texts)
        if (each.event == event) log(QString::fromUtf16(each.text));
}

void frm_Soundload_cls::take_received() {
    while (SComm1.input_count() > 0) {
        const serial::Bytes chunk = SComm1.read_bytes();
        log(QStringLiteral("  COM-Int Data Receive: %1").arg(chunk.front()));
        RxByte = chunk.front();
        RxFlag = true;
    }
}

void frm_Soundload_cls::Timer1_Enabled(bool on) {
    if (on && !ticking_) next_tick_ = time_.now() + tick;
    ticking_ = on;
}

void frm_Soundload_cls::yield() {
    SComm1.wait_until(ticking_ ? next_tick_ : time_.now(), abort_);
    // A tick is a moment of the clock: one that a busy machine brings late is not lost.
    while (ticking_ && time_.now() >= next_tick_) {
        next_tick_ += tick;
        if (ActiveTransport != nullptr) ActiveTransport->TimerTick();
    }
}

} // namespace link_serial
