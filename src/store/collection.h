#pragma once

#include <QHash>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace store {

/// A position or key that is not there, or a key that is taken.
struct Collection_Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Nearest 16-bit number: the fields of the model are that narrow, the database is not.
constexpr std::int16_t to_16_bits(std::int64_t number) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(
        std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

/// Ordered children, each optionally under a key. Children are shared: one that was removed lives
/// as long as anybody holds it. Positions count from 1. Missing positions and keys and duplicate
/// keys throw Collection_Error and change nothing.
template <class Child>
class Collection {
public:
    using Pointer = std::shared_ptr<Child>;

    /// Adds at the end and sets the child's `Index` to the new count (at most 32767).
    void Add(Pointer child, const std::optional<QString>& key = std::nullopt) {
        if (key) {
            if (keyed_.contains(*key))
                throw Collection_Error("key is taken: " + key->toStdString());
            keyed_.insert(*key, child);
        }
        children_.push_back(std::move(child));
        children_.back()->Index = to_16_bits(Count());
    }

    std::int32_t Count() const { return static_cast<std::int32_t>(children_.size()); }

    const Pointer& Item(std::int32_t position) const { return children_[place(position)]; }
    Pointer Item(const QString& key) const {
        const auto found = keyed_.find(key);
        if (found == keyed_.end()) throw Collection_Error("no such key: " + key.toStdString());
        return *found;
    }

    bool contains(const QString& key) const { return keyed_.contains(key); }

    void Remove(std::int32_t position) { remove_at(place(position)); }
    void Remove(const QString& key) {
        const auto found = std::find(children_.begin(), children_.end(), Item(key));
        remove_at(static_cast<std::size_t>(found - children_.begin()));
    }

    void Clear() {
        children_.clear();
        keyed_.clear();
    }

    /// For "for each": the children in their order. Adding and removing end its validity.
    const std::vector<Pointer>& NewEnum() const { return children_; }
    auto begin() const { return children_.begin(); }
    auto end() const { return children_.end(); }

protected:
    /// @return nothing for a key that is not there.
    Pointer find(const QString& key) const { return keyed_.value(key); }

private:
    std::size_t place(std::int32_t position) const {
        if (position < 1 || position > Count())
            throw Collection_Error("no such position: " + std::to_string(position));
        return static_cast<std::size_t>(position - 1);
    }
    void remove_at(std::size_t place) {
        const Pointer& child = children_[place];
        for (auto entry = keyed_.begin(); entry != keyed_.end(); ++entry) {
            if (*entry != child) continue;
            keyed_.erase(entry);
            break;
        }
        children_.erase(children_.begin() + static_cast<std::ptrdiff_t>(place));
    }

    std::vector<Pointer> children_;
    QHash<QString, Pointer> keyed_;
};

} // namespace store
