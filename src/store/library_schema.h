#pragma once

#include "store/library_operation.h"

namespace store {

/// The tables and columns that a library needs.
class Library_Schema {
public:
    explicit Library_Schema(Library_Operation& operation) : operation_(operation) {}

    /// Finds out what an opened file holds, and adds in place what old libraries lack; where that
    /// cannot be written, it reads as if it had been.
    void upgrade();
    /// Longest text that a column takes, in characters; 0 where there is none, and why is noted.
    int width(QLatin1StringView table, QLatin1StringView column);

private:
    void look_for_library();

    Library_Operation& operation_;
};

} // namespace store
