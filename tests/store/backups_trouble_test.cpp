// Copies while the disk fails or the power goes.

#include "store/backups_library.h"
#include "support/crash_sweep.h"

#include <algorithm>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using copies::noon;
using copies::Program;
using copies::text;
using undo::Content;
using undo::content;

namespace {

/// Contents of all copies.
std::vector<Content> kept(files::Disk& disk) {
    std::vector<Content> found;
    for (const Backup& copy : Backups(disk, u"user"_s).copies_of(u"a.mdb"_s))
        found.push_back(content(disk, copy.path.toStdString()));
    return found;
}

/// Refused calls and losses of power: no state of the library is ever lost.
class Copies_In_Trouble : public Copies {
protected:
    void prepare() {
        put("a.mdb", "old_library");
        change_at(0, 1);
        before = content(disk);
    }
    /// Opens, so that what was cut off is taken back.
    static Content left(files::Disk& found) {
        clsDBConn opened(found);
        opened.Connection_Start(u"a.mdb"_s);
        EXPECT_TRUE(opened.Connection_Active());
        return content(found);
    }
    Content before;
};

TEST_F(Copies_In_Trouble, no_change_without_a_copy_unless_that_was_told) {
    prepare();
    bool told = false;
    const auto work = [&](files::Disk& on) {
        Program run(on, time);
        run.db.Connection_Start(u"a.mdb"_s);
        run.db.AktCVSetID(1);
        CVRec rec{0, 1, 901, 7, 0, false};
        const bool stored = run.db.DB_Write_CV(rec);
        told = run.trouble() == "told";
        if (!stored) throw std::runtime_error("not stored");
    };
    time.set_date(noon.addSecs(60));
    const auto check = [&](files::Disk& found, support::Outcome outcome) {
        const Content now_there = left(found);
        const auto copies = kept(found);
        const bool changed = !(now_there == before);
        if (outcome == support::Outcome::finished) {
            EXPECT_TRUE(changed);
        }
        if (changed && !told) {
            EXPECT_GE(std::count(copies.begin(), copies.end(), before), 1);
        }
    };
    EXPECT_GT(support::sweep_refusals(disk, work, check), 50);
    told = false;
    if (support::long_tests()) {
        EXPECT_GT(support::sweep_crashes(disk, work, check), 50);
    }
}

TEST_F(Copies_In_Trouble, bringing_one_back_happens_whole_or_not_at_all) {
    prepare();
    const std::string copy = "Sicherungen/a 2026-03-01 12-00-00.mdb";
    const Content old = content(disk, copy);
    time.set_date(noon.addSecs(60));
    const auto work = [&](files::Disk& on) {
        Backups backups(on, u"user"_s, time);
        if (!backups.restore(text(copy), u"a.mdb"_s)) throw std::runtime_error("not restored");
    };
    const auto check = [&](files::Disk& found, support::Outcome outcome) {
        const Content now_there = content(found);
        EXPECT_TRUE(now_there == old ||
                    (outcome != support::Outcome::finished && now_there == before));
        const auto copies = kept(found);
        EXPECT_GE(std::count(copies.begin(), copies.end(), old), 1);
        if (now_there == old) {
            EXPECT_GE(std::count(copies.begin(), copies.end(), before), 1);
        }
    };
    EXPECT_GT(support::sweep_crashes(disk, work, check), 50);
    if (support::long_tests()) {
        EXPECT_GT(support::sweep_refusals(disk, work, check), 50);
    }
}

} // namespace
