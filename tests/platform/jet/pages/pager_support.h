#pragma once

#include "platform/files/memory_disk.h"
#include "platform/jet/pages/pager.h"

#include <cstring>

namespace pager_tests {

using jet::Open_Mode;
using jet::Page_Bytes;
using jet::Page_Number;

inline const std::string name = "library.mdb";
inline const std::string journal_name = name + "-journal";

/// A page that says which state it is in.
inline Page_Bytes page_of(Page_Number number, int state, std::size_t size = 4096) {
    Page_Bytes page(size);
    for (std::size_t i = 0; i < size; i += 4) {
        const std::uint32_t word = number * 1000003U + static_cast<std::uint32_t>(state) * 7919U +
                                   static_cast<std::uint32_t>(i);
        std::memcpy(&page[i], &word, 4);
    }
    return page;
}

inline Page_Bytes header_page(int version = 1, std::size_t size = 4096) {
    Page_Bytes page(size);
    constexpr char start[] = "\x00\x01\x00\x00Standard Jet DB";
    std::memcpy(page.data(), start, sizeof start);
    page[0x14] = static_cast<std::byte>(version);
    return page;
}

inline std::vector<std::byte> file_of(Page_Number pages, int state = 0) {
    std::vector<std::byte> bytes = header_page();
    for (Page_Number n = 1; n < pages; ++n) {
        const Page_Bytes page = page_of(n, state);
        bytes.insert(bytes.end(), page.begin(), page.end());
    }
    return bytes;
}

inline files::Memory_Disk disk_with(Page_Number pages) {
    files::Memory_Disk disk;
    disk.set_bytes(name, file_of(pages));
    return disk;
}

inline void set_page(jet::Pager& pager, Page_Number number, int state) {
    const Page_Bytes page = page_of(number, state);
    std::memcpy(pager.change(number).data(), page.data(), page.size());
}

/// One transaction that puts these pages into this state.
inline void put(jet::Pager& pager, std::initializer_list<Page_Number> pages, int state) {
    pager.begin_write();
    for (const Page_Number number : pages) {
        while (number >= pager.page_count()) pager.append();
        set_page(pager, number, state);
    }
    pager.commit();
}

inline std::vector<std::byte> content(jet::Pager& pager) {
    std::vector<std::byte> bytes;
    pager.begin_read();
    for (Page_Number n = 0; n < pager.page_count(); ++n) {
        const jet::Page page = pager.read(n);
        bytes.insert(bytes.end(), page->begin(), page->end());
    }
    pager.end_read();
    return bytes;
}

} // namespace pager_tests
