#pragma once

#include "platform/jet/pages/pager.h"

#include <list>
#include <unordered_map>

namespace jet {

/// Pages as they are in the file, at most 16 MiB of them; the one that was longest unused goes
/// first.
class Page_Cache {
public:
    explicit Page_Cache(std::size_t page_size) : limit_((std::size_t{16} << 20) / page_size) {}

    /// @return null when the page is not held.
    Page find(Page_Number number);
    void put(Page_Number number, Page page);
    void clear();

private:
    using Entry = std::pair<Page_Number, Page>;
    std::size_t limit_;
    std::list<Entry> by_use_; ///< latest first
    std::unordered_map<Page_Number, std::list<Entry>::iterator> places_;
};

} // namespace jet
