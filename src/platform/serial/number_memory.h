#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace serial {

/// Which adapter has which number, kept in a file (docs/formats/ports.md) so that a number never
/// comes to mean another adapter. Behind those that are away stand those that are here, so the
/// first is the one that has been away longest.
class Number_Memory {
public:
    /// @return nothing for bytes that are no such file.
    static std::optional<Number_Memory> decode(std::span<const std::byte> bytes);
    std::vector<std::byte> encode() const;

    /// Takes over what the other one knows; it counts where both know an adapter or a number.
    void learn(const Number_Memory& other);
    /// The numbers of the adapters, 0 for one that comes too late; each its former one if it is
    /// free. A new one gets the lowest from 5 up, then those below; above 32 only when all these
    /// are taken, which those of adapters long away are not.
    /// @param taken by others
    std::vector<int> numbers(const std::vector<std::string>& adapters, std::set<int> taken);

    bool operator==(const Number_Memory&) const = default;

private:
    struct Entry {
        int number = 0;
        std::string adapter;
        bool operator==(const Entry&) const = default;
    };
    int new_number(const std::set<int>& taken);
    std::vector<Entry> entries_; ///< no number and no adapter twice
};

} // namespace serial
