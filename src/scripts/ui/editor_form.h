#pragma once

#include "scripts/ui/row_view.h"
#include "ui/parts/status_line.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QPushButton>
#include <QSlider>
#include <QSplitter>

namespace scripts_ui {

/// The controls of the script editor and where they stand.
class Editor_Form final : public QWidget {
public:
    explicit Editor_Form(QWidget* parent);

    QSplitter* splitter; ///< the rows, and below them what whoever looks for faults needs
    Row_View* Picture1;
    QGroupBox* Frame_Edit;
    QLabel* txt_Hilfe;
    QGroupBox* Frame_Sim;
    QPushButton* cmd_sim;
    QPushButton* cmd_Pause;
    QPushButton* cmd_Einzel;
    QPushButton* cmd_debug;
    QSlider* Sli_Script_Speed;
    QCheckBox* chk_info_on;
    QCheckBox* chk_info_off;
    QSlider* Sli_Info;
    QPushButton* cmd_undo;
    QPushButton* cmd_redo;
    QPushButton* cmd_ok;
    QPushButton* cmd_cancel;
    ui_parts::Status_Line* lab_status;

private:
    QWidget* build_edit();
    QWidget* build_simulation();
    QWidget* build_info();
    QWidget* build_end();
};

/// Shows a button as switched on, in red with readable text.
void show_red(QPushButton& button, bool red);

} // namespace scripts_ui
