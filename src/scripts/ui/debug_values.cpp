#include "scripts/ui/debug_values.h"

#include "app/mod_main.h"
#include "scripts/ui/debug_texts.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStringListModel>
#include <QWheelEvent>
#include <algorithm>

namespace scripts_ui {
namespace {

using sim::Value_Kind;
using sim::Value_Ref;

constexpr Value_Kind all_kinds[] = {Value_Kind::wert, Value_Kind::event,  Value_Kind::variable,
                                    Value_Kind::key,  Value_Kind::output, Value_Kind::input,
                                    Value_Kind::drive};
constexpr std::int32_t f0_slot = 28;

/// The values of a kind that anything ever changes, in the order in which people look for them.
std::vector<Value_Ref> offered(Value_Kind kind) {
    const bool keys = kind == Value_Kind::key;
    std::vector<Value_Ref> values;
    if (keys) values.push_back({kind, f0_slot});
    for (std::int32_t i = 0; i < (keys ? f0_slot : sim::value_count(kind)); ++i)
        values.push_back({kind, i});
    return values;
}

QString choice_text(Value_Ref value) {
    const QString form = debug_text::in_choice[static_cast<std::size_t>(value.kind)].toString();
    return form.arg(value_text(value));
}

/// Long names stand in full below a narrow box.
void show_in_full(QAbstractItemView& list, int width) {
    list.setMinimumWidth(width + list.verticalScrollBar()->sizeHint().width());
}

} // namespace

QString value_text(Value_Ref value) {
    const QString name = sim::name_of(value, app::globals.LanguageIndex);
    return value.kind == Value_Kind::drive ? debug_text::of_loco.toString().arg(name) : name;
}

QString condition_text(const sim::Condition& condition) {
    const QStringView sign = debug_text::signs[static_cast<std::size_t>(condition.comparison)];
    return debug_text::condition.toString().arg(value_text(condition.value), sign,
                                                QString::number(condition.number));
}

QString changes_text(const sim::Step& step) {
    QStringList changes;
    for (const sim::Change& change : step.changes())
        changes += debug_text::change.toString().arg(
            sim::name_of(change.value, app::globals.LanguageIndex), QString::number(change.before),
            QString::number(change.after));
    if (step.cycle_ended) changes += debug_text::cycle_end.toString();
    return changes.join(QStringLiteral(", "));
}

Value_Choice::Value_Choice(QWidget* parent) : QComboBox(parent) {
    setEditable(true);
    setInsertPolicy(NoInsert);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(12);
    setMaxVisibleItems(16);
    for (const Value_Kind kind : all_kinds) add_group(kind);
    add_search();
    show_none();
    connect(this, &QComboBox::activated, this, [this](int row) {
        if (const auto& taken = rows_[static_cast<std::size_t>(row)]) Q_EMIT chosen(*taken);
    });
    connect(lineEdit(), &QLineEdit::returnPressed, this, [this] {
        if (const auto named = value()) Q_EMIT chosen(*named);
    });
}

void Value_Choice::add_group(Value_Kind kind) {
    auto* entries = qobject_cast<QStandardItemModel*>(model());
    auto* heading =
        new QStandardItem(debug_text::groups[static_cast<std::size_t>(kind)].toString());
    heading->setFlags(Qt::NoItemFlags);
    QFont bold = font();
    bold.setBold(true);
    heading->setFont(bold);
    entries->appendRow(heading);
    rows_.emplace_back();
    for (const Value_Ref value : offered(kind)) {
        addItem(choice_text(value));
        rows_.emplace_back(value);
    }
}

void Value_Choice::add_search() {
    QStringList texts;
    int widest = 0;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (!rows_[row]) continue;
        texts += itemText(static_cast<int>(row));
        widest = std::max(widest, fontMetrics().horizontalAdvance(texts.back()));
    }
    auto* search = new QCompleter(this);
    search->setModel(new QStringListModel(texts, search));
    search->setFilterMode(Qt::MatchContains);
    search->setCaseSensitivity(Qt::CaseInsensitive);
    search->setMaxVisibleItems(maxVisibleItems());
    setCompleter(search);
    show_in_full(*search->popup(), widest);
}

void Value_Choice::show_value(Value_Ref value) {
    const auto row = std::ranges::find(rows_, std::optional(value));
    if (row == rows_.end()) // one that is not offered
        setEditText(value_text(value));
    else
        setCurrentIndex(static_cast<int>(row - rows_.begin()));
}

void Value_Choice::show_none() {
    setCurrentIndex(-1);
    clearEditText();
}

int Value_Choice::row_of_text() const {
    const QString text = currentText().trimmed();
    if (text.isEmpty()) return -1;
    int containing = -1;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!rows_[i]) continue;
        const int row = static_cast<int>(i);
        for (const QString& name : {itemText(row), value_text(*rows_[i])})
            if (name.compare(text, Qt::CaseInsensitive) == 0) return row;
        if (containing < 0 && itemText(row).contains(text, Qt::CaseInsensitive)) containing = row;
    }
    return containing;
}

std::optional<Value_Ref> Value_Choice::value() const {
    const int row = row_of_text();
    return row < 0 ? std::nullopt : rows_[static_cast<std::size_t>(row)];
}

void Value_Choice::showPopup() {
    show_in_full(*view(), view()->sizeHintForColumn(0));
    QComboBox::showPopup();
}

// The arrows look through the list instead of taking one value after the other.
void Value_Choice::keyPressEvent(QKeyEvent* event) {
    const bool arrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (arrow)
        showPopup();
    else
        QComboBox::keyPressEvent(event);
}

void Value_Choice::wheelEvent(QWheelEvent* event) { event->ignore(); }

} // namespace scripts_ui
