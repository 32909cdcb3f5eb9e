// bench_script: opens the program's window on its default library, adds a script of 10 and one of
// 256 lines to its first set in memory, and opens them in turn in the script editor. Prints the
// median processor times until the editor is painted, and of scrolling the longer one by a line, in
// milliseconds.

#include "shown_window.h"

#include "scripts/cls_script_coll.h"

#include <QApplication>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>
#include <ctime>
#include <functional>
#include <iostream>
#include <vector>

namespace {

QWidget& editor() {
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->objectName() == QStringLiteral("frm_script") && top->isVisible()) return *top;
    std::cerr << "no script was opened\n";
    std::exit(1);
}

void add_script(int lines) {
    constexpr int commands[] = {1, 4, 5, 7, 12, 15, 22, 30};
    scripts::cls_script& script = scripts::AktScripts().AddScript();
    script.ScriptID = 1'000'000 + lines;
    script.StateCount = lines;
    for (int line = 0; line < lines; ++line) script.GetState(line).SetCommand(commands[line % 8]);
}

double milliseconds(const std::function<void()>& work) {
    const auto start = std::clock();
    work();
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    return static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC;
}

double median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2),
                     times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    Shown_Window shown(argc, argv);
    ui_main::Frm_Main& window = shown.window;
    const int before = scripts::AktScripts().Count();
    add_script(10);
    add_script(256);
    std::vector<double> opening[2], scrolling;
    for (int round = 0; round < 21; ++round)
        for (int which = 0; which < 2; ++which) {
            opening[which].push_back(milliseconds([&] { window.Open_Script(before + 1 + which); }));
            if (which == 1) {
                auto* bar = editor().findChild<QScrollBar*>(QStringLiteral("VScroll1"));
                for (int line = 1; line <= 100; ++line)
                    scrolling.push_back(milliseconds([&] { bar->setValue(line); }));
            }
            editor().findChild<QPushButton*>(QStringLiteral("cmd_cancel"))->click();
        }
    std::cout << median(opening[0]) << ' ' << median(opening[1]) << ' ' << median(scrolling)
              << '\n';
}
