#include "scripts/cls_Script_Sets.h"

#include "scripts/error.h"

#include <utility>

namespace scripts {

void cls_Script_Sets::Add(std::shared_ptr<cls_script_coll> scripts, const QString& key) {
    if (!by_key_.emplace(key, scripts).second)
        throw Error(Failure::exists, "set " + key.toStdString(), "has its scripts already");
    scripts->SetID = key.toInt();
    sets_.push_back(std::move(scripts));
}

std::shared_ptr<cls_script_coll> cls_Script_Sets::Item(std::int32_t position) const {
    if (position < 1 || position > Count())
        throw Error(Failure::not_found, "position " + std::to_string(position), "no such entry");
    return sets_[static_cast<std::size_t>(position - 1)];
}

std::shared_ptr<cls_script_coll> cls_Script_Sets::Item(const QString& key) const {
    const auto found = by_key_.find(key);
    if (found == by_key_.end())
        throw Error(Failure::not_found, "set " + key.toStdString(), "has no scripts");
    return found->second;
}

void cls_Script_Sets::Remove(std::int32_t position) {
    const auto scripts = Item(position);
    std::erase_if(by_key_, [&](const auto& entry) { return entry.second == scripts; });
    sets_.erase(sets_.begin() + (position - 1));
}

void cls_Script_Sets::Remove(const QString& key) {
    const auto scripts = Item(key);
    by_key_.erase(key);
    std::erase(sets_, scripts);
}

void cls_Script_Sets::Clear() {
    sets_.clear();
    by_key_.clear();
}

} // namespace scripts
