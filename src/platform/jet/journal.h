#pragma once

#include "platform/jet/journal_format.h"

#include <map>

namespace jet {

/// A page of an operation: as it was in the file (null for an appended one) and as it becomes.
struct Changed_Page {
    Page before;
    std::shared_ptr<Page_Bytes> after;
};
using Changed_Pages = std::map<Page_Number, Changed_Page>;

/// The rollback journal beside a database: its file, its lock, its head. The rules that it and the
/// pager keep are numbered at the top of journal.cpp. Everything throws files::Error.
class Journal {
public:
    enum class State {
        absent,
        blank,     ///< made, but its first head was not written, or not whole
        headless,  ///< the head is zeros, but something stands behind it
        empty,     ///< nothing to take back
        hot,       ///< an operation is not known to be complete
        unreadable ///< no head of ours
    };

    /// @param database the path of the database, links resolved.
    Journal(files::Disk& disk, const std::string& database);

    /// Looks at what the path names now: opens it anew if that is not the file that is open, and
    /// reads the head. Needs a lock on the database. @param writable false: opens for reading only.
    void attach(bool writable);
    void detach();
    /// Under the exclusive lock, after attach: makes the file and the head where they are missing.
    void make(std::size_t page_size);

    State state() const { return state_; }
    const Journal_Head& head() const { return head_; }
    bool writable() const { return writable_; }
    files::File& file() { return *file_; }

    /// Stores what is needed to take the operation back, and syncs it. @param head with identity,
    /// sizes and page_0; the rest is filled in here.
    void write(Journal_Head head, const Changed_Pages& pages);
    /// Says that the operation must not count, even where all its pages are written.
    void mark_take_back();
    void empty();
    /// Gives the file a name under which nobody applies it. @return its new path.
    std::string set_aside();
    /// Removes the file if this is the last copy, the journal is empty, and the path of the
    /// database still names `database`. Throws nothing.
    void leave(files::File& database) noexcept;

private:
    void open(bool writable);
    void read_head();
    bool holds_nothing(); ///< behind the head
    void write_state(Journal_State state);
    bool last_copy(files::File& database);

    files::Disk& disk_;
    std::string database_;
    std::string path_;
    std::unique_ptr<files::File> file_;
    bool writable_ = false;
    bool name_synced_ = false;
    State state_ = State::absent;
    Journal_Head head_;
};

} // namespace jet
