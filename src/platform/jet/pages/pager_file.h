#pragma once

#include "platform/jet/pages/journal_recovery.h"
#include "platform/jet/pages/pager_cache.h"

namespace jet {

/// Errors that say: look, but do not write.
constexpr bool is_protection(Failure kind) {
    return kind == Failure::denied || kind == Failure::read_only;
}

/// What must be unchanged for pages to stay in the cache from one operation to the next.
struct Cache_Mark {
    std::uint64_t salt = 0;
    std::uint64_t counter = 0;
    std::uint64_t stamp = 0;
    bool operator==(const Cache_Mark&) const = default;
};

/// The pager over a file of a disk.
class File_Pager final : public Pager {
public:
    File_Pager(files::Disk& disk, std::string path, Open_Mode mode,
               std::chrono::milliseconds patience);
    ~File_Pager() override;
    File_Pager(const File_Pager&) = delete;
    File_Pager& operator=(const File_Pager&) = delete;

    std::size_t page_size() const override { return page_size_; }
    Page_Number page_count() const override { return page_count_; }
    void begin_read() override;
    void end_read() noexcept override;
    void begin_write() override;
    void commit() override;
    void rollback() noexcept override;
    bool in_write() const override { return writing_; }
    Page read(Page_Number number) override;
    std::span<std::byte> change(Page_Number number) override;
    Page_Number append() override;
    Pager_Report report() const override { return report_; }
    std::uint64_t generation() const override { return generation_; }

private:
    void open_file(Open_Mode mode);
    void read_header();
    void prepare();
    void make_journal();
    void take(files::Lock wanted);
    void release() noexcept;
    bool still_named() {
        return disk_.identity(path_) == identity_ &&
               (path_ == real_path_ || disk_.identity(real_path_) == identity_);
    }
    void check_still_named();
    void check_may_write() const;
    bool must_settle() const;
    void attach_journal();
    void look_at_other_names();
    void enter_reading();
    void enter_writing();
    void look_at_names();
    void refuse(const Journal_Unusable& why);
    bool note_doubted();
    bool note_useless(const Journal_Finding& finding);
    void settle();
    void sync_settled(const Journal_Finding& finding);
    void set_aside();
    void show_settled();
    void notice_state();
    std::optional<Cache_Mark> mark_now();
    void store();
    void drop_unchanged();
    void write_journal();
    void write_pages();
    void put_back() noexcept;
    void keep_written();
    void forget_changes() noexcept;
    void check_number(Page_Number number) const;
    Page read_from_file(Page_Number number);

    files::Disk& disk_;
    std::string path_;
    std::string real_path_; ///< links resolved
    std::chrono::milliseconds patience_;
    std::unique_ptr<files::File> file_;
    files::Identity identity_;
    bool file_writable_ = false;
    bool unsure_ = false;     ///< the last sync failed: what reads well need not be on the medium
    std::uint64_t names_ = 1; ///< hard links, as far as they were judged
    std::vector<std::string> names_beside_; ///< in the same folder, where there are several
    Journal journal_;
    std::optional<std::uint64_t> salt_; ///< of the journal that was open last
    std::size_t page_size_ = 0;
    Page_Number page_count_ = 0; ///< with the appended ones
    Page_Number count_in_file_ = 0;
    bool reading_ = false;
    bool writing_ = false;
    std::uint64_t generation_ = 0; ///< counts how often the cache had to start anew
    Page_Cache cache_{4096};
    std::optional<Cache_Mark> cached_at_;
    Changed_Pages changed_;
    std::optional<Journal_Finding> shown_; ///< what a file that we may not write is to look like
    Pager_Report report_;
};

} // namespace jet
