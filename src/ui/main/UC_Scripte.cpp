#include "ui/main/UC_Scripte.h"

#include "app/one_line.h"
#include "scripts/cls_script_coll.h"
#include "ui/main/texts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
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

    lvw_Scripts->installEventFilter(this);
    connect(lvw_Scripts, &QTreeWidget::itemSelectionChanged, this, &UC_Scripte::enable);
    connect(cmd_import, &QPushButton::clicked, this, &UC_Scripte::import_wanted);
    connect(cmd_export, &QPushButton::clicked, this, [this] { Q_EMIT export_wanted(chosen()); });

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
    enable();
}

int UC_Scripte::chosen() const {
    const QList<QTreeWidgetItem*> rows = lvw_Scripts->selectedItems();
    return rows.isEmpty() ? 0 : lvw_Scripts->indexOfTopLevelItem(rows.front()) + 1;
}

void UC_Scripte::choose(int position) {
    lvw_Scripts->setCurrentItem(lvw_Scripts->topLevelItem(position - 1));
}

void UC_Scripte::enable() {
    cmd_import->setEnabled(scripts::AktScripts().SetID != 0);
    cmd_export->setEnabled(chosen() != 0);
}

bool UC_Scripte::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Delete || key->modifiers() != Qt::NoModifier || chosen() == 0)
        return QWidget::eventFilter(watched, event);
    Q_EMIT delete_wanted(chosen());
    return true;
}

void UC_Scripte::set_tab_order(QWidget* before) {
    for (QWidget* next : {static_cast<QWidget*>(lvw_Scripts), static_cast<QWidget*>(cmd_Add),
                          static_cast<QWidget*>(cmd_import), static_cast<QWidget*>(cmd_export)}) {
        setTabOrder(before, next);
        before = next;
    }
}

} // namespace ui_main
