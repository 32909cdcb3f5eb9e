#pragma once

#include "platform/files/disk.h"

#include <map>
#include <set>

namespace files {

/// A disk in memory, for building files before they go to a real disk and for tests. Descriptions
/// of one path share its bytes, locks stand between descriptions, and a removed file lives on for
/// who has it open. One thread only, so a lock that is taken is refused at once: nobody could drop
/// it meanwhile. The folders "", "." and "/" are always there.
class Memory_Disk : public Disk {
public:
    using Bytes = std::vector<std::byte>;

    Memory_Disk() = default;
    Memory_Disk(Memory_Disk&&) = default;
    Memory_Disk& operator=(Memory_Disk&&) = default;
    /// A disk of its own with the same files and identities.
    Memory_Disk copy() const;

    std::unique_ptr<File> open(const std::string& path, Access access) override;
    std::optional<Identity> identity(const std::string& path) override;
    bool folder_exists(const std::string& path) override;
    void make_folder(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void sync_folder(const std::string& path) override;
    std::vector<std::string> files_in(const std::string& folder) override;

    /// The whole content; throws Error (not_found).
    Bytes bytes(const std::string& path) const;
    /// Puts a file there, the same file with new content when the name is taken.
    void set_bytes(const std::string& path, const Bytes& content);
    /// Puts a new file of this identity there.
    void restore(const std::string& path, const Bytes& content, Identity identity);
    /// Opening it for writing is refused with `denied` from now on.
    void protect(const std::string& path);
    /// Making, removing and renaming in the folder is refused with `denied` from now on.
    void protect_folder(const std::string& path) { protected_folders_.insert(path); }
    std::vector<std::string> paths() const; ///< of all files
    const std::set<std::string>& folders() const { return folders_; }

    struct Node; ///< one file, named or only open

private:
    std::shared_ptr<Node> node(const std::string& path) const;
    void check_folder_of(const std::string& path) const;

    std::map<std::string, std::shared_ptr<Node>> files_;
    std::set<std::string> folders_;
    std::set<std::string> protected_folders_;
    std::uint64_t last_inode_ = 0;
};

} // namespace files
