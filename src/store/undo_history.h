#pragma once

#include "store/clsDBConn.h"
#include "store/undo_name.h"

#include <QSet>

#include <cstdint>
#include <optional>
#include <vector>

namespace store {

/// What came of going a step back or forth.
struct Undo_Result {
    enum class Outcome {
        done,
        nothing_to_do,
        changed_elsewhere, ///< refused; the history is empty now
        failed             ///< refused for now; last_trouble() of the connection says why
    };
    Outcome outcome = Outcome::nothing_to_do;
    Undo_Name name; ///< of the step; nothing to do: of none
    /// The set that the step has to do with, if it is there now; 0: none. Worth showing.
    std::int32_t set = 0;
};

/// The steps since a library was opened, each what one outermost operation of the connection has
/// changed, to be taken back and done again one by one. A step keeps the rows that it changed, as
/// they were before and after, so its memory does not depend on the size of the library.
///
/// What listing completes is no step and stays. The history ends with its library.
class Undo_History final : public Change_Listener {
public:
    /// Listens to the connection, which must outlive it.
    explicit Undo_History(clsDBConn& connection);
    Undo_History(const Undo_History&) = delete;
    Undo_History& operator=(const Undo_History&) = delete;
    ~Undo_History() override;

    /// What undo() and redo() would take; nothing when there is no step.
    std::optional<Undo_Name> undo_name() const;
    std::optional<Undo_Name> redo_name() const;
    /// Not inside an Operation. The lists, AktScripts and the current set are the caller's to bring
    /// up to date; a set that goes is no longer current.
    [[nodiscard]] Undo_Result undo();
    [[nodiscard]] Undo_Result redo();
    /// How many there have been; another number says that something was changed meanwhile.
    std::uint64_t steps_made() const { return steps_made_; }
    void clear();

    void changed(const Change_Record& record) override;
    void library_left() override { clear(); }

private:
    /// Rows in the order and direction in which the next move brings them.
    struct Step {
        Undo_Name name;
        std::vector<Row_Change> changes;
        Oddities odd;
        void turn_round();
    };
    using Steps = std::vector<Step>;

    Undo_Result move(Steps& from, Steps& to);
    std::int32_t set_of(const std::vector<Row_Change>& changes);
    void follow(const Row_Change& upkeep);
    void share_names(ado::Row& row);

    clsDBConn& connection_;
    Steps to_undo_;
    Steps to_redo_;
    std::uint64_t steps_made_ = 0;
    bool moving_ = false;
    QSet<QString> column_names_; ///< one text for all rows that have the column
};

} // namespace store
