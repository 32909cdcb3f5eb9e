#pragma once

#include "platform/files/memory_disk.h"
#include "platform/jet/check/check.h"
#include "platform/jet/database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What several tests of the engine need: databases on a disk in memory, and the judge.
namespace fixture {

inline constexpr const char* path = "/library.mdb";

/// Puts a file of the real disk on the disk in memory. @return false when it is absent.
bool load(files::Memory_Disk& disk, const std::string& from);

/// What the checker says is wrong, one sentence a line; warnings only if asked for.
std::string faults(jet::Database& database, bool warnings = false);

inline jet::Database open(files::Disk& disk, jet::Mode mode = jet::Mode::read_write) {
    return jet::Database::open(disk, path, mode);
}

/// The kind of the jet::Error that `action` throws; nothing when it throws none.
template <typename Action>
std::optional<jet::Failure> failure_of(Action action) {
    try {
        action();
        return std::nullopt;
    } catch (const jet::Error& error) {
        return error.kind;
    }
}

/// All rows of all user tables, for comparing states.
using Content = std::map<std::u16string, std::vector<std::vector<jet::Value>>>;
Content content(jet::Database& database);

/// Columns and indexes in one line.
jet::Column column(std::u16string name, jet::Column_Type type = jet::Column_Type::long_integer,
                   std::size_t length = 0);
jet::Index primary_key(std::u16string column_name);

/// Hears of every changed row, and finds it as it was told.
class Told final : public jet::Change_Watcher {
public:
    explicit Told(jet::Database& database) : database_(database) { database_.watch(this); }
    ~Told() override { database_.watch(nullptr); }
    void row_changed(std::uint32_t table, jet::Row_Place row, const std::vector<jet::Value>& before,
                     const std::vector<jet::Value>& after) override {
        if (!after.empty()) {
            const auto found = database_.table(table).row(row);
            EXPECT_TRUE(found && std::ranges::equal(*found, after, jet::same_value));
        }
        firsts.push_back((after.empty() ? before : after)[0]);
    }
    std::vector<jet::Value> firsts; ///< values of the rows

private:
    jet::Database& database_;
};

/// Tables of our own on an empty file.
class Own_Table : public testing::Test {
protected:
    jet::Table make(std::vector<jet::Column> columns, std::vector<jet::Index> indexes = {}) {
        auto id = column(u"id");
        id.auto_number = true;
        columns.insert(columns.begin(), id);
        indexes.insert(indexes.begin(), primary_key(u"id"));
        return database.create_table(u"T", columns, indexes);
    }
    /// How many rows were told while `action` ran.
    template <typename Action>
    std::size_t changed(Action action) {
        told.firsts.clear();
        action();
        return told.firsts.size();
    }
    files::Memory_Disk disk;
    jet::Database database = jet::Database::create(disk, path);
    Told told{database};
};

} // namespace fixture
