#pragma once

#include "platform/jet/catalogue/catalogue.h"
#include "platform/jet/database.h"
#include "platform/jet/pages/header.h"
#include "platform/jet/rows/row_heap.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace jet {

/// A table as far as it is known; taken apart when it is first needed.
struct Table_State {
    Object object;
    std::shared_ptr<const Definition> definition; ///< nothing: not read yet
    std::vector<Column> columns;
    std::vector<Index> indexes;
    std::vector<Key_Shape> shapes; ///< one per real index
    bool computable = true;        ///< we know the keys of all its indexes
};

/// What stands behind Database: the pager, what is known of catalogue and tables, and the state of
/// reading and writing. What is known is forgotten when another copy has changed the file.
class Engine {
public:
    Engine(files::Disk& disk, std::string path, std::unique_ptr<Pager> pager, bool fresh);
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    ~Engine();

    Pager& pager() { return *pager_; }
    const Layout& layout() const { return *header_.layout; }
    const std::string& path() const { return path_; }
    Status status() const;

    /// Reading and writing nest; only the outermost acts on the file.
    void begin_read();
    void end_read() noexcept;
    void begin_write();
    /// Throws when a failure has left the transaction unfit; it is rolled back then.
    void commit();
    void rollback() noexcept;
    bool writing() const { return write_depth_ > 0; }

    /// Runs a change in a transaction of its own, or in the open one. What `plan` refuses leaves
    /// everything as it was; when `apply` fails, the transaction can only be rolled back.
    template <typename Plan, typename Apply>
    void change(Plan plan, Apply apply) {
        begin_write();
        try {
            plan();
        } catch (const Error& error) {
            if (error.kind == Failure::damaged) fail(error);
            rollback();
            throw;
        } catch (...) {
            rollback();
            throw;
        }
        try {
            apply();
        } catch (const Error& error) {
            fail(error);
            rollback();
            throw;
        } catch (const std::exception& error) {
            fail(Error(Failure::device, path_, error.what()));
            rollback();
            throw;
        }
        commit();
    }
    /// Nothing is written any more in this run.
    void note_damage(const Error& error) noexcept;
    /// Runs something that reads; damage that it meets makes the file read-only for the run.
    template <typename Look>
    auto watch(Look look) {
        try {
            return look();
        } catch (const Error& error) {
            if (error.kind == Failure::damaged) note_damage(error);
            throw;
        }
    }

    const std::vector<Object>& objects();
    const Object* object(std::u16string_view name, std::int32_t parent);
    /// Throws not_found when there is no such table (any more), damaged.
    const Table_State& table(Page_Number id) {
        // Nobody else can change anything meanwhile, and who reads asks for every cell.
        const bool locked = read_depth_ + write_depth_ > 0;
        const bool is_latest = latest_ != nullptr && latest_->object.page() == id;
        return locked && is_latest ? *latest_ : look_up_table(id);
    }
    const Table_State& system_table(std::u16string_view name);
    std::vector<Relation> relations();

    /// What was known of tables and catalogue no longer holds.
    void forget();

    /// Told of every change; nullptr: nobody.
    Change_Watcher* watcher = nullptr;

    Heap_Hints& hints() { return hints_; }
    /// Up to where the autonumbers behind the counter are known to be free: a row has got its
    /// number since something may have been changed elsewhere. Nothing: not known.
    std::optional<std::int32_t> free_numbers(Page_Number table) const {
        const auto found = numbered_.find(table);
        return found == numbered_.end() ? std::nullopt : std::optional(found->second);
    }
    void note_free_numbers(Page_Number table, std::int32_t last) { numbered_[table] = last; }

    std::uint64_t changes() const { return changes_; }
    std::uint64_t foreign_changes();
    check::Report check();

    /// The date for rows of the catalogue: the clock's, or the one that create() was given.
    double now() const { return date_.value_or(clock()); }
    static double clock();
    void set_date(std::optional<double> days) { date_ = days; }

private:
    void refresh();
    void check_tables();
    void note_end(std::uint64_t pages);
    void ensure_writable() const;
    void look_again();
    void check_once();
    void check_after_spoiled_journal();
    void fail(const Error& error) noexcept;
    void load_objects();
    const Table_State& look_up_table(Page_Number id);
    void load(Table_State& state);

    files::Disk& disk_;
    std::string path_;
    std::unique_ptr<Pager> pager_;
    Header header_;
    bool checked_; ///< the file was made by us or has passed check()
    int doubts_;   ///< see Pager_Report
    Blocked blocked_ = Blocked::no;
    std::string blocked_detail_;
    std::optional<Lost_End> lost_end_;
    std::uint64_t arrived_ = 0; ///< pages at opening, without a filling at the end
    int read_depth_ = 0;
    int write_depth_ = 0;
    std::optional<Error> unfit_; ///< why the open transaction can only be rolled back
    std::uint64_t changes_ = 0;
    std::uint64_t foreign_changes_ = 0;
    std::uint64_t generation_ = 0;
    bool objects_known_ = false;
    std::shared_ptr<const Definition> objects_definition_;
    std::vector<Object> objects_;
    std::map<Page_Number, Table_State> tables_;
    const Table_State* latest_ = nullptr; ///< that was asked for last, as long as it holds
    Heap_Hints hints_;
    std::map<Page_Number, std::int32_t> numbered_;
    std::optional<double> date_;
};

/// begin_read and end_read as one.
class Reading {
public:
    [[nodiscard]] explicit Reading(Engine& engine) : engine_(&engine) { engine.begin_read(); }
    Reading(Reading&& other) noexcept : engine_(std::exchange(other.engine_, nullptr)) {}
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    Reading& operator=(Reading&&) = delete;
    ~Reading() {
        if (engine_ != nullptr) engine_->end_read();
    }

private:
    Engine* engine_;
};

} // namespace jet
