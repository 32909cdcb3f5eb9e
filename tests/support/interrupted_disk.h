#pragma once

#include "platform/files/memory_disk.h"

#include <functional>
#include <utility>

namespace support {

/// A disk on which something happens just before the n-th lock is taken.
class Interrupted_Disk : public files::Memory_Disk {
public:
    std::unique_ptr<files::File> open(const std::string& path, files::Access access) override {
        return std::make_unique<Opened>(*this, files::Memory_Disk::open(path, access));
    }
    int due = 0;
    std::function<void()> action;

private:
    class Opened : public files::File {
    public:
        Opened(Interrupted_Disk& disk, std::unique_ptr<files::File> below)
            : disk_(disk), below_(std::move(below)) {}
        std::size_t read_at(std::uint64_t offset, std::span<std::byte> into) override {
            return below_->read_at(offset, into);
        }
        void write_at(std::uint64_t offset, std::span<const std::byte> bytes) override {
            below_->write_at(offset, bytes);
        }
        std::uint64_t size() override { return below_->size(); }
        void resize(std::uint64_t bytes) override { below_->resize(bytes); }
        void sync() override { below_->sync(); }
        bool lock(files::Lock wanted, std::chrono::milliseconds patience) override {
            const bool now = disk_.action && --disk_.due == 0;
            if (now) std::exchange(disk_.action, nullptr)();
            return below_->lock(wanted, patience);
        }
        files::Identity identity() override { return below_->identity(); }
        std::uint64_t stamp() override { return below_->stamp(); }
        files::Standing standing() override { return below_->standing(); }
        void set_owner(files::User owner, files::Group group) noexcept override {
            below_->set_owner(owner, group);
        }
        void set_mode(std::uint32_t mode) noexcept override { below_->set_mode(mode); }
        void set_acl(const files::Acl& acl) noexcept override { below_->set_acl(acl); }
        bool counts_short_names() override { return below_->counts_short_names(); }

    private:
        Interrupted_Disk& disk_;
        std::unique_ptr<files::File> below_;
    };
};

} // namespace support
