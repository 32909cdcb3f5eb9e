#pragma once

#include "platform/jet/pages/journal_format.h"

#include <map>

namespace jet {

/// A page of an operation: as it was in the file (null for an appended one) and as it becomes.
struct Changed_Page {
    Page before;
    std::shared_ptr<Page_Bytes> after;
};
using Changed_Pages = std::map<Page_Number, Changed_Page>;

/// No operation can be begun, though the file itself may be written.
struct Journal_Unusable : files::Error {
    Journal_Unusable(Blocked blocked_, const std::string& path, const std::string& detail_,
                     std::string owner_ = {})
        : Error(files::Failure::denied, path, detail_), blocked(blocked_),
          owner(std::move(owner_)) {}
    Blocked blocked;
    std::string owner; ///< of what stands in the way
};

/// The rollback journal beside a database: its file, its lock, its head. The rules that it and the
/// pager keep are numbered at the top of journal.cpp. Everything throws files::Error.
class Journal {
public:
    enum class State {
        absent,
        blank,      ///< made, but its first head was not written, or not whole
        headless,   ///< the head is wiped or damaged
        empty,      ///< nothing to take back
        hot,        ///< an operation is not known to be complete
        unreadable, ///< no head of ours
        barred      ///< something lies there that cannot be opened
    };
    /// What may be done because of it (J11).
    enum class Trust {
        none,  ///< whoever made it may not write the library
        pages, ///< nothing tells who made it: what its pages prove
        full
    };

    /// @param database the path of the database, links resolved.
    Journal(files::Disk& disk, const std::string& database);

    /// Looks at what the path names now: opens it anew if that is not the file that is open, and
    /// reads the head. Needs a lock on the database. @param writable false: opens for reading only.
    void attach(bool writable, files::File& database);
    void detach();
    /// The journal of another name of the database, to be attached next.
    void turn_to(const std::string& database);
    /// Under the exclusive lock, after attach: makes the file and the head where they are missing,
    /// and anew what is empty and does not serve all who may write the database. Throws
    /// Journal_Unusable too.
    void make(std::size_t page_size, files::File& database);
    /// For a journal that is open.
    Trust trust(files::File& database);

    State state() const { return state_; }
    const Journal_Head& head() const { return head_; }
    bool writable() const { return writable_; }
    /// Why what lies there can be neither used nor replaced, if that is so.
    std::optional<Journal_Unusable> bar();
    /// Whose it is, for people.
    std::string owner();
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
    void open(const files::Look& found, bool writable, files::File& database);
    void open_file(bool writable);
    void bar(Blocked why, const char* detail);
    void create(const files::Standing& library);
    void drop();
    void try_folder();
    bool serves(const files::Standing& library);
    bool owners_tell();
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
    bool folder_tried_ = false;
    files::Look found_; ///< what the path named when it was opened
    Blocked barred_by_ = Blocked::no;
    std::string barred_detail_;
    std::optional<bool> owners_tell_; ///< nothing: not tried yet
    /// Standings of journal and library that were judged good.
    std::optional<std::pair<files::Standing, files::Standing>> served_;
    /// Salt and counter of the last operation that failed.
    std::optional<std::pair<std::uint64_t, std::uint64_t>> failed_;
    State state_ = State::absent;
    Journal_Head head_;
};

} // namespace jet
