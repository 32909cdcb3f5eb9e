#pragma once

#include "platform/files/disk.h"
#include "platform/jet/check/bytes.h"

#include <memory>
#include <vector>

namespace jet::check {

/// One page; its bytes stay valid as long as this lives.
struct Page {
    std::shared_ptr<const std::vector<std::byte>> keep;
    Bytes bytes;
};

/// The pages of a file, read through a small cache, or of a file in memory, without copies.
class Pages {
public:
    explicit Pages(files::File& file) : file_(&file), bytes_(file.size()) {}
    explicit Pages(std::span<const std::byte> all) : memory_(all), bytes_(all.size()) {}

    std::uint64_t file_bytes() const { return bytes_; }
    void set_page_size(std::uint32_t bytes);
    /// Whole pages in the file.
    std::uint32_t count() const { return count_; }
    /// Page `number`, which must be below count(); zeros where the file got shorter meanwhile.
    Page page(std::uint32_t number);
    /// The first bytes of the file, for telling what kind it is.
    Page head(std::size_t length);

private:
    Page read(std::uint64_t at, std::size_t length);

    struct Frame {
        std::uint32_t number = 0;
        Page page;
    };

    files::File* file_ = nullptr;
    std::span<const std::byte> memory_;
    std::uint64_t bytes_;
    std::uint32_t page_size_ = 0;
    std::uint32_t count_ = 0;
    std::vector<Frame> frames_; ///< page n has its place at n modulo the number of frames
};

} // namespace jet::check
