#pragma once

#include "store/Before_First_Write.h"
#include "store/changes.h"
#include "store/library_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <tuple>
#include <vector>

namespace store {

/// Reads under one lock, and changes that become one transaction and one change record; inner ones
/// join the outer one.
class Library_Operation : ado::Row_Watcher {
public:
    /// @param leave closes the library; called when its path names another file by now
    Library_Operation(Library_File& file, std::function<void()> leave);

    Library_File& file() { return file_; }
    void forget(); ///< the library is closed: what runs is lost

    void listen(Change_Listener& listener) { listeners_.push_back(&listener); }
    void unlisten(Change_Listener& listener) { std::erase(listeners_, &listener); }
    void tell_left(); ///< that the library is closed
    Before_First_Write* keeper = nullptr;
    [[nodiscard]] bool keep_copy(); ///< @return whether an old file may be upgraded

    [[nodiscard]] bool begin(); ///< @return false: nothing can be changed, and why is noted
    void begin_lost();          ///< an operation in which nothing is done
    [[nodiscard]] bool end(bool keep);
    void is_upkeep() { record_.upkeep = depth_ == 1; } ///< nobody asked for what it does
    /// What it has changed up to now.
    const std::vector<Row_Change>& changes() const { return record_.rows; }
    /// A set that this operation has seen, and that nobody else can delete before it ends; 0: none.
    std::int32_t set_there = 0;

    /// Runs work under one shared lock; an error ends it and is noted. @return whether it ran to
    /// its end.
    template <class Work>
    bool reading(ado::Extent extent, Work work) {
        if (!file_.active()) return false;
        try {
            const ado::Reading guard(file_.connection(), extent);
            work();
            return true;
        } catch (const ado::Error& error) {
            file_.note(error);
            // an operation must not go on with what it only believes to have read
            spoiled_ = spoiled_ || (depth_ > 0 && !is_refusal(error.kind));
        }
        leave_lost_file();
        return false;
    }

    /// Runs work as one operation. A refusal ends it and keeps what was changed before; any other
    /// error rolls everything back. @return whether it ran to its end and is kept.
    template <class Work>
    [[nodiscard]] bool changing(Work work) {
        if (!begin()) return false;
        bool done = false;
        try {
            work();
            done = true;
        } catch (const ado::Error& error) {
            file_.note(error);
            spoiled_ = spoiled_ || !is_refusal(error.kind);
        } catch (...) { // a fault of ours
            std::ignore = end(false);
            throw;
        }
        return end(true) && done;
    }
    /// The same, if a set is current.
    template <class Work>
    [[nodiscard]] bool changing_set(std::int32_t SetID, Work work) {
        if (file_.active() && SetID == 0 && file_.expect_library())
            file_.note(Failure::no_set, file_.path(), QStringLiteral("no current set"));
        return SetID != 0 && changing(work);
    }
    /// Runs work of which half would be a loss: when it is refused after its first change, the
    /// outermost operation is rolled back.
    template <class Work>
    void whole(Work work) {
        const std::size_t before = record_.rows.size();
        try {
            work();
        } catch (const ado::Error&) {
            spoiled_ = spoiled_ || record_.rows.size() > before;
            throw;
        }
    }

private:
    static bool is_refusal(Failure kind);
    void row_changed(const QString& table, const ado::Row& before, const ado::Row& after) override;
    void note_oddities(); ///< in the record
    void tell(const std::function<void(Change_Listener&)>& message);
    void leave_lost_file();

    Library_File& file_;
    std::function<void()> leave_;
    std::vector<Change_Listener*> listeners_;
    std::optional<ado::Transaction> transaction_;
    Change_Record record_;
    int depth_ = 0;
    bool spoiled_ = false;
    std::optional<bool> copy_kept_; ///< nothing: not asked for since the library was opened
};

QString table_name(const Row_Change& change);

} // namespace store
