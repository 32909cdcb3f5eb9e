#include "platform/serial/number_memory.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace serial {
namespace {

constexpr std::string_view head = "CV-SETS-PORTS 1\n";
constexpr std::size_t longest_adapter = 255;
constexpr int first_for_adapters = 5;
constexpr int last_preferred = 32;
constexpr int last_number = 64;

bool is_adapter(std::string_view text) {
    return !text.empty() && text.size() <= longest_adapter &&
           std::ranges::all_of(text, [](unsigned char c) { return c > ' ' && c != 0x7F; });
}

std::vector<int> preferred() {
    std::vector<int> numbers;
    for (int n = first_for_adapters; n <= last_preferred; ++n) numbers.push_back(n);
    for (int n = 1; n < first_for_adapters; ++n) numbers.push_back(n);
    return numbers;
}

std::vector<int> last_resort() {
    std::vector<int> numbers;
    for (int n = last_preferred + 1; n <= last_number; ++n) numbers.push_back(n);
    return numbers;
}

} // namespace

std::optional<Number_Memory> Number_Memory::decode(std::span<const std::byte> bytes) {
    std::string text(bytes.size(), '\0');
    std::ranges::transform(bytes, text.begin(), [](std::byte b) { return static_cast<char>(b); });
    std::string_view left = text;
    if (!left.starts_with(head)) return std::nullopt;
    left.remove_prefix(head.size());
    Number_Memory memory;
    while (!left.empty()) {
        const std::size_t blank = left.find(' ');
        const std::size_t end = left.find('\n');
        if (end == left.npos || blank > end) return std::nullopt;
        Entry entry{0, std::string(left.substr(blank + 1, end - blank - 1))};
        const auto [stopped, trouble] =
            std::from_chars(left.data(), left.data() + blank, entry.number);
        const bool known = std::ranges::any_of(memory.entries_, [&](const Entry& other) {
            return other.number == entry.number || other.adapter == entry.adapter;
        });
        if (trouble != std::errc{} || stopped != left.data() + blank || left[0] == '0' ||
            entry.number < 1 || entry.number > last_number || known || !is_adapter(entry.adapter)) {
            return std::nullopt;
        }
        memory.entries_.push_back(std::move(entry));
        left.remove_prefix(end + 1);
    }
    return memory;
}

std::vector<std::byte> Number_Memory::encode() const {
    std::string text(head);
    for (const Entry& entry : entries_) {
        text += std::to_string(entry.number) + ' ' + entry.adapter + '\n';
    }
    std::vector<std::byte> bytes(text.size());
    std::ranges::transform(text, bytes.begin(), [](char c) { return static_cast<std::byte>(c); });
    return bytes;
}

void Number_Memory::learn(const Number_Memory& other) {
    std::erase_if(entries_, [&](const Entry& own) {
        return std::ranges::any_of(other.entries_, [&](const Entry& entry) {
            return entry.number == own.number || entry.adapter == own.adapter;
        });
    });
    entries_.insert(entries_.begin(), other.entries_.begin(), other.entries_.end());
}

int Number_Memory::new_number(const std::set<int>& taken) {
    for (const std::vector<int>& candidates : {preferred(), last_resort()}) {
        for (const int number : candidates) {
            if (!taken.contains(number) &&
                std::ranges::find(entries_, number, &Entry::number) == entries_.end()) {
                return number;
            }
        }
        const auto away = std::ranges::find_if(entries_, [&](const Entry& entry) {
            return !taken.contains(entry.number) &&
                   std::ranges::find(candidates, entry.number) != candidates.end();
        });
        if (away != entries_.end()) {
            const int number = away->number;
            entries_.erase(away);
            return number;
        }
    }
    return 0;
}

std::vector<int> Number_Memory::numbers(const std::vector<std::string>& adapters,
                                        std::set<int> taken) {
    std::vector<int> given(adapters.size(), 0);
    for (std::size_t i = 0; i < adapters.size(); ++i) { // those that are known first
        const auto known = std::ranges::find(entries_, adapters[i], &Entry::adapter);
        if (known == entries_.end()) continue;
        if (taken.insert(known->number).second) {
            given[i] = known->number;
        } else {
            entries_.erase(known);
        }
    }
    for (std::size_t i = 0; i < adapters.size(); ++i) {
        if (given[i] != 0) continue;
        given[i] = new_number(taken);
        if (given[i] == 0) break;
        taken.insert(given[i]);
        if (is_adapter(adapters[i])) entries_.push_back({given[i], adapters[i]});
    }
    std::stable_partition(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return std::ranges::find(adapters, entry.adapter) == adapters.end();
    });
    return given;
}

} // namespace serial
