#pragma once

#include "platform/jet/check/check.h"

#include <array>
#include <sstream>
#include <string_view>

namespace jet::check {

/// One sentence from its parts. Only for findings: nothing on the straight way needs it.
template <typename... Parts>
std::string words(const Parts&... parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

/// UTF-8 in single quotes, control characters and lone surrogates shown as '?'.
std::string quoted(std::u16string_view name);

/// Collects findings up to the limit of each grade.
class Findings {
public:
    explicit Findings(const Limits& limits) : limits_(limits) {}

    void fault(What what, std::uint32_t page, std::string sentence) {
        add(Finding::Grade::fault, what, page, std::move(sentence));
    }
    void content(What what, std::uint32_t page, std::string sentence) {
        add(Finding::Grade::content, what, page, std::move(sentence));
    }
    void warning(What what, std::uint32_t page, std::string sentence) {
        add(Finding::Grade::warning, what, page, std::move(sentence));
    }

    /// Faults so far, those beyond the limit included: lets a caller see whether a step found any.
    std::size_t faults() const { return counts_[0]; }
    Report report(bool readable) &&;

private:
    void add(Finding::Grade grade, What what, std::uint32_t page, std::string sentence);

    Limits limits_;
    std::vector<Finding> kept_;
    std::array<std::size_t, 3> counts_{};
};

} // namespace jet::check
