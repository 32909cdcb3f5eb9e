#pragma once

#include <QString>

#include <cstdint>

namespace store {

/// A list that the connection fills.
class List_Filler {
public:
    virtual ~List_Filler() = default;
    virtual void clear() = 0;
    /// Appends an entry. @param item_data the key of its row (SetID or CVID)
    virtual void add(const QString& text, std::int32_t item_data) = 0;
};

} // namespace store
