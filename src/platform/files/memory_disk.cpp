#include "platform/files/memory_disk.h"

#include <algorithm>

namespace files {

struct Memory_Disk::Node {
    std::uint64_t inode = 0;
    std::uint64_t changes = 0;
    bool write_protected = false;
    bool special = false;
    Standing standing; ///< the number of names is counted when asked for
    Bytes bytes;
    std::map<const File*, Lock> locks;

    bool may_lock(const File* who, Lock wanted) const {
        return wanted == Lock::none || std::ranges::none_of(locks, [&](const auto& held) {
                   return held.first != who &&
                          (wanted == Lock::exclusive || held.second == Lock::exclusive);
               });
    }
};

class Memory_File final : public File {
public:
    Memory_File(Memory_Disk& disk, std::shared_ptr<Memory_Disk::Node> node, std::string path,
                bool writable)
        : disk_(disk), node_(std::move(node)), path_(std::move(path)), writable_(writable) {}
    ~Memory_File() override { node_->locks.erase(this); }
    Memory_File(const Memory_File&) = delete;
    Memory_File& operator=(const Memory_File&) = delete;

    std::size_t read_at(std::uint64_t offset, std::span<std::byte> into) override {
        if (offset >= node_->bytes.size()) return 0;
        const std::size_t count = std::min<std::size_t>(into.size(), node_->bytes.size() - offset);
        std::copy_n(node_->bytes.data() + offset, count, into.data());
        return count;
    }
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes) override {
        allow_writing();
        if (offset + bytes.size() > node_->bytes.size()) node_->bytes.resize(offset + bytes.size());
        std::copy(bytes.begin(), bytes.end(), node_->bytes.data() + offset);
    }
    std::uint64_t size() override { return node_->bytes.size(); }
    void resize(std::uint64_t bytes) override {
        allow_writing();
        node_->bytes.resize(bytes);
    }
    void sync() override {}
    bool lock(Lock wanted, std::chrono::milliseconds) override {
        if (wanted == Lock::exclusive && !writable_)
            throw Error(Failure::denied, path_, "open for reading only");
        if (!node_->may_lock(this, wanted)) return false;
        wanted == Lock::none ? static_cast<void>(node_->locks.erase(this))
                             : static_cast<void>(node_->locks[this] = wanted);
        return true;
    }
    Identity identity() override { return {1, node_->inode}; }
    std::uint64_t stamp() override { return node_->changes; }
    Standing standing() override { return disk_.standing(*node_); }
    void set_owner(User owner, Group group) noexcept override {
        const bool allowed = may_change() && disk_.is_member(disk_.user_, group);
        if (disk_.user_ == administrator && !disk_.shown_) node_->standing.owner = owner;
        if (disk_.user_ == administrator || allowed) node_->standing.group = group;
    }
    void set_mode(std::uint32_t mode) noexcept override {
        if (!may_change()) return;
        node_->standing.mode = mode;
        for (Acl_Entry& entry : node_->standing.acl) // as the system does
            if (const auto shift = place_in_mode(entry))
                entry.rights = static_cast<std::uint16_t>(mode >> *shift & 07);
    }
    void set_acl(const Acl& acl) noexcept override {
        if (!may_change() || !disk_.lists_) return;
        node_->standing.acl = acl;
        for (const Acl_Entry& entry : acl)
            if (const auto shift = place_in_mode(entry))
                node_->standing.mode = (node_->standing.mode & ~(07U << *shift)) |
                                       std::uint32_t{entry.rights} << *shift;
    }
    bool counts_short_names() override { return disk_.short_names_; }

private:
    static std::optional<unsigned> place_in_mode(const Acl_Entry& entry) {
        switch (entry.of) {
        case Acl_Entry::Of::owner:
            return 6;
        case Acl_Entry::Of::mask:
            return 3;
        case Acl_Entry::Of::others:
            return 0;
        default:
            return std::nullopt;
        }
    }
    bool may_change() const {
        if (disk_.shown_) return !disk_.shown_->mode;
        return disk_.user_ == administrator || disk_.user_ == node_->standing.owner;
    }
    void allow_writing() {
        if (!writable_) throw Error(Failure::denied, path_, "open for reading only");
        ++node_->changes;
    }

    Memory_Disk& disk_;
    std::shared_ptr<Memory_Disk::Node> node_;
    std::string path_;
    bool writable_;
};

std::shared_ptr<Memory_Disk::Node> Memory_Disk::node(const std::string& path) const {
    const auto found = files_.find(path);
    if (found == files_.end()) throw Error(Failure::not_found, path, "no such file");
    return found->second;
}

void Memory_Disk::check_folder_of(const std::string& path) const {
    const std::string folder = folder_of(path);
    if (protected_folders_.contains(folder))
        throw Error(Failure::denied, path, "folder is protected");
    if (!folder.empty() && folder != "." && folder != "/" && !folders_.contains(folder))
        throw Error(Failure::not_found, path, "no such folder");
}

Standing Memory_Disk::standing(const Node& node) const {
    Standing found = node.standing;
    found.names = static_cast<std::uint64_t>(std::ranges::count_if(
        files_, [&](const auto& named) { return named.second.get() == &node; }));
    if (short_names_) ++found.names;
    return found;
}

