// Any bytes end in a report, and in the same one from memory and from a file.

#include "platform/files/memory_disk.h"
#include "platform/jet/check/check.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(reinterpret_cast<const std::byte*>(data), size);
    const jet::check::Report from_memory = jet::check::check(bytes);

    files::Memory_Disk disk;
    disk.set_bytes("fuzz.mdb", {bytes.begin(), bytes.end()});
    const auto file = disk.open("fuzz.mdb", files::Access::read);
    const jet::check::Report from_file = jet::check::check(*file);
    if (from_file.findings != from_memory.findings) std::abort();
    return 0;
}
