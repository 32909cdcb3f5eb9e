#pragma once

#include "platform/desktop/desktop.h"

#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <functional>
#include <vector>

namespace app_ui {

/// What the window is given about serial ports.
struct Port_Access {
    std::vector<int> existing;
    std::function<void(QWidget& window)> search; ///< for the interface; may choose another one
};

/// Serial port of the programming interface and standard folder of databases. A port counts as
/// soon as it is chosen; the folder only with OK.
class frm_Settings final : public QDialog {
    Q_OBJECT
public:
    frm_Settings(QWidget* parent, desktop::Desktop& desktop, const Port_Access& ports);

private:
    void lay_out();
    void offer(int port);
    void show_port();
    void choose_folder();
    void keep();

    desktop::Desktop& desktop_;
    QComboBox* combo_com;
    QPushButton* cmd_search;
    QLineEdit* txt_std_set_pfad;
    QPushButton* cmd_change_set_path;
    QPushButton* btn_ok;
    QPushButton* btn_cancel;
};

} // namespace app_ui
