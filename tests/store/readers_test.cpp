// What we have edited, as other readers of the format see it.

#include "scripts/cls_script_coll.h"
#include "store/library.h"
#include "support/temporary_folder.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

using namespace store;
using namespace Qt::Literals::StringLiterals;

namespace {

class Other_Readers : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (library::names().empty()) GTEST_SKIP() << "no samples";
        if (QStandardPaths::findExecutable(u"mdb-export"_s).isEmpty())
            GTEST_SKIP() << "mdbtools are not installed";
        file = QString::fromStdString(folder / "a.mdb");
        QFile::copy(
            QString::fromStdString(std::string(CV_SETS_SAMPLES) + "/" + GetParam() + ".mdb"), file);
        QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }

    /// Rows of a table as mdb-export prints them, its columns in the order asked for.
    QStringList printed(const QString& table) const {
        QProcess process;
        process.start(u"mdb-export"_s,
                      {u"-H"_s, u"-Q"_s, u"-d"_s, u"|"_s, u"-R"_s, u"~\n"_s, file, table});
        EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0)
            << process.readAllStandardError().toStdString();
        QStringList rows = QString::fromUtf8(process.readAllStandardOutput()).split(u"~\n"_s);
        rows.removeLast();
        rows.sort();
        return rows;
    }

    support::Temporary_Folder folder;
    QString file;
};

TEST_P(Other_Readers, see_what_was_edited) {
    clsDBConn db;
    db.Connection_Start(file);
    ASSERT_TRUE(db.Connection_Active()) << library::trouble(db);
    std::int16_t number = 0;
    QStringList expected_cvs;
    {
        Operation all(db);
        const auto shown = library::sets(db, 8);
        ASSERT_TRUE(db.DB_Del_CVSet(shown.front().second));
        for (const QString& name : {u"Ä ö ß – ✓"_s, u""_s, u"a, \"b\"; c"_s}) {
            number = 0;
            const auto set = db.DB_Add_CVSet(name, number, 265);
            db.AktCVSetID(set);
            for (std::int16_t cv = 1; cv <= 400; ++cv) {
                CVRec rec{0, 7, cv, static_cast<std::int16_t>(cv % 256), 0, false};
                ASSERT_TRUE(db.DB_Write_CV(rec));
                expected_cvs << u"%1|%2|0|%3|%4|%5"_s.arg(rec.CVID)
                                    .arg(set)
                                    .arg(rec.CVPageLo)
                                    .arg(cv)
                                    .arg(rec.CVWert);
            }
            scripts::AktScripts().Clear();
            auto& script = scripts::AktScripts().AddScript();
            script.ScriptName = name;
            script.StateCount = 20;
            script.GetState(19).Info = name;
            ASSERT_TRUE(db.DB_Add_Script(1));
            ASSERT_TRUE(db.DB_Save_Script_States(1));
        }
        ASSERT_TRUE(all.keep());
    }
    EXPECT_EQ(library::trouble(db), "");
    db.Connection_Close();

    const QStringList cvs = printed(u"CVs"_s);
    for (const QString& row : expected_cvs) ASSERT_TRUE(cvs.contains(row)) << row.toStdString();
    clsDBConn again;
    again.Connection_Start(file);
    cls_Sets_Coll sets;
    again.Fill_Sets_in_SetObj(sets);
    EXPECT_EQ(sets.Count(), printed(u"Sets"_s).size());
    qsizetype count = 0;
    for (const auto& set : sets) count += again.DB_Open_CVs(set->SetID);
    if (GetParam() != "orphans") {
        EXPECT_EQ(count, cvs.size());
    }
    const QStringList states = printed(u"Scriptstates"_s);
    EXPECT_EQ(states.filter(u"|19|0|0|0|0|0|a, \"b\"; c"_s).size(), 1);
    again.Connection_Close();
    scripts::AktScripts().Clear();
}

INSTANTIATE_TEST_SUITE_P(All, Other_Readers,
                         testing::Values("library_2000", "library_2003", "old_library",
                                         "partly_numbered", "worn_library", "orphans"),
                         [](const auto& entry) { return entry.param; });

} // namespace
