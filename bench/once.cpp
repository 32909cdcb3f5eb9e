// bench_once TASK FILE: does one task on a library and prints the seconds that it took, without the
// start of the program. Tasks: rows (every cell of every row of every table), check, load (the
// whole library into the model).

#include "platform/jet/check/check.h"
#include "platform/jet/database.h"
#include "store/clsDBConn.h"

#include <cstring>
#include <iostream>
#include <stdexcept>

namespace {

std::size_t cells(const jet::Table& table) {
    std::size_t sum = 0;
    std::u16string text;
    const auto& columns = table.columns();
    for (auto rows = table.rows(jet::Order::file); rows.next();)
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (columns[i].type == jet::Column_Type::text) {
                rows.text(i, text);
                sum += text.size();
            } else {
                sum += static_cast<std::size_t>(rows.integer(i));
            }
    return sum;
}

void rows(const char* path) {
    auto database = jet::Database::open(files::real_disk(), path, jet::Mode::read_only);
    std::size_t sum = 0;
    for (const auto& table : database.tables()) sum += cells(table);
    if (sum == 0) throw std::runtime_error("there was nothing to read");
}

void check(const char* path) {
    auto database = jet::Database::open(files::real_disk(), path, jet::Mode::read_only);
    if (!database.check().sound()) throw std::runtime_error("the library is damaged");
}

void load(const char* path) {
    store::clsDBConn connection;
    connection.Connection_Start(QString::fromUtf8(path));
    connection.Fill_Sets_in_SetObj(store::SetsObj());
    if (store::SetsObj().Count() == 0) throw std::runtime_error("there were no sets");
}

struct Task {
    const char* name;
    void (*run)(const char* path);
};

constexpr Task tasks[] = {{"rows", rows}, {"check", check}, {"load", load}};

void run(const char* name, const char* path) {
    for (const auto& task : tasks) {
        if (std::strcmp(task.name, name) != 0) continue;
        task.run(path);
        return;
    }
    throw std::runtime_error("there is no such task");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: bench_once TASK FILE\n";
        return 2;
    }
    try {
        run(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::cerr << argv[2] << ": " << error.what() << '\n';
        return 1;
    }
}
