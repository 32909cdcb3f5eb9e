// mdb_check [-q] FILE...: says in plain words what is wrong with Access databases.

#include "checking.h"

#include <iostream>
#include <vector>

namespace {

constexpr std::string_view usage =
    "usage: mdb_check [-q] FILE...\n"
    "Says what is wrong with Access databases (Jet 3 and Jet 4). Changes nothing.\n"
    "  -q   warnings are only counted\n"
    "Exit status: 0 sound (warnings alone count as sound), 1 faults found, 2 not readable.\n";

} // namespace

int main(int count, char** arguments) {
    std::vector<std::string> paths(arguments + 1, arguments + count);
    const bool quiet = !paths.empty() && paths.front() == "-q";
    if (quiet) paths.erase(paths.begin());
    if (paths.empty() || paths.front().starts_with("-")) {
        std::cerr << usage;
        return mdb_check::unreadable;
    }
    return mdb_check::check_files(files::real_disk(), paths, quiet, std::cout);
}
