#include "platform/jet/check/samples.h"

#include <gmock/gmock.h>

namespace jet::check {
namespace {

std::vector<std::filesystem::path> sample_files() {
    std::vector<std::filesystem::path> files;
    std::error_code absent;
    for (const auto& entry : std::filesystem::directory_iterator(CV_SETS_SAMPLES, absent))
        if (entry.path().extension() == ".mdb") files.push_back(entry.path());
    return files;
}

// Files by Access, by other engines and by long use: none has a fault, nor anything to warn of.
TEST(Check_Samples, are_found_sound) {
    const auto files = sample_files();
    if (files.empty()) GTEST_SKIP() << "no samples";
    EXPECT_GE(files.size(), 13U);
    for (const auto& path : files) {
        SCOPED_TRACE(path.string());
        const File_Bytes bytes = sample(path.stem().string());
        const Report report = check(bytes);
        EXPECT_TRUE(report.readable);
        EXPECT_EQ(listing(report), "");
    }
}

TEST(Check_Samples, are_the_same_on_disk_and_in_memory) {
    File_Bytes bytes = sample("worn_library");
    if (bytes.empty()) GTEST_SKIP() << "no samples";
    for (std::size_t at = 0x3000; at < bytes.size(); at += 0x15001) bytes[at] ^= std::byte{0x55};
    const auto path =
        std::filesystem::temp_directory_path() /
        ("check_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
         std::to_string(reinterpret_cast<std::uintptr_t>(&bytes)) + ".mdb");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    const auto file = files::real_disk().open(path.string(), files::Access::read);
    const Report from_disk = check(*file);
    std::filesystem::remove(path);
    const Report from_memory = check(bytes);
    EXPECT_FALSE(from_memory.sound());
    EXPECT_EQ(from_disk.findings, from_memory.findings);
}

} // namespace
} // namespace jet::check
