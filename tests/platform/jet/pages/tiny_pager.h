#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/pages/pager.h"

#include <fstream>
#include <iterator>
#include <set>
#include <string>

/// Pages in memory, without a file, locks or a journal: for tests of what stands on pages.
class Tiny_Pager : public jet::Pager {
public:
    explicit Tiny_Pager(std::size_t pages, std::size_t page_size = 4096) : page_size_(page_size) {
        while (pages_.size() < pages) append();
    }

    /// The pages of a file; Jet 3 files have smaller ones.
    static Tiny_Pager of_file(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        Tiny_Pager pager(0, bytes.at(0x14) == 0 ? 2048 : 4096);
        for (std::size_t at = 0; at < bytes.size(); at += pager.page_size_) {
            auto& page = *pager.pages_.emplace_back(std::make_shared<jet::Page_Bytes>());
            for (const char byte : bytes.substr(at, pager.page_size_))
                page.push_back(static_cast<std::byte>(byte));
        }
        return pager;
    }

    std::size_t page_size() const override { return page_size_; }
    jet::Page_Number page_count() const override {
        return static_cast<jet::Page_Number>(pages_.size());
    }
    void begin_read() override {}
    void end_read() noexcept override {}
    void begin_write() override {}
    void commit() override { changed.clear(); }
    void rollback() noexcept override {}
    bool in_write() const override { return true; }
    jet::Page read(jet::Page_Number number) override {
        if (number >= pages_.size()) throw jet::damaged(number, "it lies beyond the end");
        return pages_[number];
    }
    /// Each time another piece of memory: whoever writes where he may no longer write is found out.
    std::span<std::byte> change(jet::Page_Number number) override {
        auto& page = pages_.at(number);
        changed.insert(number);
        page = std::make_shared<jet::Page_Bytes>(*page);
        return *page;
    }
    jet::Page_Number append() override {
        pages_.push_back(std::make_shared<jet::Page_Bytes>(page_size_));
        return page_count() - 1;
    }

    std::set<jet::Page_Number> changed; ///< since the last commit

private:
    std::size_t page_size_;
    std::vector<std::shared_ptr<jet::Page_Bytes>> pages_;
};

/// Writes a page of map rows: inline maps of `bytes` bytes of bits each, all clear.
inline void format_maps(jet::Pager& pager, jet::Page_Number number, std::size_t rows,
                        std::uint32_t owner, std::size_t bytes = 64) {
    const auto page = pager.change(number);
    page[0] = page[1] = std::byte{1};
    jet::store_u32(&page[4], owner);
    jet::store_u16(&page[12], rows);
    for (std::size_t row = 0; row < rows; ++row)
        jet::store_u16(&page[14 + 2 * row], 4096 - (bytes + 5) * (row + 1));
    jet::store_u16(&page[2], 4096 - (bytes + 5) * rows - 14 - 2 * rows);
}

/// A file with header, global map (pages 0 and 1 in use, 510 free to come) and nothing else.
inline Tiny_Pager bare_file() {
    Tiny_Pager pager(2);
    format_maps(pager, 1, 2, 1);
    const auto bits = pager.change(1).subspan(4096 - 64);
    for (std::byte& byte : bits) byte = std::byte{0xFF};
    bits[0] = std::byte{0xFC};
    return pager;
}
