#pragma once

#include "scripts/cls_script_coll.h"

#include <QHashFunctions>
#include <QString>

#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace scripts {

/// The scripts of all CV sets that have any, in the order in which they were added. The key of an
/// entry is the decimal text of its set's SetID.
class cls_Script_Sets {
public:
    /// Also sets the collection's SetID from the key. @throws Error (exists) for a key in use
    void Add(std::shared_ptr<cls_script_coll> scripts, const QString& key);
    std::int32_t Count() const { return static_cast<std::int32_t>(sets_.size()); }
    /// By position (1..Count) or key. @throws Error (not_found)
    std::shared_ptr<cls_script_coll> Item(std::int32_t position) const;
    std::shared_ptr<cls_script_coll> Item(const QString& key) const;
    void Remove(std::int32_t position);
    void Remove(const QString& key);
    void Clear();

    std::span<const std::shared_ptr<cls_script_coll>> NewEnum() const { return sets_; }
    auto begin() const { return sets_.begin(); }
    auto end() const { return sets_.end(); }

private:
    std::vector<std::shared_ptr<cls_script_coll>> sets_;
    std::unordered_map<QString, std::shared_ptr<cls_script_coll>> by_key_;
};

} // namespace scripts
