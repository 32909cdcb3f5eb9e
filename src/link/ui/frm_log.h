#pragma once

#include "link/ui/log_lines.h"
#include "platform/desktop/desktop.h"
#include "ui/parts/window_placer.h"

#include <QDialog>
#include <QListView>
#include <QPushButton>

namespace link_ui {

/// The log of the link. It follows what comes as long as its end is in view.
class frm_log final : public QDialog {
    Q_OBJECT
public:
    frm_log(QWidget* parent, Log_Lines& lines, desktop::Desktop& desktop);

private:
    void copy();

    Log_Lines& lines_;
    desktop::Desktop& desktop_;
    QListView* lst_deb;
    QPushButton* cmd_zwischen;
    bool follows_ = true; ///< the end of the log is in view
    ui_parts::Window_Placer placer_;
};

} // namespace link_ui
