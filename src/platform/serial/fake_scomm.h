#pragma once

#include "platform/serial/scomm.h"
#include "platform/timing/virtual_time.h"

#include <array>
#include <map>

namespace serial {

/// A control whose ports and devices are made up by a test and whose time is virtual: waiting moves
/// it, and what was arranged happens on the way. Everything but what the device does is the same
/// code as with real ports. The time must not be moved after it is gone.
class Fake_SComm final : public SComm {
public:
    explicit Fake_SComm(timing::Virtual_Time& time) : time_(time) {}
    ~Fake_SComm() override { close(); }

    struct Port {
        QString description;
        std::function<void(Byte)> on_byte = {}; ///< what the device does with a byte; may answer()
        std::function<void(bool)> on_rts = {};  ///< with a change of RTS; may answer()
        std::optional<Error> refusal = {};      ///< thrown by opening
        bool modem_lines = true;
    };
    std::map<int, Port> ports;

    /// What the device of the open port sends, at the moment now + after, but never before what it
    /// sent earlier. Lost where the port is closed then.
    void answer(const Bytes& bytes, Milliseconds after = Milliseconds{0});
    void happen(Event event, Milliseconds after = Milliseconds{0}); ///< a line error, say

    enum class Way { sent, received };
    enum class Fate { lost, doubled, late, changed };
    struct Fault {
        Way way = Way::sent;
        int nth = 1; ///< byte of that way, the first ever is 1
        Fate fate = Fate::lost;
        Byte to = 0;        ///< of changed
        Milliseconds by{0}; ///< of late
    };
    std::vector<Fault> faults;
    int bytes(Way way) const { return bytes_[static_cast<std::size_t>(way)]; } ///< so far

    /// Calls that reached the open device so far. At the one with the number `gone_at` it is
    /// unplugged: the call fails, and the port is no more.
    int steps() const { return steps_; }
    int gone_at = 0;
    bool stays = false; ///< the call fails all the same, for once

    struct Sent {
        Milliseconds at;
        Byte byte = 0;
        bool operator==(const Sent&) const = default;
    };
    struct Rts_Change {
        Milliseconds at;
        bool on = false;
        std::size_t after_bytes = 0; ///< sent before it
        bool operator==(const Rts_Change&) const = default;
    };
    /// As it was written, whatever became of it on the way.
    const std::vector<Sent>& sent() const { return sent_; }
    Bytes sent_bytes() const;
    const std::vector<Rts_Change>& rts_changes() const { return rts_changes_; }
    /// Forgets sent bytes and changes; the counts of bytes and steps go on.
    void clear_records();

    void look_for_ports() override {}
    QString device_name(int number) override;

protected:
    void open_device(const Line_Settings& line) override;
    void close_device() noexcept override;
    void put_settings(const Line_Settings&) override { step(); }
    bool put_rts(bool on) override;
    void send(std::span<const Byte> bytes) override;
    void fetch() override;
    void discard_input() override;
    void discard_output() override { step(); }
    bool sleep_until(Milliseconds moment, timing::Interruption& by) override;

private:
    void step();
    const Fault* fault_of_next(Way way);
    void change_rts(bool on);
    void deliver(Byte byte);
    void arrive_at(Milliseconds moment, Byte byte);

    timing::Virtual_Time& time_;
    timing::Interruption woken_;
    Bytes incoming_; ///< has arrived and was not fetched
    Milliseconds last_arrival_{0};
    std::array<int, 2> bytes_{}; ///< of each way
    int steps_ = 0;
    bool line_on_ = false;
    std::vector<Sent> sent_;
    std::vector<Rts_Change> rts_changes_;
};

} // namespace serial
