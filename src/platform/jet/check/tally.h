#pragma once

#include "platform/jet/check/key.h"

#include <array>

namespace jet::check {

/// Compares two sets of index entries without keeping them: what the rows ask for is added, what
/// the tree holds is taken away, and equal sets leave nothing in any bucket. Entries go to buckets
/// by their hash, so that a second walk need only keep those of the buckets that differ.
class Tally {
public:
    using Entry = std::span<const std::uint8_t>;

    void add(Entry entry) { change(entry, 1); }
    void take(Entry entry) { change(entry, ~std::uint64_t{0}); }
    bool balanced() const { return buckets_ == Buckets{}; }
    /// Whether the bucket of this entry differs.
    bool suspects(Entry entry) const { return buckets_[hash(entry) % buckets_.size()] != 0; }

private:
    using Buckets = std::array<std::uint64_t, 1024>;

    static std::uint64_t hash(Entry entry);
    void change(Entry entry, std::uint64_t factor) {
        const std::uint64_t value = hash(entry);
        // mixed once more, so that the sum is not that of numbers that share their low bits
        buckets_[value % buckets_.size()] += factor * (mixed(value) | 1);
    }
    static std::uint64_t mixed(std::uint64_t value) {
        value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
        value = (value ^ value >> 27) * 0x94D049BB133111EB;
        return value ^ value >> 31;
    }

    Buckets buckets_{};
};

inline std::uint64_t Tally::hash(Entry entry) {
    std::uint64_t value = 0xCBF29CE484222325;
    for (const std::uint8_t byte : entry) value = (value ^ byte) * 0x100000001B3;
    return mixed(value);
}

} // namespace jet::check
