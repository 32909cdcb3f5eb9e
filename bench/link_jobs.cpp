// bench_link read|load|wait|cancel: opens the program's window on its default library and has it work
// with the programming interface on COM7. Prints what the clock says of
//
//     read     reading all CVs into a set of the library, in milliseconds
//     load     loading the first set into the decoder, in milliseconds
//     wait     asking a decoder that does not answer: percent of a core, after the timing is measured
//     cancel   the longest of ten cancels while CVs are read, in milliseconds

#include "app/mod_main.h"
#include "store/clsDBConn.h"
#include "ui/desktop/qt_desktop.h"
#include "ui/main/Frm_Main.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <chrono>
#include <ctime>
#include <iostream>
#include <stdexcept>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

double milliseconds_since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

class Jobs {
public:
    explicit Jobs(ui_main::Frm_Main& window) : window_(window) {}

    double run(const char* command, const QString& success) {
        const auto start = Clock::now();
        begin(command);
        await_end();
        const double taken = milliseconds_since(start);
        const QString said = window_.findChild<QLabel*>(QStringLiteral("lab_status"))->text();
        if (!said.contains(success)) throw std::runtime_error(said.toStdString());
        return taken;
    }

    double percent_while_waiting(const char* command) {
        constexpr auto until_measured = 2500ms; // opening, and the timing with its busy loops
        begin(command);
        let_pass(until_measured);
        const auto start = Clock::now();
        const std::clock_t spent = std::clock();
        await_end();
        const double processor = static_cast<double>(std::clock() - spent) * 1000 / CLOCKS_PER_SEC;
        return processor / milliseconds_since(start) * 100;
    }

    double cancel(const char* command, std::chrono::milliseconds after) {
        begin(command);
        let_pass(after);
        const auto start = Clock::now();
        for (auto* button : window_.findChildren<QPushButton*>(QStringLiteral("cmd_Abbruch")))
            if (button->isEnabled()) button->click();
        await_end();
        return milliseconds_since(start);
    }

private:
    void begin(const char* command) {
        window_.findChild<QAction*>(QString::fromLatin1(command))->trigger();
        if (!window_.job().runs()) throw std::runtime_error("the job did not begin");
    }
    void await_end() {
        while (window_.job().runs()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    static void let_pass(std::chrono::milliseconds time) {
        QEventLoop loop;
        QTimer::singleShot(time, &loop, &QEventLoop::quit);
        loop.exec();
    }

    ui_main::Frm_Main& window_;
};

double measured(Jobs jobs, const std::string& what) {
    if (what == "load") return jobs.run("mnu_CVSet_Laden", QStringLiteral("geladen"));
    if (what == "wait") return jobs.percent_while_waiting("mnu_get_decodertyp");
    if (what == "read") return jobs.run("mnu_alle_lesen", QStringLiteral("gespeichert"));
    double longest = 0;
    for (int i = 1; i <= 10; ++i)
        longest = std::max(longest, jobs.cancel("mnu_alle_lesen", i * 317ms));
    return longest;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 2) return 2;
    ui_desktop::Qt_Desktop desktop;
    ui_main::Frm_Main window(desktop, files::real_disk(), store::DBConn(), link_ui::real_ports());
    window.load();
    window.show();
    app::globals.comport = 7;
    window.findChild<QRadioButton*>(QStringLiteral("opt_dec_1"))->click();
    QCoreApplication::processEvents();
    try {
        std::cout << measured(Jobs(window), argv[1]) << '\n';
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    window.unload();
}
