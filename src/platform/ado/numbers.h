#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace ado {

/// Whole numbers one after the other, each in as many bytes as the widest of them needs: most
/// columns of a library hold bytes, and a library has many rows.
class Numbers {
public:
    std::size_t size() const { return bytes_.size() + words_.size() + longs_.size(); }

    std::int32_t operator[](std::size_t place) const {
        switch (width_) {
        case 1:
            return bytes_[place];
        case 2:
            return words_[place];
        default:
            return longs_[place];
        }
    }

    void push_back(std::int32_t number) {
        make_room_for(number);
        switch (width_) {
        case 1:
            bytes_.push_back(static_cast<std::uint8_t>(number));
            break;
        case 2:
            words_.push_back(static_cast<std::int16_t>(number));
            break;
        default:
            longs_.push_back(number);
            break;
        }
    }

    void set(std::size_t place, std::int32_t number) {
        make_room_for(number);
        switch (width_) {
        case 1:
            bytes_[place] = static_cast<std::uint8_t>(number);
            break;
        case 2:
            words_[place] = static_cast<std::int16_t>(number);
            break;
        default:
            longs_[place] = number;
            break;
        }
    }

private:
    void make_room_for(std::int32_t number) {
        using Word = std::numeric_limits<std::int16_t>;
        if (width_ == 4 || (number >= 0 && number <= 255)) return;
        const bool long_one = number < Word::min() || number > Word::max();
        if (!long_one && width_ == 2) return;
        widen(long_one);
    }
    void widen(bool to_long);

    int width_ = 1; // 1: 0..255, 2: 16 bits with sign, 4
    std::vector<std::uint8_t> bytes_;
    std::vector<std::int16_t> words_;
    std::vector<std::int32_t> longs_;
};

} // namespace ado
