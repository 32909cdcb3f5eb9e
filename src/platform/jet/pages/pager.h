#pragma once

#include "platform/files/disk.h"
#include "platform/jet/format/error.h"
#include "platform/jet/format/page.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace jet {

/// Jet addresses pages with 24 bits, and no engine opens more than 2 GiB.
constexpr std::uint64_t largest_database = std::uint64_t{1} << 31;

enum class Open_Mode { read_only, read_write };

/// Why a database can only be looked at.
struct Write_Refusal {
    Failure kind = Failure::read_only;
    std::string detail;
    Blocked blocked = Blocked::write_protected;
    std::string owner = {}; ///< whose journal stands in the way
};

/// What opening and later operations met beside the ordinary: matter for one sentence to the user.
struct Pager_Report {
    enum class Recovery { none, rolled_back, shown_only };
    /// An operation that a crash cut off was taken back, in the file or (read-only) in memory.
    Recovery recovery = Recovery::none;
    /// A journal that does not fit this file lay beside it and was never applied.
    bool foreign_journal = false;
    /// The journal of this file was spoiled and was never applied: a change may be half written.
    bool spoiled_journal = false;
    /// How often a journal was met that could not be used, or none or another one than before. What
    /// was known of the file no longer holds then.
    int doubts = 0;
    std::string set_aside; ///< new path of either; empty when it could not be renamed
    std::optional<Write_Refusal> refusal; ///< nothing while the file may be written
};

/// Pages of one database file: cache, locks and the rollback journal. Knows nothing of what the
/// pages mean. Reading happens between begin_read and end_read (shared lock), changing between
/// begin_write and commit or rollback (exclusive lock); changing may begin
/// while reading, but neither nests. Everything throws jet::Error; an operation without its begin is a std::logic_error.
class Pager {
public:
    virtual ~Pager() = default;
    virtual std::size_t page_size() const = 0;  ///< 4096 (Jet 4) or 2048 (Jet 3)
    virtual Page_Number page_count() const = 0; ///< inside a transaction with its appended pages
    virtual void begin_read() = 0;
    virtual void end_read() noexcept = 0;
    virtual void begin_write() = 0;
    /// Returns when everything is on the medium. After an Error everything is rolled back and the
    /// transaction is over; rollback is not called then.
    virtual void commit() = 0;
    /// Takes back everything since begin_write.
    virtual void rollback() noexcept = 0;
    virtual bool in_write() const = 0;
    /// Throws jet::Error (damaged) for a page beyond the end of the file.
    virtual Page read(Page_Number number) = 0;
    /// The page for changing in place, until it is read or changed again, or the transaction ends:
    /// a page that was read in between must not change under its holder.
    virtual std::span<std::byte> change(Page_Number number) = 0;
    /// Lengthens the file by one page of zeros. @return its number.
    [[nodiscard]] virtual Page_Number append() = 0;
    virtual Pager_Report report() const { return {}; }
    /// Differs from what it was whenever another copy may have changed the file in between. Fresh
    /// after each outermost begin; what was derived from pages is kept as long as it stays the
    /// same.
    virtual std::uint64_t generation() const { return 0; }
};

constexpr std::chrono::milliseconds lock_patience{3000};

/// Opens a Jet 3 or Jet 4 file. What cannot be written is opened for reading and report() says why;
/// an operation that a crash cut off is taken back. @param patience how long to wait for a lock.
std::unique_ptr<Pager> open_pager(files::Disk& disk, const std::string& path, Open_Mode mode,
                                  std::chrono::milliseconds patience = lock_patience);

/// Makes a new file of these pages, replacing a file of that name in one step, and opens it.
std::unique_ptr<Pager> create_pager(files::Disk& disk, const std::string& path,
                                    std::span<const Page_Bytes> pages,
                                    std::chrono::milliseconds patience = lock_patience);

} // namespace jet
