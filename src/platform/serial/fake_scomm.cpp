#include "platform/serial/fake_scomm.h"

#include <algorithm>

namespace serial {

QString Fake_SComm::device_name(int number) {
    const auto found = ports.find(number);
    if (found == ports.end()) return {};
    return QStringLiteral("%1 (COM%2)").arg(found->second.description).arg(number);
}

void Fake_SComm::open_device(const Line_Settings&) {
    const auto found = ports.find(port());
    if (found == ports.end()) throw Error(Failure::not_found, subject(), "no such port");
    if (found->second.refusal) throw *found->second.refusal;
}

void Fake_SComm::close_device() noexcept {
    incoming_.clear();
    if (ports.contains(port())) change_rts(false); // as a driver does
    line_on_ = false;
}

void Fake_SComm::step() {
    if (++steps_ != gone_at) return;
    if (stays) throw Error(Failure::device, subject(), "refused");
    ports.erase(port());
    throw Error(Failure::vanished, subject(), "unplugged");
}

const Fake_SComm::Fault* Fake_SComm::fault_of_next(Way way) {
    const int number = ++bytes_[static_cast<std::size_t>(way)];
    const auto found = std::ranges::find_if(
        faults, [&](const Fault& fault) { return fault.way == way && fault.nth == number; });
    return found == faults.end() ? nullptr : &*found;
}

void Fake_SComm::change_rts(bool on) {
    if (line_on_ == on) return;
    line_on_ = on;
    rts_changes_.push_back({time_.now(), on, sent_.size()});
    if (const auto react = ports.at(port()).on_rts) react(on);
}

bool Fake_SComm::put_rts(bool on) {
    step();
    if (!ports.at(port()).modem_lines) return false;
    change_rts(on);
    return true;
}

void Fake_SComm::deliver(Byte byte) {
    const auto found = ports.find(port());
    if (found == ports.end() || !found->second.on_byte) return;
    const auto react = found->second.on_byte;
    react(byte);
}

void Fake_SComm::send(std::span<const Byte> bytes) {
    step();
    for (const Byte byte : bytes) {
        sent_.push_back({time_.now(), byte});
        const Fault* fault = fault_of_next(Way::sent);
        if (fault == nullptr) {
            deliver(byte);
            continue;
        }
        switch (fault->fate) {
        case Fate::lost:
            break;
        case Fate::doubled:
            deliver(byte);
            deliver(byte);
            break;
        case Fate::late:
            time_.at(time_.now() + fault->by, [this, byte] { deliver(byte); });
            break;
        case Fate::changed:
            deliver(fault->to);
            break;
        }
    }
}

void Fake_SComm::arrive_at(Milliseconds moment, Byte byte) {
    last_arrival_ = std::max(last_arrival_, moment);
    time_.at(last_arrival_, [this, byte] {
        if (!is_open()) return;
        incoming_.push_back(byte);
        woken_.raise();
    });
}

void Fake_SComm::answer(const Bytes& bytes, Milliseconds after) {
    const Milliseconds moment = time_.now() + after;
    for (const Byte byte : bytes) {
        const Fault* fault = fault_of_next(Way::received);
        if (fault == nullptr) {
            arrive_at(moment, byte);
            continue;
        }
        switch (fault->fate) {
        case Fate::lost:
            break;
        case Fate::doubled:
            arrive_at(moment, byte);
            arrive_at(moment, byte);
            break;
        case Fate::late:
            arrive_at(moment + fault->by, byte);
            break;
        case Fate::changed:
            arrive_at(moment, fault->to);
            break;
        }
    }
}

void Fake_SComm::happen(Event event, Milliseconds after) {
    time_.at(time_.now() + after, [this, event] {
        if (!is_open()) return;
        happened(event);
        woken_.raise();
    });
}

void Fake_SComm::fetch() {
    step();
    arrived(incoming_);
    incoming_.clear();
}

void Fake_SComm::discard_input() {
    step();
    incoming_.clear();
}

bool Fake_SComm::sleep_until(Milliseconds moment, timing::Interruption& by) {
    if (!incoming_.empty()) return false;
    woken_.clear();
    const timing::Interruption::Listener listener(by, [this] { woken_.raise(); });
    return time_.wait_until(moment, woken_);
}

Bytes Fake_SComm::sent_bytes() const {
    Bytes bytes;
    for (const Sent& sent : sent_) bytes.push_back(sent.byte);
    return bytes;
}

void Fake_SComm::clear_records() {
    sent_.clear();
    rts_changes_.clear();
}

} // namespace serial
