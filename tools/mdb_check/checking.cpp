#include "checking.h"

#include "platform/jet/check/check.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string_view>

namespace mdb_check {

namespace {

using jet::check::Finding;
using jet::check::Report;

const char* word(Finding::Grade grade) {
    switch (grade) {
    case Finding::Grade::fault:
        return "fault";
    case Finding::Grade::content:
        return "content";
    case Finding::Grade::warning:
        break;
    }
    return "warning";
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

/// Whether the journal beside the file holds a change that was begun and not finished. Its head and
/// its state: docs/formats/journal.md.
bool has_open_change(files::Disk& disk, const std::string& journal) {
    constexpr std::string_view mark = "CVSETJ01";
    constexpr std::size_t state_at = 504, head_bytes = 512;
    if (!disk.file_exists(journal)) return false;
    std::array<std::byte, head_bytes> head{};
    const auto file = disk.open(journal, files::Access::read);
    if (file->read_at(0, head) < head_bytes) return false;
    const bool ours = std::ranges::equal(mark, std::span(head).first(mark.size()), {}, {},
                                         [](std::byte byte) { return static_cast<char>(byte); });
    return ours && head[state_at] != std::byte{0};
}

void mention_journal(files::Disk& disk, const std::string& path, std::ostream& out) {
    const std::string journal = disk.resolve(path) + "-journal";
    if (has_open_change(disk, journal))
        out << path << ": note: a change was not finished. Opening the file in cv-sets takes it "
            << "back with the help of " << journal << "; findings may come from it.\n";
}

Status list(const Report& report, const std::string& path, bool quiet, std::ostream& out) {
    std::size_t warnings = 0;
    for (const Finding& finding : report.findings) {
        const bool warning = finding.grade == Finding::Grade::warning;
        if (warning) ++warnings;
        if (!(quiet && warning))
            out << path << ": " << word(finding.grade) << ": " << finding.sentence << "\n";
    }
    if (report.left_out > 0)
        out << path << ": " << counted(report.left_out, "further finding")
            << (report.left_out == 1 ? " is not listed.\n" : " are not listed.\n");
    const std::size_t faults = report.findings.size() - warnings;
    const Status status = !report.readable ? unreadable : faults > 0 ? faulty : sound;
    constexpr std::array verdicts{"sound", "damaged", "not readable"};
    out << path << ": " << verdicts.at(status) << " (" << counted(faults, "fault") << ", "
        << counted(warnings, "warning") << ")\n";
    return status;
}

// The lock of a reader keeps our own programs from changing the file meanwhile.
Status check_file(files::Disk& disk, const std::string& path, bool quiet, std::ostream& out) {
    constexpr std::chrono::seconds patience{3};
    const auto file = disk.open(path, files::Access::read);
    if (!file->lock(files::Lock::shared, patience)) {
        out << path << ": not readable: another program is writing to it\n";
        return unreadable;
    }
    mention_journal(disk, path, out);
    return list(jet::check::check(*file), path, quiet, out);
}

} // namespace

Status check_files(files::Disk& disk, std::span<const std::string> paths, bool quiet,
                   std::ostream& out) {
    Status status = sound;
    for (const std::string& path : paths) try {
            status = std::max(status, check_file(disk, path, quiet, out));
        } catch (const files::Error& error) {
            out << "not readable: " << error.what() << "\n";
            status = unreadable;
        }
    return status;
}

} // namespace mdb_check
