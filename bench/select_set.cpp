// bench_select: opens the program's window on its default library and goes from set to set. Prints
// the median processor time of one change, repainting included, in milliseconds for 1,000 CVs.

#include "shown_window.h"
#include "ui/main/entry_list.h"

#include <QApplication>

#include <algorithm>
#include <ctime>
#include <iostream>
#include <vector>

namespace {

double milliseconds_of(std::clock_t ticks) {
    return static_cast<double>(ticks) * 1000 / CLOCKS_PER_SEC;
}

double change(ui_main::Entry_List& sets, const ui_main::Entry_List& cvs, int row) {
    const auto start = std::clock();
    sets.select_row(row);
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    return milliseconds_of(std::clock() - start) * 1000 / std::max(cvs.count(), 1);
}

} // namespace

int main(int argc, char** argv) {
    Shown_Window shown(argc, argv);
    ui_main::Frm_Main& window = shown.window;
    auto* sets = window.findChild<ui_main::Entry_List*>(QStringLiteral("lst_sets"));
    const auto* cvs = window.findChild<ui_main::Entry_List*>(QStringLiteral("lst_CVs"));
    if (sets == nullptr || cvs == nullptr || sets->count() < 2 || cvs->count() == 0) {
        std::cerr << "there are no two sets to go between\n";
        return 1;
    }
    std::vector<double> times;
    for (int i = 1; i <= 60; ++i) times.push_back(change(*sets, *cvs, i % sets->count()));
    std::nth_element(times.begin(), times.begin() + 30, times.end());
    std::cout << times[30] << '\n';
}
