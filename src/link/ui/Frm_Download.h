#pragma once

#include "link/jobs/transfer.h"
#include "platform/desktop/desktop.h"
#include "ui/parts/window_placer.h"

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace link_ui {

/// Shows one job with a decoder and lets the user cancel or repeat it. It only shows and asks; the
/// job is another's.
class Frm_Download final : public QDialog {
    Q_OBJECT
public:
    Frm_Download(QWidget* parent, desktop::Desktop& desktop);

    /// A job begins. @param caption of the window @param what it works on: the name of a set
    void begin(const QString& caption, const QString& what);
    void show_display(const link_jobs::Job_Display& display);
    /// The job has ended. @param advice what the user can do now; empty: nothing more
    void end(const QString& advice);
    void allow_repeat(bool allowed);

Q_SIGNALS:
    void cancelled(); ///< the window has been closed in the middle of a job, too
    void repeat_wanted();
    void log_wanted();

protected:
    void reject() override;
    void closeEvent(QCloseEvent* event) override;

private:
    QLabel* label(const char* name);
    QPushButton* button(const char* name, const QString& caption);
    void lay_out();
    void enable();

    QLabel* lab_set; ///< what the job works on
    QLabel* Label1;
    QLabel* lab_warnung;
    QLabel* lab_decoder;
    QLabel* lab_sn;
    QLabel* lab_time_left;
    QLabel* lab_rat; ///< advice
    QProgressBar* ProgressBar1;
    QPushButton* cmd_nochmal;
    QPushButton* cmd_log;
    QPushButton* cmd_Abbruch;
    QPushButton* cmd_ok;
    bool busy_ = false;
    bool may_repeat_ = false;
    ui_parts::Window_Placer placer_;
};

} // namespace link_ui
