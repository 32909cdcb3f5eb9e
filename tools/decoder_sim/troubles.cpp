#include "troubles.h"

#include <algorithm>
#include <sstream>

namespace decoder_sim {

const std::array<Trouble_Row, 21> trouble_rows{{
    {Trouble::no_answer, "no-answer", "", "the decoder does what it is told, but does not answer"},
    {Trouble::answer, "answer", "", "it answers again"},
    {Trouble::no_ok, "no-ok", "", "the interface does not say OK"},
    {Trouble::ok, "ok", "", "it says OK again, and without noise"},
    {Trouble::noise_before_ok, "noise-before-ok", "", "some bytes come before each OK"},
    {Trouble::late, "late", "MS", "every answer, OK too, comes MS milliseconds later"},
    {Trouble::wrong_answer, "wrong-answer", "N",
     "the N-th answer of the decoder is wrong (track: one bit)"},
    {Trouble::refuse_write, "refuse-write", "N", "the N-th write is answered with no"},
    {Trouble::ignore_write, "ignore-write", "N", "the N-th write is done, but not answered"},
    {Trouble::lose_answer, "lose-answer", "N", "the N-th byte to the host is lost"},
    {Trouble::double_answer, "double-answer", "N", "the N-th byte to the host comes twice"},
    {Trouble::change_answer, "change-answer", "N", "the N-th byte to the host is changed"},
    {Trouble::lose_byte, "lose-byte", "N", "the N-th byte from the host is lost"},
    {Trouble::double_byte, "double-byte", "N", "the N-th byte from the host comes twice"},
    {Trouble::change_byte, "change-byte", "N", "the N-th byte from the host is changed"},
    {Trouble::noise, "noise", "", "bytes come all the time"},
    {Trouble::no_noise, "no-noise", "", "no longer"},
    {Trouble::decoder_off, "decoder-off", "", "the decoder is taken from the track"},
    {Trouble::decoder_on, "decoder-on", "", "and put back"},
    {Trouble::unplug, "unplug", "", "the interface is pulled out"},
    {Trouble::plug, "plug", "", "and plugged in again"},
}};

std::optional<Ordered_Trouble> parsed_trouble(const std::string& text) {
    std::istringstream in(text);
    std::string name, rest;
    in >> name;
    const auto* row = std::ranges::find(trouble_rows, name, &Trouble_Row::name);
    if (row == trouble_rows.end()) return std::nullopt;
    int number = 0;
    if (!row->argument.empty() && (!(in >> number) || number < (row->argument == "N" ? 1 : 0)))
        return std::nullopt;
    if (in >> rest) return std::nullopt;
    return Ordered_Trouble{row->trouble, number};
}

void Troubles::order(Trouble trouble, int number) {
    switch (trouble) {
    case Trouble::no_answer:
    case Trouble::answer:
        silent_ = trouble == Trouble::no_answer;
        return;
    case Trouble::no_ok:
        no_ok_ = true;
        return;
    case Trouble::ok:
        no_ok_ = noise_before_ok_ = false;
        return;
    case Trouble::noise_before_ok:
        noise_before_ok_ = true;
        return;
    case Trouble::noise:
    case Trouble::no_noise:
        noise_ = trouble == Trouble::noise;
        return;
    case Trouble::late:
        late_ms_ = number;
        return;
    default:
        waiting_[trouble].push_back(number);
    }
}

bool Troubles::hits(Trouble trouble) {
    auto& waiting = waiting_[trouble];
    for (int& left : waiting) --left;
    return std::erase(waiting, 0) > 0;
}

} // namespace decoder_sim
