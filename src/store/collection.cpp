#include "store/collection.h"

#include <utility>

namespace store {

namespace {

/// The number whose decimal text the key is.
std::optional<std::int32_t> number_in(const QString& key) {
    bool valid = false;
    const std::int32_t number = key.toInt(&valid);
    if (!valid || QString::number(number) != key) return std::nullopt;
    return number;
}

} // namespace

void Keys::add(std::int32_t key, std::int32_t place) {
    const std::pair<std::int32_t, std::int32_t> entry(key, place);
    if (numbers_.empty() || numbers_.back().first < key)
        numbers_.push_back(entry);
    else
        numbers_.insert(std::lower_bound(numbers_.begin(), numbers_.end(), entry), entry);
}

void Keys::add(const QString& key, std::int32_t place) {
    if (find(key)) throw Collection_Error("key is taken: " + key.toStdString());
    if (const auto number = number_in(key))
        add(*number, place);
    else
        texts_.insert(key, place);
}

std::optional<std::int32_t> Keys::find(std::int32_t key) const {
    // CVs come page by page, mostly ascending
    if (!numbers_.empty() && numbers_.back().first == key) return numbers_.back().second;
    const auto found = std::lower_bound(
        numbers_.begin(), numbers_.end(), key,
        [](const auto& entry, std::int32_t sought) { return entry.first < sought; });
    if (found == numbers_.end() || found->first != key) return std::nullopt;
    return found->second;
}

std::optional<std::int32_t> Keys::find(const QString& key) const {
    if (const auto number = number_in(key)) return find(*number);
    const auto found = texts_.find(key);
    return found == texts_.end() ? std::nullopt : std::optional(*found);
}

void Keys::remove(std::int32_t place) {
    std::erase_if(numbers_, [&](const auto& entry) { return entry.second == place; });
    for (auto& [key, other] : numbers_)
        if (other > place) --other;
    texts_.removeIf([&](const auto& entry) { return entry.value() == place; });
    for (std::int32_t& other : texts_)
        if (other > place) --other;
}

} // namespace store
