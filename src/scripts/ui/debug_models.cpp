#include "scripts/ui/debug_models.h"

#include "app/mod_main.h"
#include "app/one_line.h"
#include "scripts/line_columns.h"
#include "scripts/ui/debug_texts.h"
#include "scripts/ui/debug_values.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <utility>

namespace scripts_ui {
namespace {

constexpr float tint_of_changed = 0.35F; ///< of the colour of selections, over the background

QVariant right_aligned() { return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter); }

/// Of a column that holds numbers or texts.
QVariant caption(QStringView text, bool numbers, int role) {
    if (role == Qt::TextAlignmentRole && numbers) return right_aligned();
    return role == Qt::DisplayRole ? text.toString() : QVariant();
}

bool holds_numbers(int trace_column) {
    return trace_column == Trace_Model::number || trace_column == Trace_Model::line ||
           trace_column == Trace_Model::next_line;
}

QString executed_text(const scripts::cls_Scriptstate& line) {
    const QString text = scripts::line_text(line, app::globals.LanguageIndex);
    const QString info = app::in_one_line(line.Info);
    return info.isEmpty() ? text : text + QStringLiteral(" – ") + info;
}

QVariant bold_font() {
    QFont bold;
    bold.setBold(true);
    return bold;
}

QVariant tint() {
    QColor colour = QGuiApplication::palette().color(QPalette::Highlight);
    colour.setAlphaF(tint_of_changed);
    return colour;
}

} // namespace

Trace_Model::Trace_Model(const sim::Debugger& debugger) : debugger_(debugger) {}

void Trace_Model::count_steps() {
    forgotten_ = forgotten_ || debugger_.recorded() < counted_;
    counted_ = debugger_.recorded();
    remembered_ = debugger_.step_count();
}

void Trace_Model::show_steps() {
    const std::uint64_t first = counted_ - remembered_;
    if (std::exchange(forgotten_, false) || first >= end_) { // no row stays
        beginResetModel();
        first_ = first;
        end_ = counted_;
        endResetModel();
        return;
    }
    if (first > first_) {
        beginRemoveRows({}, 0, static_cast<int>(first - first_) - 1);
        first_ = first;
        endRemoveRows();
    }
    if (counted_ > end_) {
        beginInsertRows({}, rowCount(), static_cast<int>(counted_ - first_) - 1);
        end_ = counted_;
        endInsertRows();
    }
}

// A view may ask between a step and the next count: for a moment it sees what it will see then.
std::optional<std::size_t> Trace_Model::step_of(int row) const {
    const std::uint64_t step = first_ + static_cast<std::uint64_t>(row);
    const std::uint64_t oldest = counted_ - remembered_;
    if (row < 0 || step < oldest || step - oldest >= debugger_.step_count()) return {};
    return step - oldest;
}

int Trace_Model::line_of(int row) const {
    const auto step = step_of(row);
    return step ? debugger_.step(*step).line : -1;
}

int Trace_Model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(end_ - first_);
}

int Trace_Model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QVariant Trace_Model::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const int column = index.column();
    const bool is_number = holds_numbers(column);
    if (role == Qt::TextAlignmentRole && is_number) return right_aligned();
    const bool wants_text = role == Qt::DisplayRole || (role == Qt::ToolTipRole && !is_number);
    const auto step = wants_text ? step_of(index.row()) : std::nullopt;
    return step ? text(*step, index.row(), column) : QVariant();
}

QString Trace_Model::text(std::size_t of_debugger, int row, int column) const {
    const sim::Step& step = debugger_.step(of_debugger);
    switch (column) {
    case number:
        return QString::number(first_ + static_cast<std::uint64_t>(row) + 1);
    case line:
        return QString::number(step.line);
    case command:
        return executed_text(debugger_.executed(of_debugger));
    case next_line:
        return step.left_for ? debug_text::left_script.toString().arg(*step.left_for)
                             : QString::number(step.next_line);
    default:
        return changes_text(step);
    }
}

QVariant Trace_Model::headerData(int section, Qt::Orientation way, int role) const {
    if (way != Qt::Horizontal) return {};
    if (role == Qt::ToolTipRole && section == next_line) return debug_text::next_tip.toString();
    return caption(debug_text::trace_columns[section], holds_numbers(section), role);
}

void Watch_Model::refresh() {
    std::vector<Watch_Row> rows;
    for (const sim::Watched& each : debugger_.watched(decoder_))
        rows.push_back({each.value, each.now, each.changed});
    replace(std::move(rows),
            [](const Watch_Row& a, const Watch_Row& b) { return a.value == b.value; });
}

int Watch_Model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QVariant Watch_Model::data(const QModelIndex& index, int role) const {
    const Watch_Row* at = row(index.row());
    if (at == nullptr) return {};
    const bool is_name = index.column() == name;
    switch (role) {
    case Qt::DisplayRole:
        return is_name ? value_text(at->value) : QString::number(at->now);
    case Qt::ToolTipRole:
        return is_name ? value_text(at->value) : QString();
    case Qt::TextAlignmentRole:
        return is_name ? QVariant() : right_aligned();
    case Qt::BackgroundRole:
        return at->changed ? tint() : QVariant();
    case Qt::FontRole:
        return at->changed && !is_name ? bold_font() : QVariant();
    case Qt::AccessibleDescriptionRole:
        return at->changed ? debug_text::changed.toString() : QString();
    default:
        return {};
    }
}

QVariant Watch_Model::headerData(int section, Qt::Orientation way, int role) const {
    if (way != Qt::Horizontal) return {};
    return caption(debug_text::watch_columns[section], section == now, role);
}

void Break_Model::refresh() {
    std::vector<Break_Row> rows;
    for (int at = 0; at < scripts::cls_script::max_states; ++at)
        if (debugger_.has_break(at)) rows.push_back({at, debugger_.condition_of(at)});
    replace(std::move(rows),
            [](const Break_Row& a, const Break_Row& b) { return a.line == b.line; });
}

int Break_Model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QVariant Break_Model::data(const QModelIndex& index, int role) const {
    const Break_Row* at = row(index.row());
    if (at == nullptr) return {};
    const bool is_line = index.column() == line;
    if (role == Qt::TextAlignmentRole && is_line) return right_aligned();
    if (role == Qt::DisplayRole && is_line) return QString::number(at->line);
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
    return at->condition ? condition_text(*at->condition)
                         : debug_text::without_condition.toString();
}

QVariant Break_Model::headerData(int section, Qt::Orientation way, int role) const {
    if (way != Qt::Horizontal) return {};
    return caption(debug_text::break_columns[section], section == line, role);
}

} // namespace scripts_ui
