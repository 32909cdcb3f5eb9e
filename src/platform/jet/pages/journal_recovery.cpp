#include "platform/jet/pages/journal_recovery.h"

#include <algorithm>

namespace jet {
namespace {

using Verdict = Journal_Finding::Verdict;

Page_Bytes read_whole(files::File& file, std::uint64_t offset, std::size_t count) {
    Page_Bytes bytes(count);
    bytes.resize(file.read_at(offset, bytes));
    return bytes;
}

class Examination {
public:
    Examination(Journal& journal, files::File& database, std::size_t page_size)
        : journal_(journal.file()), head_(journal.head()), trust_(journal.trust(database)),
          database_(database), page_size_(page_size), size_now_(database.size()) {}

    Journal_Finding result() {
        const bool known = head_.database.inode == database_.identity().inode;
        Journal_Finding finding = judged();
        // Copied together with its database, or on a medium that numbers its files anew when it is
        // attached, a journal names another file and is still needed: the pages prove it. Where
        // they leave nothing to do, it may be the one that another file is waiting for, and is
        // kept.
        const bool takes = finding.verdict == Verdict::take_back;
        const bool by_name = known && (!takes || trust_ == Journal::Trust::full);
        if (!by_name && !(takes && evidence_)) finding.verdict = Verdict::foreign; // J11
        for (const Journal_Entry& entry : table_) finding.numbers.push_back(entry.number);
        return finding;
    }

private:
    Journal_Finding judged();
    bool fits() const;
    bool read_table();
    bool table_is_sound() const;
    bool page_0_fits();
    void compare_page(const Journal_Entry& entry);
    Verdict collect_old_pages(Journal_Finding& finding);
    bool explained(const Journal_Entry& entry, const Page_Bytes& before);
    bool appended(const Journal_Entry& entry) const {
        return std::uint64_t{entry.number} * page_size_ >= head_.size_before;
    }
    Page_Bytes page_now(Page_Number number) {
        return read_whole(database_, std::uint64_t{number} * page_size_, page_size_);
    }

    files::File& journal_;
    const Journal_Head& head_;
    Journal::Trust trust_;
    files::File& database_;
    std::size_t page_size_;
    std::uint64_t size_now_;
    std::vector<Journal_Entry> table_;
    bool all_old_ = true;
    bool all_new_ = true;
    bool evidence_ = false; ///< something of the operation was found in the database
};

bool Examination::fits() const { // J14
    const bool whole = head_.size_before % page_size_ == 0 && head_.size_after % page_size_ == 0;
    return head_.page_size == page_size_ && whole && head_.size_before <= size_now_ &&
           size_now_ <= head_.size_after && head_.size_after <= largest_database &&
           head_.entries > 0 && head_.entries <= head_.size_after / page_size_;
}

bool Examination::read_table() {
    const std::uint64_t length = std::uint64_t{head_.entries} * journal_entry_size(page_size_);
    if (length > journal_.size()) return false;
    const Page_Bytes bytes = read_whole(journal_, journal_sector, length);
    if (bytes.size() != length || journal_checksum(bytes) != head_.table) return false;
    table_ = decode_table(bytes, page_size_);
    return true;
}

/// Each page once, in order, inside the file, and every appended one among them: what is cut off
/// was made by this operation. (J14)
bool Examination::table_is_sound() const {
    const auto not_ascending = [](const Journal_Entry& one, const Journal_Entry& next) {
        return one.number >= next.number;
    };
    const auto added = std::ranges::count_if(
        table_, [this](const Journal_Entry& entry) { return appended(entry); });
    return std::ranges::adjacent_find(table_, not_ascending) == table_.end() &&
           table_.back().number < head_.size_after / page_size_ &&
           static_cast<std::uint64_t>(added) == (head_.size_after - head_.size_before) / page_size_;
}

bool Examination::page_0_fits() {
    const bool changed = !table_.empty() && table_.front().number == 0;
    return changed || journal_checksum(page_now(0)) == head_.page_0;
}

void Examination::compare_page(const Journal_Entry& entry) {
    const Page_Bytes now = page_now(entry.number);
    const bool is_new = now.size() == page_size_ && sector_checksums(now) == entry.after;
    evidence_ = evidence_ || (is_new && appended(entry));
    all_new_ = all_new_ && is_new;
    all_old_ = all_old_ && (appended(entry) ? now.empty() : journal_checksum(now) == entry.before);
}

bool Examination::explained(const Journal_Entry& entry, const Page_Bytes& before) {
    const auto now = sector_checksums(page_now(entry.number));
    const auto old = sector_checksums(before);
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (now[i] == old[i]) continue;
        if (now[i] != entry.after[i]) return false;
        evidence_ = true;
    }
    return true;
}

Verdict Examination::collect_old_pages(Journal_Finding& finding) {
    bool whole = true;
    std::uint64_t offset = journal_pages_at(table_.size(), page_size_);
    for (const Journal_Entry& entry : table_) {
        if (appended(entry)) continue;
        auto before = std::make_shared<Page_Bytes>(read_whole(journal_, offset, page_size_));
        offset += page_size_;
        if (journal_checksum(*before) != entry.before)
            whole = false; // J4
        else if (!explained(entry, *before))
            return Verdict::foreign; // J6
        finding.pages[entry.number] = before;
    }
    return whole ? Verdict::take_back : Verdict::spoiled;
}

Journal_Finding Examination::judged() {
    Journal_Finding finding;
    finding.size = head_.size_before;
    finding.verdict = Verdict::foreign; // J6
    if (!fits()) return finding;
    if (!read_table()) {
        finding.verdict = Verdict::spoiled; // J4
        return finding;
    }
    if (!table_is_sound() || !page_0_fits()) return finding;
    for (const Journal_Entry& entry : table_) compare_page(entry);
    const bool may_stay = head_.state != Journal_State::take_back; // J7
    if (may_stay && (all_old_ || all_new_))                        // J3
        finding.verdict = Verdict::settled;
    else
        finding.verdict = collect_old_pages(finding);
    return finding;
}

} // namespace

Journal_Finding examine(Journal& journal, files::File& database, std::size_t page_size) {
    if (journal.state() == Journal::State::unreadable) return {Verdict::foreign, {}, 0};
    if (journal.state() == Journal::State::headless) return {Verdict::spoiled, {}, 0};
    return Examination(journal, database, page_size).result();
}

void take_back(const Journal_Finding& finding, files::File& database, std::size_t page_size) {
    for (const auto& [number, page] : finding.pages)
        database.write_at(std::uint64_t{number} * page_size, *page);
    if (database.size() > finding.size) database.resize(finding.size);
    database.sync(); // J2
}

} // namespace jet
