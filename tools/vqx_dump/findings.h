#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace vqx_dump {

using Bytes = std::span<const std::uint8_t>;

enum class Severity {
    inconsistency, ///< the file breaks a rule of its format
    warning        ///< allowed, but a reader may stumble over it
};

struct Finding {
    Severity severity;
    std::size_t offset; ///< from the start of the file
    std::string sentence;
};

/// What was found in one file, in the order of finding. Counts everything, keeps the first
/// `most_kept`, so that a file made of faults costs no more memory than any other.
class Findings {
public:
    static constexpr std::size_t most_kept = 200;

    void inconsistency(std::size_t offset, std::string sentence) {
        add(Severity::inconsistency, offset, std::move(sentence));
    }
    void warning(std::size_t offset, std::string sentence) {
        add(Severity::warning, offset, std::move(sentence));
    }
    const std::vector<Finding>& kept() const { return kept_; }
    std::size_t inconsistencies() const { return inconsistencies_; }
    std::size_t warnings() const { return warnings_; }

private:
    void add(Severity severity, std::size_t offset, std::string sentence) {
        ++(severity == Severity::warning ? warnings_ : inconsistencies_);
        if (kept_.size() < most_kept) kept_.push_back({severity, offset, std::move(sentence)});
    }

    std::vector<Finding> kept_;
    std::size_t inconsistencies_ = 0;
    std::size_t warnings_ = 0;
};

/// Glues texts and numbers to one sentence.
template <typename... Parts>
std::string sentence(const Parts&... parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

/// A number as 0x.., with at least `digits` digits.
inline std::string hex(std::size_t number, int digits = 4) {
    static constexpr char signs[] = "0123456789abcdef";
    std::string text;
    for (; number != 0 || digits > 0; number >>= 4, --digits) text.insert(0, 1, signs[number & 15]);
    return "0x" + text;
}

} // namespace vqx_dump
