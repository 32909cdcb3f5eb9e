#include "ui/main/UC_Scripte.h"

#include "app/one_line.h"
#include "scripts/cls_script_coll.h"
#include "ui/main/texts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

namespace ui_main {
namespace {

constexpr int name_column = 0;
constexpr int lines_column = 1;

} // namespace

UC_Scripte::UC_Scripte(QWidget* parent)
    : QWidget(parent), lvw_Scripts(new QTreeWidget(this)),
      hint_(std::make_unique<ui_parts::Empty_Hint>(*lvw_Scripts)) {
    lvw_Scripts->setObjectName(QStringLiteral("lvw_Scripts"));
    lvw_Scripts->setAccessibleName(text(Text::list_of_scripts));
    lvw_Scripts->setHeaderLabels({text(Text::script_name), text(Text::script_lines)});
    lvw_Scripts->setRootIsDecorated(false);
    lvw_Scripts->setUniformRowHeights(true);
    lvw_Scripts->header()->setStretchLastSection(false);
    lvw_Scripts->header()->setSectionResizeMode(name_column, QHeaderView::Stretch);
    lvw_Scripts->header()->setSectionResizeMode(lines_column, QHeaderView::ResizeToContents);

    cmd_Add = button("cmd_Add", text(Text::script_add));
    cmd_import = button("cmd_import", text(Text::script_import));
    cmd_export = button("cmd_export", text(Text::script_export));
    auto* buttons = new QHBoxLayout;
    for (QPushButton* each : {cmd_Add, cmd_import, cmd_export}) buttons->addWidget(each);
    buttons->addStretch();

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(lvw_Scripts);
    column->addLayout(buttons);
}

QPushButton* UC_Scripte::button(const char* name, const QString& caption) {
    auto* made = new QPushButton(caption, this);
    made->setObjectName(QString::fromLatin1(name));
    made->setEnabled(false);
    return made;
}

void UC_Scripte::refill() {
    lvw_Scripts->clear();
    for (const auto& script : scripts::AktScripts()) {
        auto* row = new QTreeWidgetItem(lvw_Scripts);
        row->setText(name_column, app::in_one_line(script->ScriptName));
        row->setText(lines_column, QString::number(script->StateCount));
        row->setTextAlignment(lines_column, Qt::AlignRight | Qt::AlignVCenter);
    }
}

void UC_Scripte::set_tab_order(QWidget* before) {
    for (QWidget* next : {static_cast<QWidget*>(lvw_Scripts), static_cast<QWidget*>(cmd_Add),
                          static_cast<QWidget*>(cmd_import), static_cast<QWidget*>(cmd_export)}) {
        setTabOrder(before, next);
        before = next;
    }
}

} // namespace ui_main
