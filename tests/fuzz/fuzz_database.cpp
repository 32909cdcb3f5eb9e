// A file of any bytes opens or is refused, and everything in it can be read and changed or is
// refused. A file with faults stays as it is, one without stays without. The last bytes of the file
// are the script of the changes as well.

#include "platform/files/memory_disk.h"
#include "platform/jet/check/check.h"
#include "support/edit_script.h"

#include <cstdlib>

namespace {

void read_rows(const jet::Table& table) {
    for (const jet::Order order : {jet::Order::key, jet::Order::file}) {
        auto rows = table.rows(order);
        while (rows.next()) static_cast<void>(rows.values());
    }
}

void read_table(const jet::Table& table) {
    static_cast<void>(table.indexes());
    static_cast<void>(table.blocked());
    try {
        read_rows(table);
    } catch (const jet::Error&) { // the other tables are read all the same
    }
}

void read_everything(jet::Database& database) {
    for (const jet::Table& table : database.tables(true)) read_table(table);
    static_cast<void>(database.relations());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr auto path = "fuzz.mdb";
    constexpr std::size_t script_bytes = 200;
    const auto* first = reinterpret_cast<const std::byte*>(data);
    const files::Memory_Disk::Bytes bytes(first, first + size);
    files::Memory_Disk disk;
    disk.set_bytes(path, bytes);
    const bool sound = jet::check::check(bytes).sound();
    try {
        auto database = jet::Database::open(disk, path, jet::Mode::read_write);
        read_everything(database);
        Edit_Script script(std::span(data, size).last(std::min(size, script_bytes)));
        run_edits(database, script);
    } catch (const jet::Error&) { // refused
    }
    if (!sound && disk.bytes(path) != bytes) std::abort();
    if (sound && !jet::check::check(disk.bytes(path)).sound()) std::abort();
    return 0;
}
