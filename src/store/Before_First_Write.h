#pragma once

#include <QString>

namespace store {

/// Whoever keeps a copy of a library as it was before anything in it is changed.
class Before_First_Write {
public:
    virtual ~Before_First_Write() = default;
    /// Called once after each opening, before the first change, while the file holds the whole
    /// state before and nobody else can change it. Throws nothing.
    /// @return false: there is no copy. An old file is not upgraded then; other changes go on.
    [[nodiscard]] virtual bool keep_copy(const QString& file) = 0;
};

} // namespace store
