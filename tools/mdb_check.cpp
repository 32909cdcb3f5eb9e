// mdb_check FILE...: says in plain words what is wrong with Access databases. Changes nothing.
// Exit status: 0 all sound (warnings alone count as sound), 1 faults were found, 2 a file could not
// be read or is no database of a kind that this program knows.

#include "platform/jet/check/check.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

namespace {

using jet::check::Finding;

enum Status : int { sound = 0, faulty = 1, unreadable = 2 };

constexpr const char* usage =
    "usage: mdb_check [-q] FILE...\n"
    "Says what is wrong with Access databases (Jet 3 and Jet 4). Changes nothing.\n"
    "  -q   warnings are only counted\n"
    "Exit status: 0 sound, 1 faults found, 2 not readable.\n";

const char* word(Finding::Grade grade) {
    switch (grade) {
    case Finding::Grade::fault: return "fault";
    case Finding::Grade::content: return "content";
    case Finding::Grade::warning: break;
    }
    return "warning";
}

// A journal beside the file means that a change was not finished; the next opening takes it back.
void mention_journal(const std::string& path) {
    const std::string journal = path + "-journal";
    if (files::real_disk().file_exists(journal))
        std::printf("%s: note: the journal %s lies beside the file.\n", path.c_str(),
                    journal.c_str());
}

Status check_file(const std::string& path, bool quiet) {
    const auto file = files::real_disk().open(path, files::Access::read);
    mention_journal(path);
    const jet::check::Report report = jet::check::check(*file);
    std::size_t warnings = 0;
    for (const Finding& finding : report.findings) {
        const bool warning = finding.grade == Finding::Grade::warning;
        if (warning) ++warnings;
        if (!(quiet && warning))
            std::printf("%s: %s: %s\n", path.c_str(), word(finding.grade),
                        finding.sentence.c_str());
    }
    const std::size_t others = report.findings.size() - warnings;
    if (report.left_out > 0)
        std::printf("%s: %zu further findings are not listed.\n", path.c_str(), report.left_out);
    std::printf("%s: %s (%zu faults, %zu warnings)\n", path.c_str(),
                !report.readable ? "not readable" : others > 0 ? "damaged" : "sound", others,
                warnings);
    if (!report.readable) return unreadable;
    return others > 0 ? faulty : sound;
}

Status check_or_complain(const std::string& path, bool quiet) {
    try {
        return check_file(path, quiet);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "mdb_check: %s\n", error.what());
        return unreadable;
    }
}

} // namespace

int main(int count, char** arguments) {
    int first = 1;
    const bool quiet = count > 1 && std::string_view(arguments[1]) == "-q";
    if (quiet) ++first;
    if (first >= count || arguments[first][0] == '-') {
        std::fputs(usage, stderr);
        return unreadable;
    }
    int status = sound;
    for (int i = first; i < count; ++i)
        status = std::max<int>(status, check_or_complain(arguments[i], quiet));
    return status;
}
