#include "platform/jet/check/mutation.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>
#include <new>

namespace {

// Counted for the whole program, so that a test can tell how much memory a call took at most.
std::size_t memory_now = 0, memory_peak = 0;
constexpr std::size_t head = alignof(std::max_align_t);

} // namespace

void* operator new(std::size_t size) {
    auto* block = static_cast<std::byte*>(std::malloc(size + head));
    if (block == nullptr) throw std::bad_alloc();
    *reinterpret_cast<std::size_t*>(block) = size;
    memory_now += size;
    memory_peak = std::max(memory_peak, memory_now);
    return block + head;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return operator new(size); }

void operator delete(void* at) noexcept {
    if (at == nullptr) return;
    auto* block = static_cast<std::byte*>(at) - head;
    memory_now -= *reinterpret_cast<std::size_t*>(block);
    std::free(block);
}

void operator delete(void* at, std::size_t) noexcept { operator delete(at); }

namespace jet::check {
namespace {

double seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

struct Subject {
    const char* name;
    int runs; ///< by default; forty times as many with LONG_TESTS
};

class Check_Fuzz : public ::testing::TestWithParam<Subject> {};

// Any bytes end in a report: no crash, no endless walk, no memory beyond the size of the file.
TEST_P(Check_Fuzz, any_bytes_end_in_a_report) {
    const File_Bytes original = sample(GetParam().name);
    if (original.empty()) GTEST_SKIP() << "no samples";
    const double before = seconds();
    ASSERT_TRUE(check(original).sound());
    const double patience = 0.5 + 20 * (seconds() - before);
    const int runs = GetParam().runs * (std::getenv("LONG_TESTS") != nullptr ? 40 : 1);
    int faulty = 0;
    for (int seed = 0; seed < runs; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(static_cast<Random::result_type>(seed));
        File_Bytes file = original;
        mutate(random, file);
        const std::size_t memory = memory_now;
        memory_peak = memory_now;
        const double start = seconds();
        const Report report = check(file);
        ASSERT_LT(seconds() - start, patience);
        ASSERT_LT(memory_peak - memory, 4U << 20);
        if (!report.sound()) ++faulty;
    }
    EXPECT_GT(faulty, runs / 4) << "the changes hit nothing";
}

INSTANTIATE_TEST_SUITE_P(samples, Check_Fuzz,
                         ::testing::Values(Subject{"adox_jet4", 1200}, Subject{"testV1997", 600},
                                           Subject{"old_library", 300},
                                           Subject{"overflowTestV2000", 300},
                                           Subject{"indexTestV2000", 150},
                                           Subject{"library_2003", 60},
                                           Subject{"worn_library", 20}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(Check_Fuzz, no_file_at_all) {
    for (std::size_t size : {0U, 1U, 20U, 24U, 160U, 2048U, 4096U, 12288U}) {
        const Report report = check(File_Bytes(size));
        EXPECT_FALSE(report.readable) << size;
        EXPECT_EQ(report.findings.size(), 1U) << size;
    }
}

} // namespace
} // namespace jet::check
