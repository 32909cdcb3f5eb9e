#include "platform/jet/fixture.h"

#include <gmock/gmock.h>

namespace {

using namespace fixture;
using jet::Failure;
using jet::Null;
using jet::Value;

/// Edits of the full sample library, whose relations are enforced without cascades.
class Editing : public testing::Test {
protected:
    void SetUp() override {
        if (!load(disk, CV_SETS_SAMPLES "/library_2000.mdb")) GTEST_SKIP() << "no samples";
    }
    files::Memory_Disk disk;
};

TEST_F(Editing, rows_come_change_and_go) {
    auto database = open(disk);
    const auto cvs = *database.table(u"CVs");
    const auto before = cvs.row_count();
    const auto inserted = cvs.insert({{1, 1}, {2, 0}, {3, 1}, {4, 29}, {5, 6}});
    EXPECT_EQ(cvs.row_count(), before + 1);
    EXPECT_EQ(faults(database), "");
    cvs.update(inserted.id, {{5, 255}});
    EXPECT_EQ(*cvs.row(inserted.id), (std::vector<Value>{inserted.auto_number, 1, 0, 1, 29, 255}));
    EXPECT_EQ(faults(database), "");
    cvs.erase(inserted.id);
    EXPECT_FALSE(cvs.row(inserted.id));
    EXPECT_EQ(cvs.row_count(), before);
    EXPECT_EQ(faults(database), "");
}

} // namespace
