#pragma once

#include "link/types/link_values.h"
#include "platform/serial/scomm.h"
#include "platform/timing/time.h"

namespace link_serial {

/// Whoever counts the ticks of the host's timer.
class Ticked {
public:
    virtual ~Ticked() = default;
    virtual void TimerTick() = 0;
};

/// The serial control and the tick timer of a transport. It turns what the control tells into two
/// fields, and ticks into calls of the transport that is connected. It belongs to the thread of a
/// job; while that thread waits here, events and ticks come.
class frm_Soundload_cls {
public:
    static constexpr timing::Milliseconds tick{10};

    frm_Soundload_cls(serial::SComm& control, timing::Time& time, timing::Interruption& abort,
                      link_types::Link_Log& log);
    frm_Soundload_cls(const frm_Soundload_cls&) = delete;
    frm_Soundload_cls& operator=(const frm_Soundload_cls&) = delete;
    ~frm_Soundload_cls();

    serial::SComm& SComm1;
    bool RxFlag = false;               ///< received data has been taken from the control
    serial::Byte RxByte = 0;           ///< first byte of the chunk that was taken last
    Ticked* ActiveTransport = nullptr; ///< the one that is connected

    /// Takes what was received, or logs what went wrong on the line.
    void receive(serial::Event event);

    void Timer1_Enabled(bool on); ///< its first tick comes an interval later
    /// Waits for the next tick, event or input, or the abortion, whichever is first; without the
    /// timer it only lets happen what is due. Throws serial::Error where the port has vanished.
    void yield();
    void close() { ActiveTransport = nullptr; }

    timing::Time& time() { return time_; }
    timing::Interruption& abort() { return abort_; }
    void log(const QString& text) { log_.line(text); }

private:
    void take_received();

    timing::Time& time_;
    timing::Interruption& abort_;
    link_types::Link_Log& log_;
    bool ticking_ = false;
    timing::Milliseconds next_tick_{0};
};

} // namespace link_serial
