// Makes the sample library: an invented collection to try the program on.
//   make_sample_library TEMPLATE.mdb OUT.mdb
#include "platform/files/replace.h"
#include "scripts/cls_script_coll.h"
#include "store/clsDBConn.h"

#include <cstdio>
#include <exception>
#include <string>
#include <tuple>
#include <vector>

namespace {

struct Sample_Cv {
    int number;
    int value;
    int page_hi = 0;
    int page_lo = 1;
};

struct Sample_State {
    int command;
    int par[4];
    const char* info;
};

struct Sample_Script {
    const char* name;
    std::vector<Sample_State> states;
};

struct Sample_Set {
    const char* name;
    int reset_cv;
    std::vector<Sample_Cv> cvs;
    std::vector<Sample_Script> scripts = {};
};

const std::vector<Sample_Set>& collection() {
    static const std::vector<Sample_Set> sets{
        {"Grundeinstellung Diesellok",
         8,
         {{1, 3},
          {2, 4},
          {3, 18},
          {4, 12},
          {5, 180},
          {6, 84},
          {17, 192},
          {18, 3},
          {19, 0},
          {29, 6},
          {49, 15},
          {63, 200}}},
        {"Köf II, Rangiergang langsam",
         8,
         {{1, 7}, {2, 2}, {3, 30}, {4, 24}, {5, 90}, {6, 40}, {29, 6}, {124, 3}}},
        {"V 200 mit zwei Motoren",
         8,
         {{1, 21},
          {2, 3},
          {3, 22},
          {4, 16},
          {5, 220},
          {6, 110},
          {29, 38},
          {112, 45},
          {259, 64, 0, 5},
          {260, 128, 0, 5},
          {300, 12, 0, 5},
          {300, 14, 16, 0}},
         {{"Motor starten",
           {{1, {0, 1, 0, 0}, "Anlasser"}, {3, {0, 0, 0, 0}, ""}, {6, {0, 0, 0, 0}, ""}}},
          {"Hornsignal", {{1, {0, 2, 0, 0}, "kurz, lang"}, {3, {0, 0, 0, 0}, ""}}}}},
        {"Schienenbus, Innenlicht gedimmt",
         8,
         {{1, 98}, {29, 6}, {35, 1}, {36, 2}, {37, 4}, {62, 80}}},
        {"E 94, Führerstand und Maschinenraum",
         8,
         {{1, 94},
          {3, 26},
          {4, 20},
          {5, 170},
          {29, 14},
          {33, 1},
          {34, 2},
          {35, 4},
          {36, 8},
          {600, 3},
          {901, 17}}},
        {"Analogbetrieb aus", 8, {{13, 0}, {14, 0}, {29, 2}}},
        {"Funktionszuordnung Dampflok",
         265,
         {{33, 1}, {34, 2}, {35, 12}, {36, 16}, {257, 1, 0, 40}, {258, 0, 0, 40}}},
        {"Lichtwechsel Schweiz", 265, {{33, 5}, {34, 6}, {259, 128, 0, 41}, {260, 64, 0, 41}}},
    };
    return sets;
}

void add_scripts(store::clsDBConn& library, const Sample_Set& set) {
    library.DB_Load_Scripts();
    for (const Sample_Script& sample : set.scripts) {
        scripts::cls_script& script = scripts::AktScripts().AddScript();
        script.ScriptName = QString::fromUtf8(sample.name);
        std::int32_t line = 0;
        for (const Sample_State& state : sample.states) {
            scripts::cls_Scriptstate& target = script.GetState(line++);
            target.SetCommand(state.command);
            for (int par = 0; par < 4; ++par) target.SetPar(par, state.par[par]);
            target.Info = QString::fromUtf8(state.info);
        }
        script.StateCount = line;
        const std::int32_t position = scripts::AktScripts().Count();
        std::ignore = library.DB_Add_Script(position); // make() asks for the latest trouble
        std::ignore = library.DB_Save_Script_States(position);
    }
}

void fill(store::clsDBConn& library) {
    for (const Sample_Set& set : collection()) {
        std::int16_t number = 0;
        library.AktCVSetID(library.DB_Add_CVSet(QString::fromUtf8(set.name), number,
                                                static_cast<std::int16_t>(set.reset_cv)));
        for (const Sample_Cv& cv : set.cvs) {
            store::CVRec rec{.CVPageHi = static_cast<std::uint8_t>(cv.page_hi),
                             .CVPageLo = static_cast<std::uint8_t>(cv.page_lo),
                             .CVNr = static_cast<std::int16_t>(cv.number),
                             .CVWert = static_cast<std::int16_t>(cv.value)};
            std::ignore = library.DB_Write_CV(rec);
        }
        add_scripts(library, set);
    }
}

bool make(const std::string& empty, const std::string& path) {
    files::copy_file(files::real_disk(), empty, path);
    store::clsDBConn library;
    library.Connection_Start(QString::fromStdString(path));
    store::Operation whole(library);
    fill(library);
    const bool kept = whole.keep();
    const auto trouble = library.last_trouble();
    if (trouble)
        std::fprintf(stderr, "%s: %s\n", trouble->subject.toUtf8().constData(),
                     trouble->detail.toUtf8().constData());
    return kept && !trouble;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: make_sample_library TEMPLATE.mdb OUT.mdb\n", stderr);
        return 2;
    }
    try {
        return make(argv[1], argv[2]) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
