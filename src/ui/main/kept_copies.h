#pragma once

#include "store/backups.h"

#include <memory>

namespace store {
class clsDBConn;
}

namespace ui_main {

/// The copies of libraries that this run of the program keeps.
class Kept_Copies {
public:
    Kept_Copies(files::Disk& disk, store::clsDBConn& database);
    ~Kept_Copies();
    Kept_Copies(const Kept_Copies&) = delete;
    Kept_Copies& operator=(const Kept_Copies&) = delete;

    /// Not before the folders are known. From the first time on, the database keeps its copies here.
    store::Backups& get();

private:
    files::Disk& disk_;
    store::clsDBConn& database_;
    std::unique_ptr<store::Backups> backups_;
};

} // namespace ui_main
