#include "scripts/ui/UC_Scripte.h"

#include "app/mod_main.h"
#include "app/one_line.h"
#include "app/text_table.h"
#include "app/twips.h"
#include "scripts/cls_script_coll.h"
#include "scripts/script_summary.h"
#include "scripts/ui/list_texts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

namespace scripts_ui {
namespace {

enum List_Column {
    active_column,
    name_column,
    keys_column,
    outputs_column,
    cvs_column,
    list_columns
};
constexpr int first_list_widths[list_columns] = {700, 3000, 1500, 1500, 600}; ///< in twips

constexpr int list_row_space = 4; ///< above and below what stands in a row, in pixels

int first_list_width(int column) { return app::to_pixels(app::Twips{first_list_widths[column]}); }

int width_of_one_cv(const QTreeWidget& list) {
    const int margin = list.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &list) + 1;
    return list.fontMetrics().horizontalAdvance(QStringLiteral("CV#1019")) + 2 * margin;
}

// What a row knows in its first column.
constexpr int position_role = Qt::UserRole;
constexpr int script_role = Qt::UserRole + 1;

QString own_list_text(const scripts_catalogue::Text& text) {
    return text.in(app::globals.LanguageIndex);
}

int listed_position(const QTreeWidgetItem& row) { return row.data(0, position_role).toInt(); }

std::int32_t listed_script(const QTreeWidgetItem& row) { return row.data(0, script_role).toInt(); }

bool has_flag(int position) { return position <= static_cast<int>(store::Active_Scripts().size()); }

Qt::CheckState flag_of(store::Active_Scripts active, int position) {
    return active.test(static_cast<std::size_t>(position - 1)) ? Qt::Checked : Qt::Unchecked;
}

} // namespace

UC_Scripte::UC_Scripte(QWidget* parent)
    : QWidget(parent), lvw_Scripts(new QTreeWidget(this)),
      hint_(std::make_unique<ui_parts::Empty_Hint>(*lvw_Scripts)),
      objLabelEdit(new ui_parts::LabelEditUC), cmd_Add(button("cmd_Add")),
      cmd_import(button("cmd_import")), cmd_export(button("cmd_export")),
      lab_legende(new QLabel(this)) {
    build_list();
    lab_legende->setObjectName(QStringLiteral("lab_legende"));
    lab_legende->setMargin(1); // dots of capitals stand above the line
    auto* buttons = new QHBoxLayout;
    for (QPushButton* each : {cmd_Add, cmd_import, cmd_export}) buttons->addWidget(each);
    buttons->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(lvw_Scripts);
    column->addLayout(buttons);
    column->addWidget(lab_legende, 0, Qt::AlignLeft);

    connect(cmd_Add, &QPushButton::clicked, this, &UC_Scripte::add_wanted);
    connect(cmd_import, &QPushButton::clicked, this, &UC_Scripte::import_wanted);
    connect(cmd_export, &QPushButton::clicked, this, [this] { Q_EMIT export_wanted(chosen()); });
}

QPushButton* UC_Scripte::button(const char* name) {
    auto* made = new QPushButton(this);
    made->setObjectName(QString::fromLatin1(name));
    made->setEnabled(false);
    return made;
}

void UC_Scripte::build_list() {
    lvw_Scripts->setObjectName(QStringLiteral("lvw_Scripts"));
    lvw_Scripts->setColumnCount(list_columns);
    lvw_Scripts->setRootIsDecorated(false);
    lvw_Scripts->setUniformRowHeights(true);
    lvw_Scripts->setAllColumnsShowFocus(true);
    lvw_Scripts->setContextMenuPolicy(Qt::PreventContextMenu); // the right button renames
    lvw_Scripts->header()->setStretchLastSection(false);
    lvw_Scripts->header()->setSectionsMovable(false);
    lvw_Scripts->header()->setMinimumSectionSize(0);
    lvw_Scripts->header()->setResizeContentsPrecision(-1);
    for (int i = 0; i < list_columns; ++i) lvw_Scripts->setColumnWidth(i, first_list_width(i));

    objLabelEdit->Init(*lvw_Scripts, this);
    objLabelEdit->Activate_Col(name_column + 1);
    connect(objLabelEdit, &ui_parts::LabelEditUC::TextChanged, this,
            [this](int row, int /*column*/, const QString& text) {
                Q_EMIT rename_wanted(listed_script(*lvw_Scripts->topLevelItem(row - 1)), text);
            });
    connect(objLabelEdit, &ui_parts::LabelEditUC::full, this, &UC_Scripte::name_full);
    lvw_Scripts->installEventFilter(this);
    lvw_Scripts->viewport()->installEventFilter(this);
    connect(lvw_Scripts, &QTreeWidget::itemSelectionChanged, this, &UC_Scripte::enable);
    connect(lvw_Scripts, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* row) { note_check(*row); });
    connect(lvw_Scripts, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* row) {
        if (double_opens_) Q_EMIT open_wanted(listed_position(*row));
    });
}

