#pragma once

#include "platform/files/disk.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace jet {

using Page_Number = std::uint32_t;
using Page_Bytes = std::vector<std::byte>;
/// A page as it was when it was read; stays valid as long as it is held.
using Page = std::shared_ptr<const Page_Bytes>;

/// Pages of one database file: cache, locks and the rollback journal. Knows nothing of what the pages mean.
/// Reading happens between begin_read and end_read (shared lock), changing between begin_write and
/// commit or rollback (exclusive lock); both nest, and only the outermost pair acts.
class Pager {
public:
    virtual ~Pager() = default;
    virtual std::size_t page_size() const = 0;
    virtual Page_Number page_count() const = 0; ///< inside a transaction with its appended pages
    virtual void begin_read() = 0;
    virtual void end_read() noexcept = 0;
    virtual void begin_write() = 0;
    virtual void commit() = 0;
    virtual void rollback() noexcept = 0;
    virtual bool in_write() const = 0;
    /// Throws jet::Error (damaged) for a page beyond the end of the file.
    virtual Page read(Page_Number number) = 0;
    /// The page for changing in place; valid until commit or rollback.
    virtual std::span<std::byte> change(Page_Number number) = 0;
    /// Lengthens the file by one page of zeros. @return its number.
    virtual Page_Number append() = 0;
};

} // namespace jet
