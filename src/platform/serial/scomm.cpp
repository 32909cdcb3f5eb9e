#include "platform/serial/scomm.h"

#include <algorithm>
#include <utility>

namespace serial {
namespace {

/// Far more than any answer; a device that chatters while nobody reads must not fill the memory.
constexpr std::size_t longest_input = 32760;

} // namespace

/// Does something with the open device; whoever finds it gone closes it, once and for all, since a
/// descriptor of a device that is gone is ready for ever.
template <class Call>
void SComm::on_device(Call call) {
    try {
        call();
    } catch (const Error& error) {
        if (error.kind == Failure::vanished) {
            close();
            lost_ = error;
        }
        throw;
    }
}

void SComm::port(int number) {
    if (number < 1 || number > highest_port) {
        throw Error(Failure::not_found, "COM" + std::to_string(number), "no such number");
    }
    if (open_ && number != port_) throw std::logic_error("the port is open");
    port_ = number;
}

void SComm::settings(const QString& text) {
    const std::optional<Line_Settings> line = line_settings(text);
    if (!line) throw Error(Failure::settings, subject(), text.toStdString());
    if (open_) on_device([&] { put_settings(*line); });
    settings_ = text;
    line_ = *line;
}

void SComm::open() {
    if (open_) return;
    lost_.reset();
    input_.clear();
    happened_.clear();
    news_ = lineless_ = false;
    on_device([&] { open_device(line_); });
    open_ = true;
    if (rts_) rts(true);
}

void SComm::close() {
    if (!std::exchange(open_, false)) return;
    close_device();
    input_.clear();
    happened_.clear();
    news_ = false;
}

void SComm::rts(bool on) {
    rts_ = on;
    if (!open_ || lineless_) return;
    on_device([&] { lineless_ = !put_rts(on); });
    if (lineless_) happened(Event::no_modem_lines);
}

int SComm::input_count() {
    if (open_) on_device([&] { fetch(); });
    return static_cast<int>(input_.size());
}

Bytes SComm::read_bytes() {
    const int count = input_count();
    const auto end = input_.begin() + (read_length_ > 0 ? std::min(read_length_, count) : count);
    Bytes taken(input_.begin(), end);
    input_.erase(input_.begin(), end);
    if (input_.empty()) news_ = false;
    return taken;
}

QString SComm::read_text() {
    const Bytes bytes = read_bytes();
    QString text;
    for (const Byte byte : bytes) text.append(QChar(char16_t{byte}));
    return text;
}

void SComm::clear_input() {
    if (open_) on_device([&] { discard_input(); });
    input_.clear();
    news_ = false;
}

void SComm::clear_output() {
    if (open_) on_device([&] { discard_output(); });
}

void SComm::write_bytes(std::span<const Byte> bytes) {
    if (!open_) throw Error(Failure::not_open, subject(), "not open");
    on_device([&] { send(bytes); });
}

void SComm::write_text(const QString& text) {
    const QByteArray bytes = text.toLatin1();
    write_bytes(Bytes(bytes.begin(), bytes.end()));
}

void SComm::arrived(std::span<const Byte> bytes) {
    if (bytes.empty()) return;
    const std::size_t taken = std::min(bytes.size(), longest_input - input_.size());
    if (taken < bytes.size()) happened(Event::receive_overflow);
    input_.insert(input_.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(taken));
    news_ = true;
}

void SComm::happened(Event event) {
    if (std::ranges::find(happened_, event) == happened_.end()) happened_.push_back(event);
}

/// @return whether anything happened
bool SComm::tell() {
    const bool input = std::exchange(news_, false);
    std::vector<Event> events = std::exchange(happened_, {});
    // what the handler would find nothing of was read meanwhile
    if (input && threshold_ > 0 && std::cmp_greater_equal(input_.size(), threshold_)) {
        events.push_back(Event::data_received);
    }
    if (on_event) std::ranges::for_each(events, on_event);
    return input || !events.empty();
}

Wait_End SComm::wait_until(Milliseconds moment, timing::Interruption& by) {
    for (;;) {
        if (by.raised()) return Wait_End::interruption;
        const bool over = news_ || !happened_.empty() ? false : sleep_until(moment, by);
        if (open_) on_device([&] { fetch(); });
        const bool told = tell();
        if (by.raised()) return Wait_End::interruption;
        if (told) return Wait_End::event;
        if (over) return Wait_End::time;
    }
}

} // namespace serial
