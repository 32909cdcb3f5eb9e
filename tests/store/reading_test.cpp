#include "scripts/cls_Script_Sets.h"
#include "scripts/cls_script_coll.h"
#include "store/library.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

using namespace store;
using namespace Qt::Literals::StringLiterals;

namespace {

using Rows = std::vector<QJsonObject>;
using Place = std::tuple<int, int, int>; // page bytes and number

std::string key_of(const QJsonObject& cv) { return std::to_string(cv[u"CVID"_s].toInt()); }

Place place_of(const QJsonObject& cv) {
    return {cv[u"CVPageHi"_s].toInt(), cv[u"CVPageLo"_s].toInt(), cv[u"CVNr"_s].toInt()};
}

/// CV rows of one set by page and number, rows of one place by key.
Rows cvs_of(const Rows& all, int set_id) {
    Rows found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&](const QJsonObject& row) { return row[u"SetID"_s].toInt() == set_id; });
    std::stable_sort(found.begin(), found.end(), [](const QJsonObject& a, const QJsonObject& b) {
        return place_of(a) < place_of(b);
    });
    return found;
}

class Samples : public On_Library, public testing::WithParamInterface<std::string> {};

TEST_P(Samples, load_into_the_model_as_they_stand) {
    for (const bool write_protected : {false, true}) {
        open(GetParam(), write_protected);
        cls_Sets_Coll sets;
        db.Fill_Sets_in_SetObj(sets);
        EXPECT_FALSE(library::sets(db, 8).empty());
        db.DB_Count_Scripts(1); // lacking tables read as empty
        EXPECT_EQ(library::trouble(db), "");
        const Rows expected = library::expected_rows(GetParam(), u"Sets"_s);
        const Rows expected_cvs = library::expected_rows(GetParam(), u"CVs"_s);
        ASSERT_EQ(static_cast<std::size_t>(sets.Count()), expected.size());
        EXPECT_EQ(sets.CVs_Left_Out, 0);
        int next = 10;
        for (std::int32_t i = 1; i <= sets.Count(); ++i) {
            const QJsonObject& row = expected[static_cast<std::size_t>(i - 1)];
            const cls_CV_Set& set = *sets.Item(i);
            SCOPED_TRACE(set.SetID);
            EXPECT_EQ(set.SetID, row[u"SetID"_s].toInt());
            EXPECT_EQ(set.Name, row[u"Name"_s].toString());
            EXPECT_EQ(set.ResCV, row[u"ResCV"_s].toInt(8));
            EXPECT_EQ(set.Nummer, row[u"Nummer"_s].toInt(next));
            next = set.Nummer + 1;
            cls_CV_Set built; // by the model's own rules, from rows of the other reader
            for (const QJsonObject& cv : cvs_of(expected_cvs, set.SetID))
                built.Add_CV(std::get<0>(place_of(cv)) * 256 + std::get<1>(place_of(cv)),
                             static_cast<std::int16_t>(std::get<2>(place_of(cv))),
                             static_cast<std::uint8_t>(cv[u"CVWert"_s].toInt()));
            ASSERT_EQ(set.Count(), built.Count());
            for (std::int32_t p = 1; p <= set.Count(); ++p) {
                EXPECT_EQ(set.Item(p)->PageNr, built.Item(p)->PageNr);
                ASSERT_EQ(set.Item(p)->Count(), built.Item(p)->Count());
                for (std::int32_t c = 1; c <= set.Item(p)->Count(); ++c) {
                    EXPECT_EQ(set.Item(p)->Item(c)->CVNr, built.Item(p)->Item(c)->CVNr);
                    EXPECT_EQ(set.Item(p)->Item(c)->Wert, built.Item(p)->Item(c)->Wert);
                }
            }
        }
    }
}

