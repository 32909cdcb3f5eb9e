#include "platform/jet/check/key.h"
#include "platform/jet/collation/unit_code.h"

namespace jet::check {

namespace {

using collation::Unit_Class;
using collation::Unit_Code;

constexpr std::size_t most_units = 255;
constexpr std::uint8_t unmarked = 2; ///< extra byte of a character without an accent

/// The four strings of a text key and how far they have come.
class Composer {
public:
    void add(char16_t unit) {
        const Unit_Code code = collation::unit_code(unit);
        switch (code.kind) {
        case Unit_Class::ignored:
            break;
        case Unit_Class::normal:
            add_inline(code.inline_bytes());
            break;
        case Unit_Class::accented:
            add_extra(code.extra_bytes());
            add_inline(code.inline_bytes());
            break;
        case Unit_Class::kana:
            if (code.extra_size > 0) add_extra(code.extra_bytes());
            add_inline(code.inline_bytes());
            kana_.push_back(code.special);
            break;
        case Unit_Class::hidden:
            add_hidden(code.special);
            break;
        case Unit_Class::mark:
            add_mark(code.special);
            break;
        case Unit_Class::surrogate:
            add_surrogate(unit);
            break;
        }
    }

    void finish(Key& key, bool ascending) {
        const std::size_t from = key.size();
        append(key, main_);
        key.push_back(1);
        while (!extra_.empty() && extra_.back() <= unmarked) extra_.pop_back();
        append(key, extra_);
        if (!kana_.empty() || !hidden_.empty()) append(key, Key{1, 1});
        if (!kana_.empty()) append_kana(key);
        if (!hidden_.empty()) {
            key.push_back(1);
            append(key, hidden_);
        }
        if (!ascending) {
            key.push_back(0);
            for (std::size_t i = from; i < key.size(); ++i)
                key[i] = static_cast<std::uint8_t>(~key[i]);
        }
        key.push_back(0);
    }

private:
    static void append(Key& key, std::span<const std::uint8_t> bytes) {
        key.insert(key.end(), bytes.begin(), bytes.end());
    }

    void add_inline(std::span<const std::uint8_t> bytes) {
        append(main_, bytes);
        ++position_;
    }

    void fill_up() {
        for (; covered_ < position_; ++covered_) extra_.push_back(unmarked);
    }

    void add_extra(std::span<const std::uint8_t> bytes) {
        fill_up();
        append(extra_, bytes);
        ++covered_;
    }

    // Where a hidden character stands is counted in units, and in extra bytes once there are any.
    void add_hidden(std::uint8_t code) {
        const std::size_t place =
            extra_.empty() ? position_ : extra_.size() + position_ - covered_ - lone_mark_;
        const std::size_t number = 0x8000 | (7 + 4 * place);
        append(hidden_, Key{static_cast<std::uint8_t>(number >> 8),
                            static_cast<std::uint8_t>(number), 6, code});
    }

    void add_mark(std::uint8_t value) {
        fill_up();
        if (extra_.empty()) {
            extra_.push_back(value);
            lone_mark_ = 1;
        } else {
            extra_.back() = static_cast<std::uint8_t>(extra_.back() + value);
        }
    }

    void add_surrogate(char16_t unit) {
        struct Step {
            unsigned below, distance;
        };
        constexpr Step steps[] = {{8, 9992}, {262, 9990}, {516, 9988}, {770, 9986}, {0x400, 9984}};
        constexpr std::uint8_t extra[] = {0x3F};
        unsigned distance = 10238;
        if (unit >= 0xDC00)
            distance = std::ranges::find_if(steps, [&](const Step& step) {
                           return unit - 0xDC00U < step.below;
                       })->distance;
        const unsigned code = unit - distance;
        const std::uint8_t bytes[] = {static_cast<std::uint8_t>(code >> 8),
                                      static_cast<std::uint8_t>(code)};
        add_extra(extra);
        add_inline(bytes);
    }

    // Three flags to a byte, the first one highest.
    void append_kana(Key& key) {
        while (!kana_.empty() && kana_.back() == 3) kana_.pop_back();
        for (std::size_t i = 0; i < kana_.size(); i += 3) {
            unsigned packed = 0x80;
            for (std::size_t k = 0; k < 3 && i + k < kana_.size(); ++k)
                packed |= unsigned{kana_[i + k]} << (4 - 2 * k);
            key.push_back(static_cast<std::uint8_t>(packed));
        }
        append(key, Key{0xFF, 2, 0x80, 0xFF, 0x80});
        if (!hidden_.empty()) key.push_back(0xFF);
    }

    Key main_, extra_, hidden_, kana_;
    std::size_t position_ = 0;  ///< units that gave inline bytes
    std::size_t covered_ = 0;   ///< units that extra_ stands for
    std::size_t lone_mark_ = 0; ///< 1: extra_ begins with a mark that stands for no unit
};

} // namespace

void append_text_key(Key& key, std::u16string_view text, bool ascending) {
    text = text.substr(0, most_units);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
    Composer composer;
    for (const char16_t unit : text) composer.add(unit);
    composer.finish(key, ascending);
}

} // namespace jet::check