// Filling

void UC_Scripte::show_captions() {
    if (std::exchange(shown_language_, app::globals.LanguageIndex) == app::globals.LanguageIndex)
        return;
    namespace table = list_table;
    const auto text = [](int number) { return app::TextTable.text(number); };
    lvw_Scripts->setHeaderLabels({text(table::active), text(table::name), text(table::keys),
                                  text(table::outputs), own_list_text(list_own::cvs)});
    lvw_Scripts->setAccessibleName(own_list_text(list_own::spoken));
    cmd_Add->setText(text(table::add));
    cmd_import->setText(text(table::import_from_file));
    cmd_export->setText(text(table::export_to_file));
    lab_legende->setText(QStringList{text(table::how_to_open), text(table::how_to_delete),
                                     text(table::how_to_rename)}
                             .join(u'\n'));
    lab_legende->setToolTip(own_list_text(list_own::with_keys));
}

void UC_Scripte::refill(store::Active_Scripts active, int name_width) {
    const scripts::cls_script_coll& all = scripts::AktScripts();
    const auto selected = lvw_Scripts->selectedItems();
    const bool same_set = std::exchange(shown_set_, all.SetID) == all.SetID;
    const std::int32_t kept =
        selected.isEmpty() || !same_set ? 0 : listed_script(*selected.front());
    active_ = active;
    show_captions();
    objLabelEdit->drop();
    if (name_width > 0) objLabelEdit->longest_text(name_width);
    lvw_Scripts->clear();
    for (int position = 1; position <= all.Count(); ++position) add_row(position);
    fit_columns();
    if (kept != 0) lvw_Scripts->setCurrentItem(row_of(kept));
    enable();
}

void UC_Scripte::add_row(int position) {
    const auto script = scripts::AktScripts().Item(position);
    const scripts::Script_Summary says = scripts::summary(*script);
    auto* row = new QTreeWidgetItem;
    row->setData(0, position_role, position);
    row->setData(0, script_role, script->ScriptID);
    if (has_flag(position)) {
        row->setCheckState(active_column, flag_of(active_, position));
        row->setData(active_column, Qt::AccessibleTextRole,
                     app::TextTable.text(list_table::active));
    }
    const int box = style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, lvw_Scripts);
    const int text = lvw_Scripts->fontMetrics().height();
    row->setSizeHint(active_column, {0, std::max(box, text) + list_row_space});
    row->setText(name_column, app::in_one_line(script->ScriptName));
    row->setText(keys_column, says.keys);
    row->setText(outputs_column, says.outputs);
    row->setText(cvs_column, says.cvs);
    lvw_Scripts->addTopLevelItem(row);
}

void UC_Scripte::show_active(store::Active_Scripts active) {
    active_ = active;
    for (int i = 0; i < lvw_Scripts->topLevelItemCount(); ++i)
        if (has_flag(i + 1))
            lvw_Scripts->topLevelItem(i)->setCheckState(active_column, flag_of(active, i + 1));
}

// Names need what they need, as long as there is room for one CV in each of the columns behind them.
// These share what is left, those of which more stands in them than fits alike. What then remains
// goes to the names.
void UC_Scripte::fit_columns() {
    const QHeaderView& header = *lvw_Scripts->header();
    const auto content = [this](int column) {
        QAbstractItemView& view = *lvw_Scripts; // where this is public
        return view.sizeHintForColumn(column);
    };
    const auto needed = [&](int column, int most) {
        return std::max(header.sectionSizeHint(column), std::min(content(column), most));
    };
    fitted_to_ = lvw_Scripts->viewport()->width();
    int left = fitted_to_;
    const auto give = [&](int column, int most) {
        const int width = needed(column, most);
        lvw_Scripts->setColumnWidth(column, width);
        left -= width;
    };
    give(active_column, fitted_to_);
    std::array sharing{keys_column, outputs_column, cvs_column};
    int reserved = 0;
    for (const int column : sharing) reserved += needed(column, width_of_one_cv(*lvw_Scripts));
    give(name_column,
         std::clamp(left - reserved, first_list_width(keys_column), first_list_width(name_column)));
    std::ranges::sort(sharing, {}, content);
    for (int to_serve = static_cast<int>(sharing.size()); const int column : sharing)
        give(column, left / to_serve--);
    if (left > 0) lvw_Scripts->setColumnWidth(name_column, header.sectionSize(name_column) + left);
    for (int column = 0; column < list_columns; ++column) {
        const bool cut = content(column) > header.sectionSize(column);
        for (int row = 0; row < lvw_Scripts->topLevelItemCount(); ++row) {
            QTreeWidgetItem& item = *lvw_Scripts->topLevelItem(row);
            item.setToolTip(column, cut ? item.text(column) : QString());
        }
    }
}

