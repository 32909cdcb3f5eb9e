#include "platform/jet/check/pages.h"

namespace jet::check {

namespace {

constexpr std::size_t frame_count = 1024;      // 4 MiB
constexpr std::uint64_t most_pages = 0xFFFFFF; // page numbers in row pointers have three bytes

} // namespace

void Pages::set_page_size(std::uint32_t bytes) {
    page_size_ = bytes;
    count_ = static_cast<std::uint32_t>(std::min(bytes_ / bytes, most_pages));
    if (file_ != nullptr) frames_.resize(frame_count);
}

Page Pages::page(std::uint32_t number) {
    const std::uint64_t at = std::uint64_t{number} * page_size_;
    if (file_ == nullptr) return read(at, page_size_);
    Frame& frame = frames_[number % frames_.size()];
    if (!frame.page.keep || frame.number != number) frame = {number, read(at, page_size_)};
    return frame.page;
}

Page Pages::head(std::size_t length) { return read(0, length); }

Page Pages::read(std::uint64_t at, std::size_t length) {
    if (file_ == nullptr) {
        const Bytes all(memory_);
        return {nullptr, all.part(at, length)};
    }
    auto buffer = std::make_shared<std::vector<std::byte>>(length);
    file_->read_at(at, *buffer);
    const Bytes bytes{std::span<const std::byte>(*buffer)};
    return {std::move(buffer), bytes};
}

} // namespace jet::check
