#pragma once

#include "platform/timing/virtual_time.h"
#include "store/backups.h"
#include "store/undo_library.h"

namespace copies {

inline const QDateTime noon(QDate(2026, 3, 1), QTime(12, 0, 0));

inline QString text(const std::string& utf8) { return QString::fromStdString(utf8); }

/// A run of the program: a connection that keeps copies.
struct Program {
    Program(files::Disk& disk, timing::Time& time) : backups(disk, u"user"_qs, time), db(disk) {
        db.keep_copies(&backups);
    }
    bool change(const std::string& path, int value) {
        db.Connection_Start(text(path));
        undo::Person person(db);
        return db.Connection_Active() && person.write(1, 900, value).CVID != 0;
    }
    std::string trouble() { return backups.take_trouble() ? "told" : ""; }

    store::Backups backups;
    store::clsDBConn db;
};

} // namespace copies

/// Libraries of which copies are kept.
class Copies : public On_Library {
protected:
    void put(const std::string& path = "a.mdb", const std::string& sample = "library_2000") {
        library::put(disk, sample, path);
        if (!disk.folder_exists("user")) disk.make_folder("user");
    }
    std::vector<std::string> names(const std::string& folder = "Sicherungen") {
        return disk.folder_exists(folder) ? disk.files_in(folder) : std::vector<std::string>();
    }
    /// A change in a run of its own, at some seconds after noon.
    void change_at(int seconds, int value, const std::string& path = "a.mdb") {
        time.set_date(copies::noon.addSecs(seconds));
        copies::Program run(disk, time);
        ASSERT_TRUE(run.change(path, value)) << library::trouble(run.db);
        EXPECT_EQ(run.trouble(), "");
    }

    timing::Virtual_Time time{copies::noon};
};
