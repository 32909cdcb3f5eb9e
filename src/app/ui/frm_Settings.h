#pragma once

#include "platform/desktop/desktop.h"

#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>

namespace app_ui {

/// Serial port of the programming interface and standard folder of databases. A port counts as
/// soon as it is chosen; the folder only with OK.
class frm_Settings final : public QDialog {
    Q_OBJECT
public:
    frm_Settings(QWidget* parent, desktop::Desktop& desktop);

private:
    void lay_out();
    void choose_folder();
    void keep();

    desktop::Desktop& desktop_;
    QComboBox* combo_com;
    QPushButton* cmd_search; ///< waits for the search of the interface
    QLineEdit* txt_std_set_pfad;
    QPushButton* cmd_change_set_path;
    QPushButton* btn_ok;
    QPushButton* btn_cancel;
};

} // namespace app_ui
