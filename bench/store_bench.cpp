// bench_store INDEXED UNINDEXED SCRATCH [benchmark options]: what the store costs, each beside the
// least that could do the same. INDEXED and UNINDEXED are the same library with and without an
// index over CVs.SetID; SCRATCH is a folder on the disk that counts.

#include "export/export_project.h"
#include "platform/files/memory_disk.h"
#include "platform/jet/database.h"
#include "scripts/cls_Script_Sets.h"
#include "store/clsDBConn.h"

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

constexpr std::int16_t pasted_cvs = 500;

void must(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

void open(store::clsDBConn& connection, const std::string& path) {
    connection.Connection_Start(QString::fromStdString(path));
    must(connection.Connection_Active(), "the library does not open");
}

void load_model(benchmark::State& state, const std::string& path) {
    store::clsDBConn connection;
    open(connection, path);
    for (auto unused : state) {
        store::cls_Sets_Coll sets;
        connection.Fill_Sets_in_SetObj(sets);
        must(sets.Count() > 0, "no sets");
    }
}

/// The number cells of every CV, in the order of the file, for nothing but their sum.
void plain_pass(benchmark::State& state, const std::string& path) {
    auto database = jet::Database::open(files::real_disk(), path, jet::Mode::read_only);
    const auto table = database.table(u"CVs").value();
    for (auto unused : state) {
        std::int64_t sum = 0;
        for (auto rows = table.rows(jet::Order::file); rows.next();)
            for (std::size_t i = 1; i < 6; ++i) sum += rows.integer(i);
        benchmark::DoNotOptimize(sum);
    }
}

store::CVRec cv(std::int16_t number, std::int16_t value) {
    store::CVRec rec{};
    rec.CVPageLo = 1;
    rec.CVNr = number;
    rec.CVWert = value;
    return rec;
}

/// A copy of the library that may be changed, gone at the end.
class Scratch_Library {
public:
    Scratch_Library(const std::string& library, const std::string& folder, const char* name)
        : path_((fs::path(folder) / name).string()) {
        fs::copy_file(library, path_, fs::copy_options::overwrite_existing);
        open(connection, path_);
        connection.AktCVSetID(500);
        auto first = cv(1, 0);
        must(connection.DB_Write_CV(first),
             "storing is refused"); // the check before the first write
    }
    ~Scratch_Library() {
        connection.Connection_Close();
        fs::remove(path_);
    }
    store::clsDBConn connection;

private:
    std::string path_;
};

void store_cv(benchmark::State& state, const std::string& library, const std::string& folder) {
    Scratch_Library scratch(library, folder, "store_cv.mdb");
    std::int16_t value = 0;
    for (auto unused : state) {
        auto rec = cv(29, value = static_cast<std::int16_t>((value + 1) % 256));
        must(scratch.connection.DB_Write_CV(rec), "a CV was not stored");
    }
}

/// What lasting storage costs at least: bytes written over bytes that are there, then waited for,
/// twice.
void two_syncs(benchmark::State& state, const std::string& folder) {
    const auto path = (fs::path(folder) / "two_syncs").string();
    const auto file = files::real_disk().open(path, files::Access::create_or_empty);
    std::array<std::byte, 4096> page{};
    file->write_at(0, std::array<std::byte, 65536>{});
    file->sync();
    for (auto unused : state)
        for (std::uint64_t at : {0U, 32768U}) {
            page[0] = static_cast<std::byte>(std::to_integer<int>(page[0]) + 1);
            file->write_at(at, page);
            file->sync();
        }
    fs::remove(path);
}

using Clock = std::chrono::steady_clock;

/// A new set of 500 CVs as one operation, as pasting makes it; deleting it again is not measured.
void paste_set(benchmark::State& state, const std::string& library, const std::string& folder) {
    Scratch_Library scratch(library, folder, "paste.mdb");
    auto& connection = scratch.connection;
    for (auto unused : state) {
        const auto start = Clock::now();
        store::Operation operation(connection);
        std::int16_t number = 0;
        const auto id = connection.DB_Add_CVSet(QStringLiteral("BR 218"), number, 8);
        connection.AktCVSetID(id);
        for (std::int16_t i = 1; i <= pasted_cvs; ++i) {
            auto rec = cv(static_cast<std::int16_t>(i < 257 ? i : i + 256), i % 256);
            must(connection.DB_Write_CV(rec), "a CV was not pasted");
        }
        must(operation.keep(), "the set was not kept");
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        must(connection.DB_Del_CVSet(id), "the set was not deleted");
    }
}

struct Model {
    store::cls_Sets_Coll sets;
    scripts::cls_Script_Sets scripts;
};

void read_store(store::clsDBConn& connection, Model& model) {
    connection.Fill_Sets_in_SetObj(model.sets);
    connection.Fill_Scripts_in_ScriptsObj(model.scripts);
}

/// Into a file in memory: waiting for the disk is the same for whoever writes and is not counted.
std::size_t write_project(const Model& model, files::Memory_Disk& disk) {
    const auto report = vqx_export::export_project(model.sets, model.scripts,
                                                   vqx_export::File_Type::oem, disk, "/out.vqx");
    must(report.written, "the project file was not written");
    return disk.bytes("/out.vqx").size();
}

void project_file(benchmark::State& state, const std::string& library) {
    store::clsDBConn connection;
    open(connection, library);
    for (auto unused : state) {
        Model model;
        files::Memory_Disk disk;
        read_store(connection, model);
        benchmark::DoNotOptimize(write_project(model, disk));
    }
}

void read_and_copy(benchmark::State& state, const std::string& library) {
    store::clsDBConn connection;
    open(connection, library);
    Model once;
    files::Memory_Disk disk;
    read_store(connection, once);
    std::vector<std::byte> bytes(write_project(once, disk));
    for (auto unused : state) {
        Model model;
        read_store(connection, model);
        std::vector<std::byte> copy(bytes.size());
        std::memcpy(copy.data(), bytes.data(), bytes.size());
        benchmark::DoNotOptimize(copy.data());
    }
}

enum class Timed { all, by_itself };

template <typename... Parts>
void add(const char* name, Timed timed, void (*run)(benchmark::State&, const Parts&...),
         const Parts&... parts) {
    auto* added =
        benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { run(state, parts...); });
    timed == Timed::all ? added->UseRealTime() : added->UseManualTime();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: bench_store INDEXED UNINDEXED SCRATCH [benchmark options]\n";
        return 2;
    }
    const std::string indexed = argv[1], unindexed = argv[2], scratch = argv[3];
    add("load_indexed", Timed::all, load_model, indexed);
    add("load_unindexed", Timed::all, load_model, unindexed);
    add("plain_pass", Timed::all, plain_pass, indexed);
    add("store_cv", Timed::all, store_cv, indexed, scratch);
    add("two_syncs", Timed::all, two_syncs, scratch);
    add("paste_set", Timed::by_itself, paste_set, indexed, scratch);
    add("project_file", Timed::all, project_file, indexed);
    add("read_and_copy", Timed::all, read_and_copy, indexed);
    argv[3] = argv[0];
    argc -= 3;
    benchmark::Initialize(&argc, argv + 3);
    try {
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
