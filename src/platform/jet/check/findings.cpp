#include "platform/jet/check/findings.h"

#include <algorithm>

namespace jet::check {

namespace {

void append_utf8(std::string& out, std::uint32_t code) {
    const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

bool is_high(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_low(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
bool is_control(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

} // namespace

std::string quoted(std::u16string_view name) {
    std::string out = "'";
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char16_t unit = name[i];
        if (is_high(unit) && i + 1 < name.size() && is_low(name[i + 1])) {
            append_utf8(out, 0x10000 + ((unit - 0xD800U) << 10) + (name[i + 1] - 0xDC00U));
            ++i;
        } else {
            append_utf8(out, is_control(unit) || is_high(unit) || is_low(unit) ? '?' : unit);
        }
    }
    return out + "'";
}

void Findings::add(Finding::Grade grade, What what, std::uint32_t page, std::string sentence) {
    if (counts_[static_cast<std::size_t>(grade)]++ < limits_.findings)
        kept_.push_back({grade, page, what, std::move(sentence)});
}

Report Findings::report(bool readable) && {
    const std::size_t all = counts_[0] + counts_[1] + counts_[2];
    const std::size_t left_out = all - kept_.size();
    return {readable, std::move(kept_), left_out};
}

bool Report::sound() const {
    return readable && std::ranges::none_of(findings, [](const Finding& finding) {
               return finding.grade == Finding::Grade::fault;
           });
}

} // namespace jet::check
