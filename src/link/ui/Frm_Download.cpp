#include "link/ui/Frm_Download.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace link_ui {

Frm_Download::Frm_Download(QWidget* parent, desktop::Desktop& desktop)
    : QDialog(parent), lab_set(label("lab_set")), Label1(label("Label1")),
      lab_warnung(label("lab_warnung")), lab_decoder(label("lab_decoder")), lab_sn(label("lab_sn")),
      lab_time_left(label("lab_restzeit")), lab_rat(label("lab_rat")),
      ProgressBar1(new QProgressBar(this)),
      cmd_nochmal(button("cmd_nochmal", QStringLiteral("&Nochmal"))),
      cmd_log(button("cmd_log", QStringLiteral("&Protokoll"))),
      cmd_Abbruch(button("cmd_Abbruch", QStringLiteral("&Abbruch"))),
      cmd_ok(button("cmd_ok", QStringLiteral("OK"))), placer_(*this, desktop) {
    setObjectName(QStringLiteral("Frm_Download"));
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    ProgressBar1->setRange(0, 100);
    lay_out();
    cmd_ok->setAutoDefault(true); // Enter closes what is over, and cancels nothing
    connect(cmd_nochmal, &QPushButton::clicked, this, &Frm_Download::repeat_wanted);
    connect(cmd_log, &QPushButton::clicked, this, &Frm_Download::log_wanted);
    connect(cmd_Abbruch, &QPushButton::clicked, this, &Frm_Download::reject);
    connect(cmd_ok, &QPushButton::clicked, this, &Frm_Download::reject);
}

QLabel* Frm_Download::label(const char* name) {
    auto* made = new QLabel(this);
    made->setObjectName(QString::fromLatin1(name));
    made->setTextFormat(Qt::PlainText);
    made->setWordWrap(true);
    return made;
}

QPushButton* Frm_Download::button(const char* name, const QString& caption) {
    auto* made = new QPushButton(caption, this);
    made->setObjectName(QString::fromLatin1(name));
    made->setAutoDefault(false);
    return made;
}

void Frm_Download::lay_out() {
    QFont strong = Label1->font();
    strong.setBold(true);
    Label1->setFont(strong);
    auto* column = new QVBoxLayout(this);
    for (QLabel* each : {lab_set, Label1, lab_warnung, lab_decoder, lab_sn})
        column->addWidget(each);
    column->addWidget(ProgressBar1);
    column->addWidget(lab_time_left);
    column->addWidget(lab_rat);
    column->addStretch();
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmd_nochmal);
    buttons->addWidget(cmd_log);
    buttons->addStretch();
    buttons->addWidget(cmd_Abbruch);
    buttons->addWidget(cmd_ok);
    column->addLayout(buttons);
    resize(440, 300);
}

void Frm_Download::begin(const QString& caption, const QString& what) {
    setWindowTitle(caption);
    lab_set->setText(what);
    lab_set->setHidden(what.isEmpty());
    lab_rat->clear();
    busy_ = true;
    enable();
    show();
    raise();
    activateWindow();
    cmd_Abbruch->setFocus();
}

void Frm_Download::show_display(const link_jobs::Job_Display& display) {
    Label1->setText(display.Label1);
    lab_warnung->setText(display.lab_warnung);
    lab_decoder->setText(display.lab_decoder);
    lab_sn->setText(display.lab_sn);
    lab_time_left->setText(display.lab_time_left);
    ProgressBar1->setValue(display.ProgressBar1);
}

void Frm_Download::end(const QString& advice) {
    busy_ = false;
    lab_rat->setText(advice);
    lab_time_left->clear();
    enable();
    cmd_ok->setFocus();
}

void Frm_Download::allow_repeat(bool allowed) {
    may_repeat_ = allowed;
    enable();
}

void Frm_Download::enable() {
    cmd_Abbruch->setEnabled(busy_);
    cmd_ok->setEnabled(!busy_);
    cmd_nochmal->setEnabled(!busy_ && may_repeat_);
}

// Esc, too. What is hidden in the middle of a job goes when the job has ended.
void Frm_Download::reject() {
    if (busy_) Q_EMIT cancelled();
    hide();
}

void Frm_Download::closeEvent(QCloseEvent* event) {
    reject();
    event->accept();
}

} // namespace link_ui
