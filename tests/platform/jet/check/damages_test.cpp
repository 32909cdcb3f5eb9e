#include "platform/jet/check/damages.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <charconv>
#include <set>
#include <sstream>
#include <stdexcept>

namespace jet::check {
namespace {

std::size_t number(std::string_view digits, int base) {
    std::size_t value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (result.ec != std::errc() || result.ptr != digits.data() + digits.size())
        throw std::invalid_argument("not a number: " + std::string(digits));
    return value;
}

void apply_edit(std::string_view edit, File_Bytes& file) {
    if (edit.starts_with("end")) {
        const std::size_t count = number(edit.substr(4), 10);
        file.resize(edit[3] == '+' ? file.size() + count : file.size() - count);
        return;
    }
    const std::size_t page_size = file.at(0x14) == std::byte{0} ? 2048 : 4096;
    const std::size_t colon = edit.find(':'), equals = edit.find('='), star = edit.find('*');
    std::size_t at = number(edit.substr(0, colon), 10) * page_size +
                     number(edit.substr(colon + 1, equals - colon - 1), 16);
    const std::string_view bytes = edit.substr(equals + 1, star - equals - 1);
    const std::size_t times =
        star == std::string_view::npos ? 1 : number(edit.substr(star + 1), 10);
    for (std::size_t time = 0; time < times; ++time)
        for (std::size_t i = 0; i < bytes.size(); i += 2)
            file.at(at++) = static_cast<std::byte>(number(bytes.substr(i, 2), 16));
}

Finding::Grade worst_grade(const Report& report) {
    auto worst = Finding::Grade::warning;
    for (const Finding& finding : report.findings) worst = std::min(worst, finding.grade);
    return worst;
}

std::set<What> kinds(const Report& report) {
    std::set<What> kinds;
    for (const Finding& finding : report.findings) kinds.insert(finding.what);
    return kinds;
}

TEST(Check_Damages, are_found_and_named) {
    if (sample("library_2003").empty()) GTEST_SKIP() << "no samples";
    for (const Damage& damage : damages()) {
        SCOPED_TRACE(damage.name);
        File_Bytes file = sample(damage.sample);
        const File_Bytes before = file;
        apply(damage, file);
        ASSERT_TRUE(file != before) << "the edits change nothing";
        const Report report = check(file);
        EXPECT_EQ(kinds(report), std::set<What>(damage.found.begin(), damage.found.end()))
            << listing(report);
        EXPECT_THAT(listing(report), ::testing::HasSubstr(damage.sentence));
        EXPECT_EQ(worst_grade(report), damage.grade) << listing(report);
    }
}

} // namespace

void apply(const Damage& damage, File_Bytes& file) {
    std::istringstream edits(damage.edits);
    for (std::string edit; edits >> edit;) apply_edit(edit, file);
}

} // namespace jet::check
