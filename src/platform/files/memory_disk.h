#pragma once

#include "platform/files/disk.h"

#include <map>
#include <set>

namespace files {

/// A disk in memory, for building files before they go to a real disk and for tests. Descriptions
/// of one path share its bytes, locks stand between descriptions, and a removed file lives on for
/// who has it open (it must not be moved meanwhile). Modes are kept as on a real disk; the user is number 1000 at first, his group
/// too, and he is nobody special. One thread only, so a lock that is taken is refused at once: nobody could drop
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
    User user() override { return user_; }
    bool is_member(User user, Group group) override {
        return user == group || members_.contains({user, group});
    }

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
    /// Its name can be taken, but it can be neither listed nor synced (`denied`) from now on.
    void hide_folder(const std::string& path) { hidden_folders_.insert(path); }
    /// Who uses the disk from now on; new files get the group of the same number, which is his own.
    void become(User user) { user_ = user; }
    void enter(User user, Group group) { members_.insert({user, group}); }
    /// All but the number of names.
    void set_standing(const std::string& path, const Standing& standing);
    void link(const std::string& path, const std::string& second_name);
    /// Makes the file something that is none: a pipe, a link that leads nowhere.
    void make_special(const std::string& path);
    /// As media without owners have it: files show this owner from the start, whoever makes them,
    /// and refuse other ones. @param mode shown by new files, nothing: kept as it is set.
    void show_owner(User owner, std::optional<std::uint32_t> mode = std::nullopt) {
        shown_ = {owner, mode};
    }
    void keep_no_lists() { lists_ = false; }          ///< setting one is refused
    void count_short_names() { short_names_ = true; } ///< each file has one
    std::vector<std::string> paths() const;           ///< of all files
    const std::set<std::string>& folders() const { return folders_; }

    struct Node; ///< one file, named or only open
    struct Shown {
        User owner = 0;
        std::optional<std::uint32_t> mode;
    };

private:
    friend class Memory_File;
    Standing standing(const Node& node) const;
    void allow(const Node& node, Access access, const std::string& path);
    std::shared_ptr<Node> node(const std::string& path) const;
    void check_folder_of(const std::string& path) const;

    std::map<std::string, std::shared_ptr<Node>> files_;
    std::set<std::string> folders_;
    std::set<std::string> protected_folders_;
    std::set<std::string> hidden_folders_;
    std::set<std::pair<User, Group>> members_;
    std::optional<Shown> shown_;
    User user_ = 1000;
    bool short_names_ = false;
    bool lists_ = true;
    std::uint64_t last_inode_ = 0;
};

} // namespace files
