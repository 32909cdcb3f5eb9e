#pragma once

#include "store/clsDBConn.h"
#include "ui/desktop/qt_desktop.h"
#include "ui/main/Frm_Main.h"

#include <QApplication>
#include <memory>

/// The program's window on its default library, shown; without ports.
struct Shown_Window {
    Shown_Window(int& argc, char** argv) : application(argc, argv) {
        window.load();
        window.show();
        QCoreApplication::processEvents();
    }

    QApplication application;
    ui_desktop::Qt_Desktop desktop;
    ui_main::Frm_Main window{desktop, files::real_disk(), store::DBConn(),
                             link_ui::Link_Ports{[] { return std::unique_ptr<serial::SComm>(); },
                                                 timing::real_time(),
                                                 link_transport::real_bit_loop()}};
};
