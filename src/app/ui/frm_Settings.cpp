#include "app/ui/frm_Settings.h"

#include "app/mod_main.h"
#include "app/ui/texts.h"

#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace app_ui {

namespace {

constexpr int always_offered = 32; ///< COM1 and on; further ones where they exist

template <class Widget, class... Arguments>
Widget* named(const char* name, Arguments&&... arguments) {
    auto* widget = new Widget(std::forward<Arguments>(arguments)...);
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

} // namespace

frm_Settings::frm_Settings(QWidget* parent, desktop::Desktop& desktop, const Port_Access& ports)
    : QDialog(parent), desktop_(desktop), combo_com(named<QComboBox>("combo_com", this)),
      cmd_search(named<QPushButton>("cmd_search", text(Text::search), this)),
      txt_std_set_pfad(named<QLineEdit>("txt_std_set_pfad", app::globals.StdSetdir, this)),
      cmd_change_set_path(named<QPushButton>("cmd_change_set_path", text(Text::choose), this)),
      btn_ok(named<QPushButton>("btn_ok", text(Text::ok), this)),
      btn_cancel(named<QPushButton>("btn_cancel", text(Text::cancel), this)) {
    setObjectName(QStringLiteral("frm_Settings"));
    setWindowTitle(text(Text::title));
    for (int port = 1; port <= always_offered; ++port) offer(port);
    for (const int port : ports.existing)
        if (port > always_offered) offer(port);
    show_port();
    btn_ok->setDefault(true);
    lay_out();
    connect(combo_com, &QComboBox::currentIndexChanged, this, [this] {
        app::globals.comport = static_cast<std::int16_t>(combo_com->currentData().toInt());
    });
    connect(cmd_search, &QPushButton::clicked, this, [this, search = ports.search] {
        search(*this);
        show_port();
    });
    connect(cmd_change_set_path, &QPushButton::clicked, this, &frm_Settings::choose_folder);
    connect(btn_ok, &QPushButton::clicked, this, &frm_Settings::keep);
    connect(btn_cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frm_Settings::offer(int port) { combo_com->addItem(QStringLiteral("COM%1").arg(port), port); }

// The chosen one is offered even while its device is not plugged in.
void frm_Settings::show_port() {
    const int port = app::globals.comport;
    if (combo_com->findData(port) < 0) offer(port);
    combo_com->setCurrentIndex(combo_com->findData(port));
}

void frm_Settings::lay_out() {
    auto* port = new QHBoxLayout;
    port->addWidget(combo_com, 1);
    port->addWidget(cmd_search);
    auto* folder = new QHBoxLayout;
    folder->addWidget(txt_std_set_pfad, 1);
    folder->addWidget(cmd_change_set_path);
    auto* form = new QFormLayout;
    form->addRow(named<QLabel>("lab_com", text(Text::port), this), port);
    form->addRow(named<QLabel>("lab_std_set_pfad", text(Text::folder), this), folder);
    combo_com->setAccessibleName(text(Text::port));
    txt_std_set_pfad->setAccessibleName(text(Text::folder));
    txt_std_set_pfad->setPlaceholderText(app::globals.StdSetPath);
    auto* hint = named<QLabel>("lab_hint", text(Text::folder_hint), this);
    hint->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btn_ok);
    buttons->addWidget(btn_cancel);
    auto* all = new QVBoxLayout(this);
    all->addLayout(form);
    all->addWidget(hint);
    all->addStretch();
    all->addLayout(buttons);
    constexpr int roomy_path = 560;
    setMinimumWidth(roomy_path);
}

void frm_Settings::choose_folder() {
    const QString shown = txt_std_set_pfad->text();
    const auto chosen = desktop_.ask_folder(shown.isEmpty() ? app::globals.StdSetPath : shown);
    if (!chosen) return;
    const QChar separator = QDir::separator();
    txt_std_set_pfad->setText(chosen->endsWith(separator) ? *chosen : *chosen + separator);
}

void frm_Settings::keep() {
    // typed by hand it may lack the separator that every path of a folder ends with
    QString folder = QDir::toNativeSeparators(txt_std_set_pfad->text().trimmed());
    if (!folder.isEmpty() && !folder.endsWith(QDir::separator())) folder += QDir::separator();
    app::globals.StdSetdir = folder;
    accept();
}

} // namespace app_ui
