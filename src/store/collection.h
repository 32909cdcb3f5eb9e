#pragma once

#include <QHash>
#include <QString>

#include <algorithm>
#include <cstddef>
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

/// Keys of children and their places, counted from 0. Most keys are decimal texts of numbers
/// (SetIDs, page numbers) and are kept as such: there may be one for every few CVs.
class Keys {
public:
    void add(const QString& key, std::int32_t place); ///< throws Collection_Error for a taken one
    void add(std::int32_t key, std::int32_t place);
    std::optional<std::int32_t> find(const QString& key) const;
    std::optional<std::int32_t> find(std::int32_t key) const;
    /// Forgets the child at a place and moves the later ones up.
    void remove(std::int32_t place);

private:
    std::vector<std::pair<std::int32_t, std::int32_t>> numbers_; // by key
    QHash<QString, std::int32_t> texts_;                         // that are no number in plain form
};

/// Ordered children, each optionally under a key. Children are shared: one that was removed lives
/// as long as anybody holds it. Positions count from 1. Missing positions and keys and duplicate
/// keys throw Collection_Error and change nothing.
template <class Child>
class Collection {
public:
    using Pointer = std::shared_ptr<Child>;

    /// Adds at the end and sets the child's `Index` to the new count (at most 32767).
    void Add(Pointer child, const std::optional<QString>& key = std::nullopt) {
        if (key) keys_.add(*key, Count());
        append(std::move(child));
    }

    std::int32_t Count() const { return static_cast<std::int32_t>(children_.size()); }

    const Pointer& Item(std::int32_t position) const { return children_[place(position)]; }
    const Pointer& Item(const QString& key) const { return children_[place(key)]; }
    bool contains(const QString& key) const { return keys_.find(key).has_value(); }

    void Remove(std::int32_t position) { remove_at(place(position)); }
    void Remove(const QString& key) { remove_at(place(key)); }

    void Clear() {
        children_.clear();
        keys_ = {};
    }

    /// For "for each": the children in their order. Adding and removing end its validity.
    const std::vector<Pointer>& NewEnum() const { return children_; }
    auto begin() const { return children_.begin(); }
    auto end() const { return children_.end(); }

protected:
    void append(Pointer child) {
        children_.push_back(std::move(child));
        children_.back()->Index = to_16_bits(Count());
    }
    void append(Pointer child, std::int32_t key) { // known not to be taken
        keys_.add(key, Count());
        append(std::move(child));
    }
    /// The child under the decimal text of a number; nothing for a key that is not there.
    Child* find(std::int32_t key) const {
        const auto found = keys_.find(key);
        return found ? children_[static_cast<std::size_t>(*found)].get() : nullptr;
    }

private:
    std::size_t place(std::int32_t position) const {
        if (position < 1 || position > Count())
            throw Collection_Error("no such position: " + std::to_string(position));
        return static_cast<std::size_t>(position - 1);
    }
    std::size_t place(const QString& key) const {
        if (const auto found = keys_.find(key)) return static_cast<std::size_t>(*found);
        throw Collection_Error("no such key: " + key.toStdString());
    }
    void remove_at(std::size_t place) {
        keys_.remove(static_cast<std::int32_t>(place));
        children_.erase(children_.begin() + static_cast<std::ptrdiff_t>(place));
    }

    std::vector<Pointer> children_;
    Keys keys_;
};

} // namespace store
