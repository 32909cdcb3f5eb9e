#include "platform/desktop/end_signals.h"
#include "platform/desktop/fonts_ahead.h"
#include "platform/files/disk.h"
#include "sim/ui/frm_Sim_Fahrpult.h"
#include "store/clsDBConn.h"
#include "ui/desktop/german.h"
#include "ui/desktop/qt_desktop.h"
#include "ui/main/Frm_Main.h"

#include <QApplication>
#include <QIcon>
#include <optional>

namespace {

QIcon program_icon() {
    QIcon icon;
    for (const int size : {16, 32, 48, 128}) {
        icon.addFile(QStringLiteral(":/icons/cv-sets-%1.png").arg(size), QSize(size, size));
    }
    return icon;
}

} // namespace

int main(int argc, char** argv) {
    std::optional<desktop::Fonts_Ahead> fonts(std::in_place);
    QApplication application(argc, argv);
    fonts.reset();
    QApplication::setApplicationName(QStringLiteral("cv-sets"));
    QApplication::setDesktopFileName(QStringLiteral("cv-sets"));
    QApplication::setWindowIcon(program_icon());
    ui_desktop::speak_german();

    ui_desktop::Qt_Desktop desktop;
    const auto cab_place = std::make_shared<std::optional<app::Window_Place>>();
    const scripts_ui::Make_Cab make_cab =
        [&desktop, cab_place](sim::Cab_Listener& listener, timing::Time& time, sim::Script_CV cv) {
            auto cab = std::make_unique<sim_ui::frm_Sim_Fahrpult>(
                listener, time, std::move(cv), desktop, sim::SimDecoderState(), cab_place);
            cab->load();
            return cab;
        };
    ui_main::Frm_Main window(desktop, files::real_disk(), store::DBConn(), link_ui::real_ports(),
                             make_cab);
    const desktop::End_Signals signals([&window] {
        window.unload();
        QCoreApplication::quit();
    });
    // Logging off ends the program without closing its windows, or it may be called off.
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &window,
                     &ui_main::Frm_Main::unload);
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &window,
        [&window] { window.gate().pass_at_once(); }, Qt::DirectConnection);
    window.load();
    window.show();
    return QApplication::exec();
}
