#include "platform/files/crash_disk.h"

#include <algorithm>

namespace files {

constexpr std::uint64_t sector = 512;

class Crash_File final : public File {
public:
    Crash_File(Crash_Disk& disk, std::unique_ptr<File> live)
        : disk_(disk), live_(std::move(live)) {}

    std::size_t read_at(std::uint64_t offset, std::span<std::byte> into) override {
        return live_->read_at(offset, into);
    }
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes) override {
        disk_.announce();
        live_->write_at(offset, bytes);
        disk_.add({live_->identity().inode, offset, {bytes.begin(), bytes.end()}, {}, {}});
    }
    std::uint64_t size() override { return live_->size(); }
    void resize(std::uint64_t bytes) override {
        disk_.announce();
        live_->resize(bytes);
        disk_.add({live_->identity().inode, 0, {}, bytes, {}});
    }
    void sync() override {
        disk_.announce();
        disk_.sync_file(live_->identity().inode);
    }
    bool lock(Lock wanted, std::chrono::milliseconds patience) override {
        return live_->lock(wanted, patience);
    }
    Identity identity() override { return live_->identity(); }
    std::uint64_t stamp() override { return live_->stamp(); }
    Standing standing() override { return live_->standing(); }
    void set_owner(User owner, Group group) noexcept override { live_->set_owner(owner, group); }
    void set_mode(std::uint32_t mode) noexcept override { live_->set_mode(mode); }
    void set_acl(const Acl& acl) noexcept override { live_->set_acl(acl); }
    bool counts_short_names() override { return live_->counts_short_names(); }

private:
    Crash_Disk& disk_;
    std::unique_ptr<File> live_;
};

void Crash_Disk::Medium::apply(const Change& change) {
    for (const auto& [path, inode] : change.names) {
        if (inode)
            names[path] = *inode;
        else
            names.erase(path);
    }
    if (!change.made_folder.empty()) folders.insert(change.made_folder);
    if (change.inode == 0) return;
    Bytes& content = contents[change.inode];
    if (change.size) content.resize(*change.size);
    if (content.size() < change.offset + change.bytes.size())
        content.resize(change.offset + change.bytes.size());
    std::ranges::copy(change.bytes, content.begin() + static_cast<std::ptrdiff_t>(change.offset));
}

void Crash_Disk::Medium::apply_torn(const Change& change, std::mt19937& torn) {
    if (change.bytes.empty()) return; // a size or a name arrives or not
    Bytes& content = contents[change.inode];
    const std::uint64_t end = change.offset + change.bytes.size();
    // The longer size may arrive without the bytes that it makes room for.
    if (content.size() < end && torn() % 2 == 0) content.resize(end);
    for (std::uint64_t from = change.offset; from < end;) {
        const std::uint64_t to = std::min(end, (from / sector + 1) * sector);
        if (torn() % 2 == 0) {
            if (content.size() < to) content.resize(to);
            std::copy_n(change.bytes.data() + (from - change.offset), to - from,
                        content.data() + from);
        }
        from = to;
    }
}

Crash_Disk::Crash_Disk(Memory_Disk& content) {
    for (const std::string& folder : content.folders()) live_.make_folder(folder);
    medium_.folders = content.folders();
    for (const std::string& path : content.paths()) {
        const Identity identity = *content.identity(path);
        live_.restore(path, content.bytes(path), identity);
        medium_.names[path] = identity.inode;
        medium_.contents[identity.inode] = content.bytes(path);
    }
}

Memory_Disk Crash_Disk::after_power_loss(const Fates& fates, std::mt19937& torn) const {
    Medium medium = medium_;
    for (std::size_t i = 0; i < pending_.size(); ++i) {
        const Fate fate = fates(i);
        if (fate == Fate::kept) medium.apply(pending_[i]);
        if (fate == Fate::torn) medium.apply_torn(pending_[i], torn);
    }
    Memory_Disk disk;
    for (const std::string& folder : medium.folders) // sorted: the ones above come first
        if (disk.folder_exists(folder_of(folder))) disk.make_folder(folder);
    for (const auto& [path, inode] : medium.names)
        if (disk.folder_exists(folder_of(path)))
            disk.restore(path, medium.contents[inode], {1, inode});
    return disk;
}

std::unique_ptr<File> Crash_Disk::open(const std::string& path, Access access) {
    const bool existed = live_.file_exists(path);
    const bool makes = access != Access::read && access != Access::read_write;
    if (makes) announce();
    auto file = live_.open(path, access);
    const std::uint64_t inode = file->identity().inode;
    if (makes && !existed) add({0, 0, {}, {}, {{path, inode}}});
    if (makes && existed) add({inode, 0, {}, 0, {}});
    return std::make_unique<Crash_File>(*this, std::move(file));
}

void Crash_Disk::make_folder(const std::string& path) {
    announce();
    live_.make_folder(path);
    add({0, 0, {}, {}, {}, path});
}

bool Crash_Disk::Change::in_folder(const std::string& folder) const {
    if (!made_folder.empty()) return folder_of(made_folder) == folder;
    return !names.empty() && folder_of(names.begin()->first) == folder;
}

void Crash_Disk::remove(const std::string& path) {
    announce();
    live_.remove(path);
    add({0, 0, {}, {}, {{path, std::nullopt}}});
}

void Crash_Disk::rename(const std::string& from, const std::string& to) {
    announce();
    live_.rename(from, to);
    add({0, 0, {}, {}, {{from, std::nullopt}, {to, live_.identity(to)->inode}}});
}

void Crash_Disk::sync_file(std::uint64_t inode) {
    std::erase_if(pending_, [&](const Change& change) {
        if (change.inode != inode) return false;
        medium_.apply(change);
        return true;
    });
}

void Crash_Disk::sync_folder(const std::string& path) {
    announce();
    live_.sync_folder(path);
    std::erase_if(pending_, [&](const Change& change) {
        if (!change.in_folder(path)) return false;
        medium_.apply(change);
        return true;
    });
}

} // namespace files