TEST_P(Samples, list_their_cvs_by_page_and_number) {
    open(GetParam());
    const Rows all = library::expected_rows(GetParam(), u"CVs"_s);
    std::set<int> ids;
    for (const QJsonObject& cv : all) ids.insert(cv[u"SetID"_s].toInt());
    for (const int id : ids) {
        SCOPED_TRACE(id);
        const Rows expected = cvs_of(all, id);
        const auto shown = library::cvs(db, id);
        EXPECT_EQ(db.AktCVSetID(), id);
        ASSERT_EQ(shown.size(), expected.size());
        ASSERT_EQ(db.DB_Open_CVs(id), static_cast<int>(expected.size()));
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(std::to_string(shown[i].second), key_of(expected[i]));
            const CVRec rec = db.DB_Next_CV();
            EXPECT_EQ(Place(rec.CVPageHi, rec.CVPageLo, rec.CVNr), place_of(expected[i]));
            EXPECT_EQ(rec.CVWert, expected[i][u"CVWert"_s].toInt());
            EXPECT_EQ(rec.LastRecord, i + 1 == expected.size());
            const CVRec again = db.DB_Get_CV(shown[i].second);
            EXPECT_EQ(again.CVNr, rec.CVNr);
            EXPECT_EQ(again.CVWert, rec.CVWert);
        }
        EXPECT_EQ(db.DB_Next_CV(), CVRec());
        db.DB_Close_CVs();
    }
}

TEST_P(Samples, load_their_scripts) {
    open(GetParam());
    std::map<int, std::vector<int>> scripts; // by set
    std::map<int, std::map<int, QJsonObject>> states;
    std::map<int, QString> names;
    int odd = 0;
    for (const QJsonObject& row : library::expected_rows(GetParam(), u"Scripte"_s)) {
        scripts[row[u"SetID"_s].toInt()].push_back(row[u"ScriptID"_s].toInt());
        names[row[u"ScriptID"_s].toInt()] = row[u"ScriptName"_s].toString();
    }
    std::set<int> known;
    for (const auto& [set, ids] : scripts) known.insert(ids.begin(), ids.end());
    for (const QJsonObject& row : library::expected_rows(GetParam(), u"Scriptstates"_s)) {
        const int state = row[u"State"_s].toInt();
        const int script = row[u"ScriptID"_s].toInt();
        if (!known.contains(script)) continue;
        if (state < 0 || state > 255)
            ++odd;
        else
            states[script][state] = row;
    }
    scripts::cls_Script_Sets sets;
    db.Fill_Scripts_in_ScriptsObj(sets);
    for (const auto& of_set : sets) odd -= of_set->States_Left_Out();
    EXPECT_EQ(odd, 0);
    ASSERT_EQ(static_cast<std::size_t>(sets.Count()), scripts.size());
    int position = 0;
    for (const auto& [set, ids] : scripts) {
        SCOPED_TRACE(set);
        const auto coll = sets.Item(++position);
        EXPECT_EQ(sets.Item(QString::number(set)), coll);
        ASSERT_EQ(static_cast<std::size_t>(coll->Count()), ids.size());
        EXPECT_EQ(db.DB_Count_Scripts(set), coll->Count());
        db.AktCVSetID(set);
        db.DB_Load_Scripts();
        ASSERT_EQ(scripts::AktScripts().Count(), coll->Count());
        for (std::int32_t i = 1; i <= coll->Count(); ++i) {
            const auto script = coll->Item(i);
            EXPECT_EQ(script->ScriptID, ids[static_cast<std::size_t>(i - 1)]);
            EXPECT_EQ(scripts::AktScripts().Item(i)->ScriptName, names[script->ScriptID]);
            const auto& rows = states[script->ScriptID];
            EXPECT_EQ(script->StateCount, rows.empty() ? 0 : rows.rbegin()->first + 1);
            for (int state = 0; state < script->StateCount; ++state) {
                const auto row = rows.find(state);
                const QJsonObject values = row == rows.end() ? QJsonObject() : row->second;
                EXPECT_EQ(script->GetState(state).GetCommand(), values[u"Command"_s].toInt());
                EXPECT_EQ(script->GetState(state).GetPar(0), values[u"Par1"_s].toInt());
                EXPECT_EQ(script->GetState(state).GetPar(3), values[u"Par4"_s].toInt());
                EXPECT_EQ(script->GetState(state).GetPar(4), 0);
                EXPECT_EQ(script->GetState(state).Info, values[u"Info"_s].toString());
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Samples,
                         testing::Values("library_2000", "library_2003", "old_library",
                                         "partly_numbered", "worn_library", "orphans"),
                         [](const auto& entry) { return entry.param; });

} // namespace