int UC_Scripte::chosen() const {
    const QList<QTreeWidgetItem*> rows = lvw_Scripts->selectedItems();
    return rows.isEmpty() ? 0 : listed_position(*rows.front());
}

QTreeWidgetItem* UC_Scripte::row_of(std::int32_t ScriptID) const {
    for (int i = 0; i < lvw_Scripts->topLevelItemCount(); ++i)
        if (listed_script(*lvw_Scripts->topLevelItem(i)) == ScriptID)
            return lvw_Scripts->topLevelItem(i);
    return nullptr;
}

void UC_Scripte::choose(int position) {
    lvw_Scripts->setCurrentItem(lvw_Scripts->topLevelItem(position - 1));
}

void UC_Scripte::enable() {
    const bool in_set = scripts::AktScripts().SetID != 0;
    cmd_Add->setEnabled(in_set);
    cmd_import->setEnabled(in_set);
    cmd_export->setEnabled(chosen() != 0);
}

// What the user does

// The list is still working on the click: it must not be filled anew under it.
void UC_Scripte::note_check(const QTreeWidgetItem& row) {
    const int position = listed_position(row);
    if (!has_flag(position)) return;
    const Qt::CheckState now = row.checkState(active_column);
    if (now == flag_of(active_, position)) return;
    QTimer::singleShot(0, this, [this, script = listed_script(row), now] {
        if (const QTreeWidgetItem* found = row_of(script))
            Q_EMIT active_wanted(listed_position(*found), now == Qt::Checked);
    });
}

bool UC_Scripte::over_check_box(const QPoint& place) const {
    const QModelIndex cell = lvw_Scripts->indexAt(place);
    if (cell.column() != active_column || !cell.data(Qt::CheckStateRole).isValid()) return false;
    QStyleOptionViewItem option;
    option.initFrom(lvw_Scripts);
    option.widget = lvw_Scripts;
    option.rect = lvw_Scripts->visualRect(cell);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    return lvw_Scripts->style()
        ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, lvw_Scripts)
        .contains(place);
}

bool UC_Scripte::key_pressed(const QKeyEvent& key) {
    const int position = chosen();
    if (position == 0 || (key.modifiers() & ~Qt::KeypadModifier) != 0) return false;
    switch (key.key()) {
    case Qt::Key_Delete:
        Q_EMIT delete_wanted(position);
        return true;
    case Qt::Key_F2:
        objLabelEdit->edit(position, name_column + 1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!key.isAutoRepeat()) Q_EMIT open_wanted(position);
        return true;
    case Qt::Key_Space:
        if (has_flag(position) && !key.isAutoRepeat())
            Q_EMIT active_wanted(position, flag_of(active_, position) != Qt::Checked);
        return true;
    default:
        return false;
    }
}

bool UC_Scripte::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lvw_Scripts)
        return event->type() == QEvent::KeyPress && key_pressed(*static_cast<QKeyEvent*>(event));
    if (event->type() == QEvent::MouseButtonDblClick) { // two clicks on the box are two clicks
        const auto* mouse = static_cast<QMouseEvent*>(event);
        double_opens_ =
            mouse->button() == Qt::LeftButton && !over_check_box(mouse->position().toPoint());
    }
    if (event->type() == QEvent::Resize && lvw_Scripts->viewport()->width() != fitted_to_)
        fit_columns();
    return false;
}

void UC_Scripte::set_tab_order(QWidget* before) {
    for (QWidget* next : {static_cast<QWidget*>(lvw_Scripts), static_cast<QWidget*>(cmd_Add),
                          static_cast<QWidget*>(cmd_import), static_cast<QWidget*>(cmd_export)}) {
        setTabOrder(before, next);
        before = next;
    }
}

} // namespace scripts_ui
