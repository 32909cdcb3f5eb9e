#include "scripts/ui/editor_form.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace scripts_ui {
namespace {

template <class Control, class... Given>
Control* named(const char* name, QWidget* parent, Given&&... given) {
    auto* made = new Control(std::forward<Given>(given)..., parent);
    made->setObjectName(QLatin1StringView(name));
    return made;
}

QPushButton* button(const char* name, const QString& caption, QWidget* parent) {
    auto* made = named<QPushButton>(name, parent, caption);
    made->setAutoDefault(false);
    return made;
}

/// The help beside them needs the room more than they do.
void make_narrow(QPushButton& button) {
    constexpr int around_text = 18;
    button.setMaximumWidth(button.fontMetrics().horizontalAdvance(button.text()) + around_text);
}

void make_tight(QLayout& inside_frame) {
    constexpr int margin = 4;
    inside_frame.setContentsMargins(margin, margin, margin, margin);
}

QSlider* slider(const char* name, const QString& spoken, QWidget* parent) {
    auto* made = named<QSlider>(name, parent, Qt::Horizontal);
    made->setAccessibleName(spoken);
    made->setMinimumWidth(60);
    made->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // as wide as there is room
    return made;
}

} // namespace

Editor_Form::Editor_Form(QWidget* parent)
    : QWidget(parent), splitter(new QSplitter(Qt::Vertical, this)),
      Picture1(new Row_View(splitter)), lab_status(new ui_parts::Status_Line(this)) {
    Picture1->setObjectName(QStringLiteral("Picture1"));
    lab_status->setObjectName(QStringLiteral("lab_script_status"));
    splitter->setChildrenCollapsible(false);
    auto* foot = new QHBoxLayout;
    foot->setSpacing(4);
    for (QWidget* part : {build_edit(), build_simulation(), build_info(), build_end()})
        foot->addWidget(part);
    foot->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 4);
    column->addWidget(splitter, 1);
    column->addLayout(foot);
    column->addWidget(lab_status);
}

QWidget* Editor_Form::build_edit() {
    Frame_Edit = named<QGroupBox>("Frame_Edit", this, QStringLiteral("Bearbeiten"));
    txt_Hilfe = named<QLabel>("txt_Hilfe", Frame_Edit,
                              QStringLiteral("Einfügen: Klick auf State-Nummer\n"
                                             "Kopieren: Klick auf anderen State nach Einfügen\n"
                                             "Löschen: Befehl \"-\" auswählen"));
    txt_Hilfe->setMinimumWidth(1); // else no small screen has room for what stands beside it
    txt_Hilfe->setToolTip(
        QStringLiteral("Pfeile, Bild auf/ab: von Zeile zu Zeile\n"
                       "Alt+Pfeil ab: Liste öffnen\n"
                       "Einfg: Zeile einfügen oder kopieren\n"
                       "Strg+Entf: Zeile löschen\n"
                       "F5: Simulation starten und pausieren, F10: ein Schritt\n"
                       "Strg+F10: bis zur Zeile laufen\n"
                       "F9: Haltepunkt, Umschalt+F9: mit Bedingung\n"
                       "F6: zur Fehlersuche und zurück, Strg+Tab: zu den Knöpfen"));
    auto* row = new QVBoxLayout(Frame_Edit);
    make_tight(*row);
    row->addWidget(txt_Hilfe);
    return Frame_Edit;
}

QWidget* Editor_Form::build_simulation() {
    Frame_Sim = named<QGroupBox>("Frame_Sim", this, QStringLiteral("Simulation"));
    cmd_sim = button("cmd_sim", QStringLiteral("On/Off"), Frame_Sim);
    cmd_Pause = button("cmd_Pause", QStringLiteral("Pause"), Frame_Sim);
    cmd_Einzel = button("cmd_Einzel", QStringLiteral("Step"), Frame_Sim);
    cmd_debug = button("cmd_debug", QStringLiteral("Fehlersuche"), Frame_Sim);
    cmd_debug->setCheckable(true);
    Sli_Script_Speed = slider("Sli_Script_Speed", QStringLiteral("Speed"), Frame_Sim);
    Sli_Script_Speed->setRange(0, 10);
    Sli_Script_Speed->setValue(2);
    Sli_Script_Speed->setPageStep(1);
    Sli_Script_Speed->setInvertedAppearance(true); // it is the time for a line: fast is right
    auto* speed = named<QLabel>("lab_Speed", Frame_Sim, QStringLiteral("Speed"));
    auto* above = new QHBoxLayout;
    for (QPushButton* each : {cmd_sim, cmd_Pause, cmd_Einzel}) {
        make_narrow(*each);
        above->addWidget(each);
    }
    auto* below = new QHBoxLayout;
    below->addWidget(speed);
    below->addWidget(Sli_Script_Speed, 1);
    below->addWidget(cmd_debug);
    auto* column = new QVBoxLayout(Frame_Sim);
    make_tight(*column);
    column->addLayout(above);
    column->addLayout(below);
    return Frame_Sim;
}

QWidget* Editor_Form::build_info() {
    auto* box = new QWidget(this);
    chk_info_on = named<QCheckBox>("chk_info_on", box, QStringLiteral("Info einblenden"));
    chk_info_off = named<QCheckBox>("chk_info_off", box, QStringLiteral("Single line"));
    Sli_Info = slider("Sli_Info", QStringLiteral("Breite der Info-Spalte"), box);
    Sli_Info->setRange(0, 100);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    for (QWidget* each : {static_cast<QWidget*>(chk_info_on), static_cast<QWidget*>(chk_info_off),
                          static_cast<QWidget*>(Sli_Info)})
        column->addWidget(each);
    column->addStretch();
    return box;
}

QWidget* Editor_Form::build_end() {
    auto* box = new QWidget(this);
    cmd_undo = button("cmd_undo", QStringLiteral("Rückgängig"), box);
    cmd_redo = button("cmd_redo", QStringLiteral("Wiederholen"), box);
    make_narrow(*cmd_undo);
    make_narrow(*cmd_redo);
    cmd_ok = button("cmd_ok", QStringLiteral("OK"), box);
    cmd_cancel = button("cmd_cancel", QStringLiteral("Abbrechen"), box);
    auto* grid = new QGridLayout(box);
    grid->setHorizontalSpacing(4);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(cmd_undo, 0, 0);
    grid->addWidget(cmd_redo, 0, 1);
    grid->addWidget(cmd_ok, 1, 0);
    grid->addWidget(cmd_cancel, 1, 1);
    grid->setRowStretch(2, 1);
    return box;
}

void show_red(QPushButton& button, bool red) {
    button.setStyleSheet(red ? QStringLiteral("background-color: #ff0000; color: white;")
                             : QString());
}

} // namespace scripts_ui
