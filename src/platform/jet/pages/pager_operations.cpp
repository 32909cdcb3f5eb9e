// Beginning and ending operations: locks, what the journal says, what the cache may keep.

#include "platform/failure/sure.h"
#include "platform/jet/pages/pager_file.h"

#include <algorithm>
#include <tuple>

namespace jet {
namespace {

/// How long opening waits for the exclusive lock before it does with a shared one.
constexpr std::chrono::milliseconds opening_patience{100};

} // namespace

void File_Pager::take(files::Lock wanted) {
    if (!file_->lock(wanted, patience_))
        throw Error(Failure::locked_elsewhere, path_, "another program is using the file");
}

void File_Pager::release() noexcept {
    try {
        std::ignore = file_->lock(reading_ ? files::Lock::shared : files::Lock::none, {});
    } catch (const Error&) {
        // Closing the file drops it at the latest.
    }
}

/// The journal is made at the first look, so that whether the folder permits writing is known from
/// the start, and so that its counter lets pages outlive an operation.
void File_Pager::prepare() {
    if (file_writable_ &&
        file_->lock(files::Lock::exclusive, std::min(patience_, opening_patience))) {
        enter_writing();
        if (!report_.refusal) make_journal();
        release();
    } else {
        begin_read();
        end_read();
    }
}

void File_Pager::make_journal() {
    try {
        journal_.make(page_size_, *file_);
        salt_ = journal_.head().salt;
    } catch (const Journal_Unusable& why) {
        refuse(why);
    } catch (const Error& error) {
        // A full disk, say, may have room again when the first change comes, and is reported then.
        if (is_protection(error.kind)) report_.refusal = {Failure::read_only, error.detail};
    }
}

/// A mark proves that nothing changed; without one the cache starts anew.
std::optional<Cache_Mark> File_Pager::mark_now() {
    if (journal_.state() != Journal::State::empty) return std::nullopt;
    return Cache_Mark{journal_.head().salt, journal_.head().counter, file_->stamp()};
}

void File_Pager::notice_state() {
    const std::uint64_t size = shown_ ? shown_->size : file_->size();
    count_in_file_ = static_cast<Page_Number>(std::min(size, largest_database) / page_size_);
    page_count_ = count_in_file_;
    if ((size % page_size_ != 0 || size > largest_database) && !report_.refusal)
        report_.refusal = {Failure::damaged, "the length is no whole number of pages",
                           Blocked::damaged};
    const auto mark = mark_now();
    if (!mark || mark != cached_at_) { // J10
        cache_.clear();
        ++generation_;
    }
    cached_at_ = mark;
}

bool File_Pager::must_settle() const {
    return journal_.state() == Journal::State::hot ||
           journal_.state() == Journal::State::headless ||
           journal_.state() == Journal::State::unreadable;
}

/// Where the file has several names its change may be unfinished under another one.
void File_Pager::look_at_other_names() {
    for (const std::string& other : names_beside_) {
        journal_.turn_to(other);
        journal_.attach(false, *file_);
        if (journal_.state() == Journal::State::hot) return;
    }
    journal_.turn_to(real_path_);
    journal_.attach(false, *file_);
}

/// Whoever takes a journal away, or its content, takes with it what it knew (J4).
void File_Pager::attach_journal() {
    names_beside_.empty() ? journal_.attach(file_writable_, *file_) : look_at_other_names();
    const bool tells =
        journal_.state() == Journal::State::empty || journal_.state() == Journal::State::hot;
    if (salt_ && !(tells && salt_ == journal_.head().salt)) ++report_.doubts;
    salt_ = tells ? std::optional(journal_.head().salt) : std::nullopt;
}

void File_Pager::begin_read() {
    SURE(!reading_);
    if (!writing_) {
        take(files::Lock::shared);
        try {
            enter_reading();
        } catch (...) {
            release();
            throw;
        }
    }
    reading_ = true;
}

void File_Pager::enter_reading() {
    shown_.reset();  // J13
    look_at_names(); // J12
    if (still_named())
        attach_journal();
    else
        journal_.detach(); // the one at the path belongs to another file now
    if (const auto why = journal_.bar()) refuse(*why);
    if (must_settle() && file_writable_ && journal_.writable()) {
        // Not from shared to exclusive in one step: two copies that try would wait for each other.
        std::ignore = file_->lock(files::Lock::none, {});
        take(files::Lock::exclusive);
        enter_writing();
        std::ignore = file_->lock(files::Lock::shared, {}); // if not, the exclusive one stays
        return;
    }
    if (must_settle()) show_settled();
    notice_state();
}

void File_Pager::enter_writing() {
    shown_.reset();      // J13
    check_still_named(); // J9
    look_at_names();     // J12
    attach_journal();
    if (must_settle()) file_writable_&& journal_.writable() ? settle() : show_settled();
    notice_state();
}

void File_Pager::look_at_names() {
    const std::uint64_t names = file_->standing().names;
    if (names == names_) return;
    if (!files::has_one_name(disk_, *file_, real_path_)) {
        file_writable_ = false;
        refuse({Blocked::second_name, path_, "the file has another name (hard link)"});
        try {
            names_beside_ = files::names_beside(disk_, *file_, real_path_);
        } catch (const files::Error&) {
            // Like one in another folder: nothing can be known of it.
        }
    }
    names_ = names;
}

void File_Pager::refuse(const Journal_Unusable& why) {
    const bool told = report_.refusal && report_.refusal->blocked != Blocked::write_protected;
    if (!told) report_.refusal = {Failure::read_only, why.detail, why.blocked, why.owner};
}

/// @return whether the journal holds an operation, but may be made by anybody (J11).
bool File_Pager::note_doubted() {
    if (journal_.state() != Journal::State::hot || journal_.trust(*file_) != Journal::Trust::none)
        return false;
    refuse({Blocked::journal_doubted, path_, "the journal is not by one who may write the file",
            journal_.owner()});
    return true;
}

/// @return whether the journal is one that can be neither applied nor emptied.
bool File_Pager::note_useless(const Journal_Finding& finding) {
    const bool useless = finding.verdict == Journal_Finding::Verdict::spoiled;
    // Anybody can lay rubbish there: that says nothing of the file (J11).
    const bool rubbish = useless && journal_.trust(*file_) == Journal::Trust::none;
    const bool foreign = rubbish || finding.verdict == Journal_Finding::Verdict::foreign;
    const bool spoiled = useless && !rubbish;
    report_.foreign_journal = report_.foreign_journal || foreign;
    report_.spoiled_journal = report_.spoiled_journal || spoiled;
    if (foreign || spoiled) ++report_.doubts;
    return foreign || spoiled;
}

/// Under the exclusive lock (J5).
void File_Pager::settle() {
    if (note_doubted()) return;
    const Journal_Finding finding = examine(journal_, *file_, page_size_);
    if (note_useless(finding)) {
        set_aside(); // J4, J6
        return;
    }
    if (finding.verdict == Journal_Finding::Verdict::take_back) {
        unsure_ = true;
        take_back(finding, *file_, page_size_);
        unsure_ = false;
        report_.recovery = Pager_Report::Recovery::rolled_back;
    } else {
        sync_settled(finding); // J2: so far its pages may stand in memory only
    }
    journal_.empty();
}

/// After a failed sync the system takes the pages for written; only written again they get there.
void File_Pager::sync_settled(const Journal_Finding& finding) {
    for (auto number = finding.numbers.begin(); unsure_ && number != finding.numbers.end();
         ++number) {
        Page_Bytes page(page_size_);
        const std::uint64_t offset = std::uint64_t{*number} * page_size_;
        page.resize(file_->read_at(offset, page));
        file_->write_at(offset, page);
    }
    unsure_ = true;
    file_->sync();
    unsure_ = false;
}

void File_Pager::set_aside() {
    try {
        report_.set_aside = journal_.set_aside();
    } catch (const Error& error) {
        const bool too_long = error.kind == Failure::name_too_long;
        if (!is_protection(error.kind) && !too_long) throw;
        refuse({too_long ? Blocked::journal_name : Blocked::journal_barred, path_, error.detail,
                journal_.owner()});
    }
}

/// Where nothing may be written, the old pages are laid over those in the file.
void File_Pager::show_settled() {
    if (note_doubted()) return;
    Journal_Finding finding = examine(journal_, *file_, page_size_);
    if (note_useless(finding) || finding.verdict == Journal_Finding::Verdict::settled) return;
    report_.recovery = Pager_Report::Recovery::shown_only;
    shown_ = std::move(finding);
}

void File_Pager::end_read() noexcept {
    SURE(reading_);
    reading_ = false;
    if (!writing_) release();
}

void File_Pager::check_still_named() {
    if (still_named()) return;
    report_.refusal = {Failure::replaced, "the path names another file now", Blocked::replaced};
    throw Error(Failure::replaced, path_, report_.refusal->detail);
}

void File_Pager::check_may_write() const {
    if (report_.refusal) throw Error(report_.refusal->kind, path_, report_.refusal->detail);
}

void File_Pager::begin_write() {
    SURE(!writing_);
    check_may_write();
    take(files::Lock::exclusive);
    try {
        enter_writing();
        check_may_write();
        journal_.make(page_size_, *file_); // J8
        salt_ = journal_.head().salt;
    } catch (const Journal_Unusable& why) {
        release();
        refuse(why);
        check_may_write();
    } catch (...) {
        release();
        throw;
    }
    writing_ = true;
}

} // namespace jet
