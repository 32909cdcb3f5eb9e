#pragma once

#include "platform/files/memory_disk.h"
#include "platform/jet/database.h"
#include "store/clsDBConn.h"

#include <QJsonArray>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

/// A library on a disk in memory, and what a list of it shows.
namespace library {

using Shown = std::vector<std::pair<std::string, int>>;

class Shown_List : public store::List_Filler {
public:
    void clear() override { entries.clear(); }
    void add(const QString& text, std::int32_t item_data) override {
        entries.emplace_back(text.toStdString(), item_data);
    }
    std::vector<std::string> texts() const;
    Shown entries;
};

/// The libraries among the samples; empty where the folder is absent.
std::vector<std::string> names();
/// Rows of a table as an independent reader found them, by column name, in table order.
std::vector<QJsonObject> expected_rows(const std::string& sample, const QString& table);
/// Puts a copy of a sample there.
void put(files::Memory_Disk& disk, const std::string& sample, const std::string& path);

Shown sets(store::clsDBConn& connection, std::int16_t res_cv);
Shown cvs(store::clsDBConn& connection, std::int32_t set_id);
store::CVRec cv(int number, int value, int hi = 0, int lo = 1);
bool write(store::clsDBConn& connection, store::CVRec rec);
int value(store::clsDBConn& connection, int number); ///< of the current set; -1: is not there
std::string trouble(store::clsDBConn& connection);   ///< what was noted, in words; takes it

/// What the checker finds wrong with a file, beyond untidiness.
std::vector<std::string> faults(const files::Memory_Disk& disk, const std::string& path);

/// Columns and indexes as other programs make them.
jet::Column whole(const char16_t* name, bool key = false);
jet::Column text(const char16_t* name, std::size_t length = 40);
jet::Index key_on(const char16_t* column);
jet::Index unique_on(const std::vector<const char16_t*>& columns);

} // namespace library

/// Opens samples on a disk of its own; skips the test where there are none.
class On_Library : public testing::Test {
protected:
    void SetUp() override;
    void open(const std::string& sample, bool write_protected = false);
    void reopen();
    /// What another program does to the file.
    void in_file(const std::function<void(jet::Database&)>& act);

    files::Memory_Disk disk;
    store::clsDBConn db{disk};
};
