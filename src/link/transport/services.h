#pragma once

#include "link/transport/ISoundload.h"

#include <initializer_list>

namespace link_transport {

/// What the transports share: waits that are counted in ticks, and sending.
class Services : public ISoundload {
public:
    Services(link_serial::frm_Soundload_cls& host, link_types::Link_Values& values);
    ~Services() override;

    void TimerTick() override;
    const std::optional<serial::Error>& trouble() const override { return trouble_; }

protected:
    using Bytes = std::initializer_list<std::uint8_t>;

    void Pause(int ticks);
    /// Until a byte was received; the host's RxFlag says whether.
    void WaitReceive(int ticks);
    bool received(std::uint8_t byte) const { return host_.RxFlag && host_.RxByte == byte; }

    void SendBytes(std::span<const std::uint8_t> bytes);
    void SendBytes(Bytes bytes) { SendBytes(std::span(bytes.begin(), bytes.size())); }
    void RtsOn() { host_.SComm1.rts(true); }
    void RtsOff() { host_.SComm1.rts(false); }

    /// Opens the port as both transports do, if it is not open.
    void open_port();
    void close_port();
    /// One byte per read, and told of each.
    void receive_bytes();

    void log(const QString& text) { host_.log(text); }
    bool aborted() const { return host_.abort().raised(); }
    /// Whether trying again can help.
    bool may_go_on() const { return !aborted() && host_.SComm1.is_open(); }
    std::int64_t milliseconds_since(timing::Milliseconds start) const {
        return (host_.time().now() - start).count();
    }
    void note(const serial::Error& error) { trouble_ = error; }
    /// What the port refuses ends the work, and is noted.
    template <class Work>
    void ignoring_errors(Work work) {
        try {
            work();
        } catch (const serial::Error& error) {
            note(error);
        }
    }
    /// The same for Connect, which says so in the log. @return what the work returns; false
    template <class Work>
    bool connecting(Work work) {
        host_.ActiveTransport = this;
        connected_ = true;
        try {
            return work();
        } catch (const serial::Error& error) {
            fail(error);
            return false;
        }
    }

    link_serial::frm_Soundload_cls& host_;
    link_types::Link_Values& values_;
    bool connected_ = false;
    bool timed_out_ = false; ///< the last WaitReceive, or reading
    int ticks_left_ = 0;

private:
    void fail(const serial::Error& error);

    bool pause_over_ = false;
    std::optional<serial::Error> trouble_;
};

/// CV numbers from 1 go as an index from 0, in two bytes.
constexpr std::uint8_t high_byte(int cv) { return static_cast<std::uint8_t>((cv - 1) / 256); }
constexpr std::uint8_t low_byte(int cv) { return static_cast<std::uint8_t>((cv - 1) % 256); }

} // namespace link_transport
