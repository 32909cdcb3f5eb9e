#pragma once

#include "platform/files/disk.h"

#include <array>

namespace files {

/// A disk over another one that refuses calls on request. Open files must not outlive it.
class Faulty_Disk : public Disk {
public:
    enum class Call {
        open,
        look,
        read,
        write,
        resize,
        sync,
        lock,
        folder,
        remove,
        rename,
        sync_folder
    };

    struct Fault {
        std::optional<Call> call;       ///< nothing: calls of every kind are counted
        int nth = 1;                    ///< counted from now on, the first call is 1
        Failure kind = Failure::device; ///< a lock refused with locked_elsewhere just returns false
        bool lasting = false;           ///< all later ones of the kind, too
        std::string path;               ///< only calls that concern this path; empty: any
    };

    explicit Faulty_Disk(Disk& below) : below_(below) {}

    void set_fault(const Fault& fault); ///< in place of those set before
    void add_fault(const Fault& fault) { faults_.push_back({fault, 0}); }
    void clear_fault() { faults_.clear(); }
    /// Writing fails with disk_full when it would lengthen files by more than this, all together.
    void limit_room(std::uint64_t bytes) { room_ = bytes; }
    bool struck() const { return struck_; } ///< the fault has been met since it was set
    int calls(Call call) const { return calls_[static_cast<std::size_t>(call)]; }

    std::unique_ptr<File> open(const std::string& path, Access access) override;
    std::unique_ptr<File> open_no_link(const std::string& path, Access access) override;
    std::optional<Look> look(const std::string& path) override;
    std::optional<Identity> identity(const std::string& path) override;
    bool folder_exists(const std::string& path) override;
    void make_folder(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void sync_folder(const std::string& path) override;
    void try_folder(const std::string& path) override;
    std::vector<std::string> files_in(const std::string& folder) override;
    std::string resolve(const std::string& path) override { return below_.resolve(path); }
    User user() override { return below_.user(); }
    bool is_member(User user, Group group) override { return below_.is_member(user, group); }
    std::string user_name(User user) override { return below_.user_name(user); }

    /// Counts the call. Throws the Error that is due.
    void pass(Call call, const std::string& path);
    void take_room(std::uint64_t bytes, const std::string& path);

private:
    Disk& below_;
    struct Counted_Fault {
        Fault fault;
        int counted = 0;
        bool is_due(Call call, const std::string& path);
    };
    std::vector<Counted_Fault> faults_;
    bool struck_ = false;
    std::optional<std::uint64_t> room_;
    std::array<int, 11> calls_{};
};

} // namespace files
