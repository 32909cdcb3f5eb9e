#include "platform/jet/engine.h"

#include "platform/failure/sure.h"
#include "platform/jet/catalogue/definition_chain.h"
#include "platform/jet/catalogue/file_end.h"
#include "platform/jet/check/check.h"
#include "platform/jet/format/text.h"

#include <algorithm>
#include <ctime>

namespace jet {
namespace {

std::string first_fault(const check::Report& report) {
    for (const auto& finding : report.findings)
        if (finding.grade == check::Finding::Grade::fault) return finding.sentence;
    return "the file cannot be read as a whole";
}

constexpr double days_from_1899_to_1970 = 25569;
constexpr double seconds_of_a_day = 86400;

} // namespace

Engine::Engine(files::Disk& disk, std::string path, std::unique_ptr<Pager> pager, bool fresh)
    : disk_(disk), path_(std::move(path)), pager_(std::move(pager)), checked_(fresh),
      doubts_(pager_->report().doubts) {
    const Reading reading(*this);
    header_ = read_header(*pager_);
    check_tables();
    check_after_spoiled_journal();
}

Engine::~Engine() {
    while (writing()) rollback();
}

Status Engine::status() const {
    const auto report = pager_->report();
    Status status;
    status.jet3 = layout().jet3;
    status.recovered = report.recovery != Pager_Report::Recovery::none;
    status.set_aside = report.set_aside;
    status.journal_spoiled = report.spoiled_journal;
    status.lost_end = lost_end_;
    if (blocked_ != Blocked::no) {
        status.blocked = blocked_;
        status.detail = blocked_detail_;
    } else if (report.refusal) {
        status.blocked = report.refusal->blocked;
        status.detail = report.refusal->detail;
        status.journal_owner = report.refusal->owner;
    }
    return status;
}

/// The definitions of all user tables are read once: one that is broken makes the file read-only,
/// the other tables are shown all the same. So does an end of the file that is missing: what is
/// there looks like a whole file with fewer rows.
void Engine::check_tables() {
    const auto& all = objects();
    arrived_ = pager_->page_count();
    Pages_Claim claim;
    bool filled = false; // the last page in use was never written, which alone is no proof
    const auto look = [&](auto at) {
        try {
            at();
            return true;
        } catch (const Error& error) {
            if (error.kind != Failure::damaged) throw;
            note_damage(error);
            if (filled) note_end(claim.pages);
            return false;
        }
    };
    const auto look_at_end = [&](const Definition& definition) {
        const std::uint64_t needed = pages_needed(*pager_, definition);
        note_end(needed);
        check_last_pages(*pager_, definition);
        return needed;
    };
    look([&] { claim = pages_in_use(*pager_); });
    const bool ends_early = claim.pages > arrived_;
    if (claim.sure && ends_early) note_end(claim.pages);
    filled = !ends_early && pages_before_filling(*pager_, claim.pages) < claim.pages;
    const bool doubtful = filled || (!claim.sure && ends_early);
    look([&] { look_at_end(*objects_definition_); });
    for (const auto& object : all) {
        if (!object.table() || (object.system() && !doubtful)) continue;
        std::uint64_t needed = std::uint64_t{object.page()} + 1;
        const bool readable = look([&] {
            note_end(needed);
            needed = look_at_end(*table(object.page()).definition);
        });
        if (lost_end_ && !object.system() && (!readable || needed > arrived_))
            lost_end_->tables.push_back(object.name);
    }
}

/// @param pages that the file must have
void Engine::note_end(std::uint64_t pages) {
    if (pages <= arrived_) {
        if (pages_before_filling(*pager_, pages) == pages) return;
        // one spoiled page with good ones behind it is damage, not an end
        const std::uint64_t before = pages_before_filling(*pager_, pager_->page_count());
        if (before >= pages) return;
        arrived_ = before;
    }
    if (!lost_end_) lost_end_.emplace();
    lost_end_->whole = std::max(lost_end_->whole, pages * pager_->page_size());
    lost_end_->bytes = lost_end_->whole - arrived_ * pager_->page_size();
    blocked_ = Blocked::cut_off;
    blocked_detail_ = "the file ends after " + std::to_string(arrived_) + " of at least " +
                      std::to_string(lost_end_->whole / pager_->page_size()) + " pages";
}

void Engine::note_damage(const Error& error) noexcept {
    if (blocked_ != Blocked::no) return;
    blocked_ = Blocked::damaged;
    blocked_detail_ = error.what();
}

void Engine::begin_read() {
    const bool outermost = read_depth_ + write_depth_ == 0;
    if (read_depth_ == 0) pager_->begin_read();
    ++read_depth_;
    if (outermost) refresh();
}

void Engine::end_read() noexcept {
    SURE(read_depth_ > 0);
    if (--read_depth_ == 0) pager_->end_read();
}

void Engine::refresh() {
    if (pager_->generation() == generation_) return;
    generation_ = pager_->generation();
    ++changes_;
    ++foreign_changes_;
    forget();
}

void Engine::ensure_writable() const {
    const auto now = status();
    if (now.blocked != Blocked::no) throw Error(Failure::read_only, path_, now.detail);
}

/// A change may be half written, so it is not left to the first write to find that out.
void Engine::check_after_spoiled_journal() {
    if (!pager_->report().spoiled_journal) return;
    try {
        check_once();
    } catch (const Error&) {
        // Damage is noted, and a medium that fails will say so again.
    }
}

/// Another copy may have died and somebody else have cleared up what its journal knew: the file is
/// looked at as if it had just been opened.
void Engine::look_again() {
    const int doubts = pager_->report().doubts;
    if (doubts == doubts_) return;
    doubts_ = doubts;
    checked_ = false;
    check_tables();
    ensure_writable();
}

/// Runs under a lock, so nobody changes the file meanwhile.
void Engine::check_once() {
    if (checked_) return;
    const auto report = check();
    if (!report.readable || !report.sound()) {
        const Error error(Failure::damaged, path_, first_fault(report));
        note_damage(error);
        throw error;
    }
    checked_ = true;
}

void Engine::begin_write() {
    if (write_depth_ > 0) {
        if (unfit_) throw *unfit_;
        ++write_depth_;
        return;
    }
    ensure_writable();
    pager_->begin_write();
    try {
        if (read_depth_ == 0) refresh();
        look_again();
        check_once();
    } catch (...) {
        pager_->rollback();
        throw;
    }
    ++changes_;
    write_depth_ = 1;
}

void Engine::commit() {
    SURE(write_depth_ > 0);
    if (write_depth_ > 1) {
        --write_depth_;
        return;
    }
    if (const auto reason = unfit_) {
        rollback();
        throw *reason;
    }
    write_depth_ = 0;
    try {
        pager_->commit();
    } catch (...) {
        ++changes_;
        ++foreign_changes_; // it may have come half as far
        forget();
        throw;
    }
    generation_ = pager_->generation();
}

void Engine::rollback() noexcept {
    SURE(write_depth_ > 0);
    if (--write_depth_ > 0) return;
    pager_->rollback();
    unfit_.reset();
    ++changes_;
    forget();
}

void Engine::fail(const Error& error) noexcept {
    unfit_ = error;
    if (error.kind == Failure::damaged) note_damage(error);
}

void Engine::forget() {
    objects_known_ = false;
    latest_ = nullptr;
    for (auto& [id, state] : tables_) state.definition.reset();
    hints_.clear();
    numbered_.clear();
}

const std::vector<Object>& Engine::objects() {
    if (objects_known_) return objects_;
    const Reading reading(*this);
    if (!objects_known_) load_objects();
    return objects_;
}

void Engine::load_objects() {
    objects_definition_ =
        std::make_shared<const Definition>(read_definition(*pager_, layout(), objects_page));
    objects_ = read_objects(*pager_, *objects_definition_);
    std::erase_if(tables_, [&](const auto& entry) {
        return std::none_of(objects_.begin(), objects_.end(), [&](const Object& object) {
            return object.table() && object.page() == entry.first;
        });
    });
    for (const auto& object : objects_)
        if (object.table()) tables_[object.page()].object = object;
    objects_known_ = true;
}

const Object* Engine::object(std::u16string_view name, std::int32_t parent) {
    for (const auto& object : objects())
        if (object.parent == parent && same_name(object.name, name)) return &object;
    return nullptr;
}

const Table_State& Engine::look_up_table(Page_Number id) {
    const Reading reading(*this);
    objects();
    const auto found = tables_.find(id);
    if (found == tables_.end())
        throw Error(Failure::not_found, path_, "the table is no longer there");
    if (!found->second.definition) load(found->second);
    latest_ = &found->second;
    return *latest_;
}

const Table_State& Engine::system_table(std::u16string_view name) {
    const auto* found = object(name, object_ids::tables);
    if (found == nullptr || !found->table())
        throw damaged(objects_page, "the catalogue lacks " + to_utf8(name));
    return table(found->page());
}

void Engine::load(Table_State& state) {
    auto definition = read_definition(*pager_, layout(), state.object.page());
    const auto properties = read_properties(*pager_, *objects_definition_, state.object.row);
    state.columns = described_columns(definition, properties);
    state.indexes = described_indexes(definition);
    state.shapes.clear();
    for (const auto& real : definition.reals) state.shapes.push_back(key_shape(definition, real));
    state.computable = std::all_of(state.shapes.begin(), state.shapes.end(),
                                   [](const Key_Shape& shape) { return can_compute(shape); });
    state.definition = std::make_shared<const Definition>(std::move(definition));
}

std::vector<Relation> Engine::relations() {
    const Reading reading(*this);
    if (object(u"MSysRelationships", object_ids::tables) == nullptr) return {};
    return read_relations(*pager_, *system_table(u"MSysRelationships").definition);
}

std::uint64_t Engine::foreign_changes() {
    const Reading reading(*this);
    return foreign_changes_;
}

check::Report Engine::check() {
    const Reading reading(*this);
    try {
        return check::check(*disk_.open(path_, files::Access::read));
    } catch (const Error& error) { // whatever keeps it from being opened once more
        throw Error(Failure::device, error.subject, error.what());
    }
}

double Engine::clock() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return days_from_1899_to_1970 + static_cast<double>(now + local.tm_gmtoff) / seconds_of_a_day;
}

} // namespace jet
