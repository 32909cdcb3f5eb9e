#pragma once

#include "platform/jet/pager_cache.h"

#include <map>

namespace jet {

/// A page of an operation: as it was in the file (null for an appended one) and as it becomes.
struct Changed_Page {
    Page before;
    std::shared_ptr<Page_Bytes> after;
};
using Changed_Pages = std::map<Page_Number, Changed_Page>;

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
    bool in_write() const override { return write_depth_ > 0; }
    Page read(Page_Number number) override;
    std::span<std::byte> change(Page_Number number) override;
    Page_Number append() override;
    Pager_Report report() const override { return report_; }

private:
    void open_file(Open_Mode mode);
    void read_header();
    void take(files::Lock wanted);
    void release() noexcept;
    void check_still_named();
    void notice_size();
    void store();
    void drop_unchanged();
    void write_pages();
    void keep_written();
    void forget_changes() noexcept;
    void check_number(Page_Number number) const;
    Page read_from_file(Page_Number number);

    files::Disk& disk_;
    std::string path_;
    std::chrono::milliseconds patience_;
    std::unique_ptr<files::File> file_;
    std::size_t page_size_ = 0;
    Page_Number page_count_ = 0; ///< with the appended ones
    Page_Number count_in_file_ = 0;
    int read_depth_ = 0;
    int write_depth_ = 0;
    bool doomed_ = false; ///< rolled back at an inner level
    Page_Cache cache_{4096};
    Changed_Pages changed_;
    Pager_Report report_;
};

} // namespace jet
