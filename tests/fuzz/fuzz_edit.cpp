// A sound file is still sound after any changes. The input is the script of the changes.

#include "platform/files/memory_disk.h"
#include "platform/jet/check/check.h"
#include "support/edit_script.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

using jet::check::What;

constexpr auto path = "fuzz.mdb";

files::Memory_Disk::Bytes base() {
    files::Memory_Disk disk;
    {
        auto database = jet::Database::create(disk, path, 46350.5);
        make_tables_of_all_kinds(database);
    }
    return disk.bytes(path);
}

// A key that is changed by hand may come to lie above the last number given.
bool is_sound(const files::Memory_Disk::Bytes& bytes) {
    const jet::check::Report report = jet::check::check(bytes);
    return std::ranges::all_of(report.findings, [](const jet::check::Finding& finding) {
        std::fprintf(stderr, "%s\n", finding.sentence.c_str());
        return finding.what == What::autonumber;
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const files::Memory_Disk::Bytes sound = base();
    files::Memory_Disk disk;
    disk.set_bytes(path, sound);
    {
        auto database = jet::Database::open(disk, path, jet::Mode::read_write);
        Edit_Script script({data, size});
        run_edits(database, script);
    }
    if (!is_sound(disk.bytes(path))) std::abort();
    return 0;
}
