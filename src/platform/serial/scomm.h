#pragma once

#include "platform/serial/error.h"
#include "platform/serial/line_settings.h"
#include "platform/timing/time.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace serial {

using Byte = std::uint8_t;
using Bytes = std::vector<Byte>;
using timing::Milliseconds;

constexpr int highest_port = 64; ///< ports are numbered from 1

/// What a control tells of its own accord.
enum class Event {
    data_received,
    break_received,
    framing_error,
    overrun,          ///< bytes lost in the device
    receive_overflow, ///< bytes lost on this side of it
    parity_error,
    transmit_full,    ///< the device takes no more; what it did not take is lost
    unexpected_error, ///< the driver refused something, and the port is still there
    no_modem_lines    ///< RTS cannot be switched (a pseudo-terminal); told once per opening
};

enum class Wait_End { time, event, interruption };

/// An event-driven serial port, open for nobody else. DTR and every kind of handshake are off.
/// Bytes with a framing or parity error and breaks bring no input, only their event. What is
/// written goes to the device at once.
///
/// It needs no event loop: it belongs to one thread at a time, whichever that is, and what it has
/// to tell is told while that thread waits. A port that vanishes is closed by the call that notices
/// it, which throws; from then on the control is closed, and waiting is only waiting.
class SComm {
public:
    SComm() = default;
    SComm(const SComm&) = delete;
    SComm& operator=(const SComm&) = delete;
    virtual ~SComm() = default;

    /// Looks for ports anew, for device names; opening looks by itself.
    virtual void look_for_ports() = 0;
    /// Description and number: "KELDA Interface (COM7)". Empty: there is no such port.
    virtual QString device_name(int number) = 0;

    void port(int number); ///< 1..64; of the next opening
    int port() const { return port_; }
    /// "9600,N,8,1" at first. Throws Error (settings) and keeps the former ones.
    void settings(const QString& text);
    const QString& settings() const { return settings_; }

    void open();  ///< throws Error; nothing where it is open
    void close(); ///< forgets input and output at once; never throws
    bool is_open() const { return open_; }
    /// Why the port that was opened last closed by itself.
    const std::optional<Error>& lost() const { return lost_; }

    /// Off at first. A closed port remembers it for the opening.
    void rts(bool on);
    bool rts() const { return rts_; }

    void read_length(int bytes) { read_length_ = bytes; }     ///< 0: all there is
    void receive_threshold(int bytes) { threshold_ = bytes; } ///< 0: no data_received
    int input_count();                                        ///< bytes that can be read now
    Bytes read_bytes();                                       ///< never waits
    QString read_text();                                      ///< the same, a byte a character
    void clear_input();
    void clear_output(); ///< what the device has not sent yet
    /// Throws Error (not_open, vanished, device).
    void write_bytes(std::span<const Byte> bytes);
    void write_text(const QString& text); ///< Latin-1

    /// Told from within wait_until(), and nowhere else. The handler may do anything with the
    /// control but wait and change the handler.
    std::function<void(Event)> on_event;

    /// Blocks the thread until the moment, an event, new input (even if it brings no event), or the
    /// interruption, whichever comes first. Input that is left unread ends one wait only. Throws
    /// Error (vanished).
    Wait_End wait_until(Milliseconds moment, timing::Interruption& by);

protected:
    virtual void open_device(const Line_Settings& line) = 0;
    virtual void close_device() noexcept = 0;
    virtual void put_settings(const Line_Settings& line) = 0;
    virtual bool put_rts(bool on) = 0; ///< @return false: there is no such line
    virtual void send(std::span<const Byte> bytes) = 0;
    /// Hands over what has come since, by arrived() and happened(), without waiting.
    virtual void fetch() = 0;
    virtual void discard_input() = 0;
    virtual void discard_output() = 0;
    /// On a closed port too. @return false: before the moment, there may be something to fetch
    virtual bool sleep_until(Milliseconds moment, timing::Interruption& by) = 0;

    void arrived(std::span<const Byte> bytes);
    void happened(Event event); ///< until it is told once, it counts once
    std::string subject() const { return "COM" + std::to_string(port_); }

private:
    template <class Call>
    void on_device(Call call);
    bool tell();

    int port_ = 1;
    QString settings_ = QStringLiteral("9600,N,8,1");
    Line_Settings line_;
    bool open_ = false;
    std::optional<Error> lost_;
    bool rts_ = false;
    bool lineless_ = false; ///< known since the opening
    int read_length_ = 0;
    int threshold_ = 0;
    Bytes input_;
    bool news_ = false; ///< input that no wait has ended with yet
    std::vector<Event> happened_;
};

} // namespace serial
