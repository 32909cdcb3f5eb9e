#include "link/serial/interface_search.h"

namespace link_serial {
namespace {

constexpr timing::Milliseconds tick{10};

struct Kind_Text {
    Port_Kind kind;
    const char16_t* suffix;
};

constexpr Kind_Text kind_texts[] = {{Port_Kind::exists, u" - exists"},
                                    {Port_Kind::basul, u" - BASUL"},
                                    {Port_Kind::korli, u" - KORLI/FENTO"}};

} // namespace

QString port_text(int number, Port_Kind kind) {
    QString text = QStringLiteral("COM%1").arg(number);
    for (const Kind_Text& each : kind_texts)
        if (each.kind == kind) text += QString::fromUtf16(each.suffix);
    return text;
}

std::array<bool, 8> decoded_status(serial::Byte status) {
    std::array<bool, 8> flags{};
    for (std::size_t bit = 0; bit < flags.size(); ++bit) flags[bit] = (status >> bit & 1) != 0;
    return flags;
}

Interface_Search::Interface_Search(serial::SComm& control, timing::Time& time,
                                   timing::Interruption& stop, link_types::Link_Log& log)
    : control_(control), time_(time), stop_(stop), log_(log) {}

Interface_Search::Result Interface_Search::run(const std::vector<int>& candidates) {
    log_.line(QStringLiteral("Search Programmer"));
    Result result;
    const auto take = [&](int port, Port_Kind kind) {
        result.found = Found{port, kind};
        result.ComPort = static_cast<std::int16_t>(port);
        result.BasuModeActive = kind == Port_Kind::korli;
        result.status = status_;
        return result;
    };
    if (const auto port = first(candidates, &Interface_Search::is_korli))
        return take(*port, Port_Kind::korli);
    log_.line(QStringLiteral("No KORLI/FENTO found, search BASUL"));
    pause(10);
    if (const auto port = first(candidates, &Interface_Search::is_basul)) {
        log_.line(QStringLiteral("BASUL on Comm %1 found").arg(*port));
        return take(*port, Port_Kind::basul);
    }
    if (candidates.empty()) {
        log_.line(QStringLiteral("No Programmer"));
        return result;
    }
    result.ComPort = static_cast<std::int16_t>(candidates.front());
    log_.line(QStringLiteral("No Programmer, select %1").arg(candidates.front()));
    return result;
}

std::optional<int> Interface_Search::first(const std::vector<int>& candidates,
                                           bool (Interface_Search::*test)(int)) {
    for (const int port : candidates) {
        if (stop_.raised()) break;
        bool passed = false;
        try {
            passed = (this->*test)(port);
        } catch (const serial::Error&) {
            // in use, not ours, gone: another one may be the right one
        }
        control_.close();
        if (passed) return port;
    }
    return std::nullopt;
}

void Interface_Search::open(int port) {
    control_.port(port);
    control_.settings(QStringLiteral("38400,N,8,1"));
    control_.rts(false);
    control_.receive_threshold(0);
    control_.read_length(0);
    control_.open();
}

bool Interface_Search::is_korli(int port) {
    open(port);
    control_.clear_input();
    control_.write_text(QStringLiteral("\r"));
    pause(10);
    control_.write_text(QStringLiteral("BASU_EIN\r"));
    pause(20);
    QString answer;
    while (control_.input_count() > 0) answer += control_.read_text();
    return answer.contains(QStringLiteral("OK\r"));
}

bool Interface_Search::is_basul(int port) {
    open(port);
    pause(10);
    control_.rts(true);
    pause(10);
    control_.rts(false);
    pause(10);
    const serial::Bytes answer = control_.read_bytes();
    if (answer.empty()) return false;
    status_ = decoded_status(answer.front());
    return true;
}

void Interface_Search::leave_basu(int port) {
    log_.line(QStringLiteral("Deselect KORLI/FENTO on Comm %1").arg(port));
    try {
        open(port);
        control_.write_text(QStringLiteral("BASU_AUS\r"));
        pause(1); // closing forgets what the device has not sent yet
    } catch (const serial::Error&) {
        // what is gone is in no mode
    }
    control_.close();
}

// Nobody cancels a search but the end of the program.
void Interface_Search::pause(int ticks) {
    const timing::Milliseconds end = time_.now() + ticks * tick;
    while (time_.now() < end && !stop_.raised()) control_.wait_until(end, stop_);
}

} // namespace link_serial