void Memory_Disk::allow(const Node& node, Access access, const std::string& path) {
    if (node.special) throw Error(Failure::no_file, path, "not a file");
    if (user_ == administrator || shown_) return;
    const Standing& standing = node.standing;
    const unsigned rights =
        user_ == standing.owner ? standing.mode >> 6 : granted(*this, user_, standing);
    const unsigned wanted = access == Access::read ? 4 : 6;
    if ((rights & wanted) != wanted) throw Error(Failure::denied, path, "no rights");
}

std::unique_ptr<File> Memory_Disk::open(const std::string& path, Access access) {
    const bool taken = files_.contains(path);
    const bool makes = access == Access::create_new || access == Access::create_private;
    if (makes && taken) throw Error(Failure::exists, path, "file exists");
    if (makes || (access == Access::create_or_empty && !taken)) {
        check_folder_of(path);
        if (path.size() - path.find_last_of('/') - 1 > 255)
            throw Error(Failure::name_too_long, path, "name too long");
        auto& made = files_[path] = std::make_shared<Node>();
        made->inode = ++last_inode_;
        made->standing = {user_, user_, access == Access::create_private ? 0600U : 0644U, 1};
        if (shown_) made->standing.owner = made->standing.group = shown_->owner;
        if (shown_ && shown_->mode) made->standing.mode = *shown_->mode;
        return std::make_unique<Memory_File>(*this, made, path, true);
    }
    auto found = node(path);
    if (access != Access::read && found->write_protected)
        throw Error(Failure::denied, path, "file is protected");
    allow(*found, access, path);
    if (access == Access::create_or_empty) {
        found->bytes.clear();
        ++found->changes;
    }
    return std::make_unique<Memory_File>(*this, found, path, access != Access::read);
}

std::unique_ptr<File> Memory_Disk::open_no_link(const std::string& path, Access access) {
    return open(path, access);
}

std::optional<Look> Memory_Disk::look(const std::string& path) {
    const auto found = files_.find(path);
    if (found == files_.end())
        return folders_.contains(path) ? std::optional(Look{{}, false, 0, 0}) : std::nullopt;
    const Node& node = *found->second;
    return Look{{1, node.inode}, !node.special, node.bytes.size(), node.standing.owner};
}

std::optional<Identity> Memory_Disk::identity(const std::string& path) {
    const auto found = files_.find(path);
    return found == files_.end() ? std::nullopt : std::optional(Identity{1, found->second->inode});
}

bool Memory_Disk::folder_exists(const std::string& path) {
    return path.empty() || path == "." || path == "/" || folders_.contains(path);
}

void Memory_Disk::make_folder(const std::string& path) {
    check_folder_of(path);
    if (files_.contains(path) || !folders_.insert(path).second)
        throw Error(Failure::exists, path, "folder exists");
}

void Memory_Disk::remove(const std::string& path) {
    check_folder_of(path);
    if (files_.erase(path) == 0) throw Error(Failure::not_found, path, "no such file");
}

void Memory_Disk::rename(const std::string& from, const std::string& to) {
    check_folder_of(from);
    check_folder_of(to);
    const auto moved = node(from);
    files_.erase(from);
    files_[to] = moved;
}

void Memory_Disk::sync_folder(const std::string& path) {
    if (!folder_exists(path)) throw Error(Failure::not_found, path, "no such folder");
    if (hidden_folders_.contains(path)) throw Error(Failure::denied, path, "folder is hidden");
}

void Memory_Disk::try_folder(const std::string& path) { Memory_Disk::sync_folder(path); }

std::vector<std::string> Memory_Disk::files_in(const std::string& folder) {
    Memory_Disk::try_folder(folder);
    std::vector<std::string> names;
    for (const auto& [path, file] : files_)
        if (folder_of(path) == folder) names.push_back(path.substr(path.find_last_of('/') + 1));
    return names;
}

Memory_Disk::Bytes Memory_Disk::bytes(const std::string& path) const { return node(path)->bytes; }

void Memory_Disk::set_bytes(const std::string& path, const Bytes& content) {
    open(path, Access::create_or_empty)->write_at(0, content);
}

void Memory_Disk::set_standing(const std::string& path, const Standing& standing) {
    node(path)->standing = standing;
}

void Memory_Disk::link(const std::string& path, const std::string& second_name) {
    files_[second_name] = node(path);
}

void Memory_Disk::make_special(const std::string& path) { node(path)->special = true; }

void Memory_Disk::restore(const std::string& path, const Bytes& content, Identity identity) {
    files_[path] = std::make_shared<Node>();
    files_[path]->inode = identity.inode;
    files_[path]->standing = {user_, user_, 0644, 1};
    files_[path]->bytes = content;
    last_inode_ = std::max(last_inode_, identity.inode);
}

Memory_Disk Memory_Disk::copy() const {
    Memory_Disk result;
    result.folders_ = folders_;
    for (const auto& [path, file] : files_) result.restore(path, file->bytes, {1, file->inode});
    return result;
}

void Memory_Disk::protect(const std::string& path) { node(path)->write_protected = true; }

std::vector<std::string> Memory_Disk::paths() const {
    std::vector<std::string> result;
    for (const auto& [path, file] : files_) result.push_back(path);
    return result;
}

} // namespace files
