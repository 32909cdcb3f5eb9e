#include "platform/files/faulty_disk.h"

namespace files {
namespace {

using Call = Faulty_Disk::Call;

class Faulty_File final : public File {
public:
    Faulty_File(Faulty_Disk& disk, std::unique_ptr<File> below, std::string path)
        : disk_(disk), below_(std::move(below)), path_(std::move(path)) {}

    std::size_t read_at(std::uint64_t offset, std::span<std::byte> into) override {
        disk_.pass(Call::read, path_);
        return below_->read_at(offset, into);
    }
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes) override {
        try {
            disk_.pass(Call::write, path_);
            const std::uint64_t end = offset + bytes.size();
            if (end > below_->size()) disk_.take_room(end - below_->size(), path_);
        } catch (const Error&) {
            below_->write_at(offset, bytes.first(bytes.size() / 2)); // a short write
            throw;
        }
        below_->write_at(offset, bytes);
    }
    std::uint64_t size() override { return below_->size(); }
    void resize(std::uint64_t bytes) override {
        disk_.pass(Call::resize, path_);
        below_->resize(bytes);
    }
    void sync() override {
        disk_.pass(Call::sync, path_);
        below_->sync();
    }
    bool lock(Lock wanted, std::chrono::milliseconds patience) override {
        try {
            if (wanted != Lock::none)
                disk_.pass(Call::lock, path_); // nobody refuses to be rid of one
        } catch (const Error& error) {
            if (error.kind != Failure::locked_elsewhere) throw;
            return false;
        }
        return below_->lock(wanted, patience);
    }
    Identity identity() override { return below_->identity(); }
    std::uint64_t stamp() override { return below_->stamp(); }
    Standing standing() override { return below_->standing(); }
    void set_owner(User owner, Group group) noexcept override { below_->set_owner(owner, group); }
    void set_mode(std::uint32_t mode) noexcept override { below_->set_mode(mode); }
    void set_acl(const Acl& acl) noexcept override { below_->set_acl(acl); }
    bool counts_short_names() override { return below_->counts_short_names(); }

private:
    Faulty_Disk& disk_;
    std::unique_ptr<File> below_;
    std::string path_;
};

} // namespace

void Faulty_Disk::set_fault(const Fault& fault) {
    faults_ = {{fault, 0}};
    struck_ = false;
}

bool Faulty_Disk::Counted_Fault::is_due(Call call, const std::string& path) {
    const bool concerned =
        (!fault.call || *fault.call == call) && (fault.path.empty() || fault.path == path);
    if (!concerned) return false;
    ++counted;
    return counted == fault.nth || (fault.lasting && counted > fault.nth);
}

void Faulty_Disk::pass(Call call, const std::string& path) {
    ++calls_[static_cast<std::size_t>(call)];
    for (Counted_Fault& counted : faults_) {
        if (!counted.is_due(call, path)) continue;
        struck_ = true;
        throw Error(counted.fault.kind, path, "refused by the test");
    }
}

void Faulty_Disk::take_room(std::uint64_t bytes, const std::string& path) {
    if (!room_) return;
    if (*room_ < bytes) throw Error(Failure::disk_full, path, "no room left by the test");
    *room_ -= bytes;
}

std::unique_ptr<File> Faulty_Disk::open(const std::string& path, Access access) {
    pass(Call::open, path);
    return std::make_unique<Faulty_File>(*this, below_.open(path, access), path);
}

std::unique_ptr<File> Faulty_Disk::open_no_link(const std::string& path, Access access) {
    pass(Call::open, path);
    return std::make_unique<Faulty_File>(*this, below_.open_no_link(path, access), path);
}

std::optional<Look> Faulty_Disk::look(const std::string& path) {
    pass(Call::look, path);
    return below_.look(path);
}

std::optional<Identity> Faulty_Disk::identity(const std::string& path) {
    pass(Call::look, path);
    return below_.identity(path);
}

bool Faulty_Disk::folder_exists(const std::string& path) {
    pass(Call::folder, path);
    return below_.folder_exists(path);
}

void Faulty_Disk::make_folder(const std::string& path) {
    pass(Call::folder, path);
    below_.make_folder(path);
}

void Faulty_Disk::remove(const std::string& path) {
    pass(Call::remove, path);
    below_.remove(path);
}

void Faulty_Disk::rename(const std::string& from, const std::string& to) {
    pass(Call::rename, to);
    below_.rename(from, to);
}

void Faulty_Disk::sync_folder(const std::string& path) {
    pass(Call::sync_folder, path);
    below_.sync_folder(path);
}

void Faulty_Disk::try_folder(const std::string& path) {
    pass(Call::folder, path);
    below_.try_folder(path);
}

std::vector<std::string> Faulty_Disk::files_in(const std::string& folder) {
    pass(Call::folder, folder);
    return below_.files_in(folder);
}

} // namespace files
