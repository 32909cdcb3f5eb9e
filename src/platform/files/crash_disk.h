#pragma once

#include "platform/files/memory_disk.h"

#include <functional>
#include <random>

namespace files {

/// A disk in memory that remembers what has not been synced, so that a test can look at what a loss
/// of power would leave at any moment. Contents reach the medium when their file is synced, names
/// (made, removed, changed; those of folders too) when their folder is. Each change that is under
/// way may be kept, lost or torn on its own: a later one may arrive without an earlier one. Sectors
/// of 512 bytes are written whole or not at all. Owners and modes are not remembered: found again,
/// all is the user's. Open files must not outlive it.
class Crash_Disk : public Disk {
public:
    using Bytes = Memory_Disk::Bytes;
    enum class Fate { kept, lost, torn };
    /// Decides over the change with this index in the order in which they were made.
    using Fates = std::function<Fate(std::size_t)>;

    /// Starts with a copy; all of it is on the medium.
    explicit Crash_Disk(Memory_Disk& content);

    /// Called before each change and each sync: the moments between which a crash makes a
    /// difference.
    std::function<void()> before_change;

    std::size_t pending() const { return pending_.size(); }
    /// The disk as it is found after the power was lost now. @param torn decides over the sectors
    /// of torn changes.
    Memory_Disk after_power_loss(const Fates& fates, std::mt19937& torn) const;

    std::unique_ptr<File> open(const std::string& path, Access access) override;
    std::unique_ptr<File> open_no_link(const std::string& path, Access access) override {
        return open(path, access);
    }
    std::optional<Look> look(const std::string& path) override { return live_.look(path); }
    std::optional<Identity> identity(const std::string& path) override {
        return live_.identity(path);
    }
    bool folder_exists(const std::string& path) override { return live_.folder_exists(path); }
    void make_folder(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void sync_folder(const std::string& path) override;
    void try_folder(const std::string& path) override { live_.try_folder(path); }
    std::vector<std::string> files_in(const std::string& folder) override {
        return live_.files_in(folder);
    }
    User user() override { return live_.user(); }
    bool is_member(User user, Group group) override { return live_.is_member(user, group); }

private:
    friend class Crash_File;

    /// Bytes at an offset, a new size, or what paths name from now on.
    struct Change {
        std::uint64_t inode = 0; ///< 0: names
        std::uint64_t offset = 0;
        Bytes bytes;
        std::optional<std::uint64_t> size;
        std::map<std::string, std::optional<std::uint64_t>> names;
        std::string made_folder = {};
        bool in_folder(const std::string& folder) const; ///< its names stand there
    };
    struct Medium {
        std::set<std::string> folders;
        std::map<std::string, std::uint64_t> names;
        std::map<std::uint64_t, Bytes> contents;
        void apply(const Change& change);
        void apply_torn(const Change& change, std::mt19937& torn);
    };

    void announce() const {
        if (before_change) before_change();
    }
    void add(Change change) { pending_.push_back(std::move(change)); }
    void sync_file(std::uint64_t inode);

    Memory_Disk live_;
    Medium medium_;
    std::vector<Change> pending_;
};

} // namespace files
