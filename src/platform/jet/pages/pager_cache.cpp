#include "platform/jet/pages/pager_cache.h"

namespace jet {

Page Page_Cache::find(Page_Number number) {
    const auto found = places_.find(number);
    if (found == places_.end()) return nullptr;
    by_use_.splice(by_use_.begin(), by_use_, found->second);
    return found->second->second;
}

void Page_Cache::put(Page_Number number, Page page) {
    if (const auto found = places_.find(number); found != places_.end()) {
        found->second->second = std::move(page);
        by_use_.splice(by_use_.begin(), by_use_, found->second);
        return;
    }
    if (places_.size() == limit_) {
        places_.erase(by_use_.back().first);
        by_use_.pop_back();
    }
    by_use_.emplace_front(number, std::move(page));
    places_[number] = by_use_.begin();
}

void Page_Cache::clear() {
    places_.clear();
    by_use_.clear();
}

} // namespace jet
