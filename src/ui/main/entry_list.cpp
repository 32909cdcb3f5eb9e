#include "ui/main/entry_list.h"

#include "app/one_line.h"
#include "ui/main/text_rows.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace ui_main {
namespace {

constexpr std::array ways{Qt::Key_Up,  Qt::Key_Down,   Qt::Key_Home,
                          Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown};

bool is_way(const QKeyEvent& event) {
    return std::find(ways.begin(), ways.end(), event.key()) != ways.end();
}

struct Collector final : store::List_Filler {
    std::vector<Entry_Model::Entry> entries;
    void clear() override { entries.clear(); }
    void add(const QString& text, std::int32_t key) override {
        entries.push_back({app::in_one_line(text), key});
    }
};

} // namespace

bool is_plain(const QKeyEvent& event) {
    return (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

int Entry_Model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant Entry_Model::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return entries_[static_cast<std::size_t>(index.row())].text;
}

void Entry_Model::replace(std::vector<Entry> entries) {
    beginResetModel();
    entries_ = std::move(entries);
    endResetModel();
}

Entry_List::Entry_List(QWidget* parent) : QListView(parent) {
    setModel(&model_);
    setItemDelegate(new Text_Rows(this));
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerItem);
}

void Entry_List::refill(const std::function<void(store::List_Filler&)>& fill) {
    const QScopedValueRollback guard(refilling_, true);
    Collector collector;
    fill(collector);
    const int place = verticalScrollBar()->value();
    model_.replace(std::move(collector.entries));
    doItemsLayout();
    verticalScrollBar()->setValue(place);
}

int Entry_List::count() const { return model_.rowCount(); }

std::int32_t Entry_List::key(int row) const {
    const auto& entries = model_.entries();
    return row >= 0 && row < count() ? entries[static_cast<std::size_t>(row)].key : 0;
}

std::optional<int> Entry_List::row_of(std::int32_t key) const {
    const auto& entries = model_.entries();
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const auto& entry) { return entry.key == key; });
    if (found == entries.end()) return {};
    return static_cast<int>(found - entries.begin());
}

int Entry_List::current_row() const { return currentIndex().row(); }

bool Entry_List::is_selected(int row) const {
    return selectionModel()->isSelected(model_.index(row));
}

std::vector<int> Entry_List::selected_rows() const {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::int32_t Entry_List::selected_key() const {
    if (selectionMode() == SingleSelection) {
        const std::vector<int> rows = selected_rows();
        return rows.empty() ? 0 : key(rows.front());
    }
    return is_selected(current_row()) ? key(current_row()) : 0;
}

std::vector<std::int32_t> Entry_List::selected_keys() const {
    std::vector<std::int32_t> keys;
    for (const int row : selected_rows()) keys.push_back(key(row));
    return keys;
}

std::vector<std::int32_t> Entry_List::keys_around(int row) const {
    std::vector<std::int32_t> keys;
    for (int i = std::max(row, 0); i < count(); ++i) keys.push_back(key(i));
    for (int i = std::min(row, count()) - 1; i >= 0; --i) keys.push_back(key(i));
    return keys;
}

void Entry_List::select_keys(const std::vector<std::int32_t>& keys, std::int32_t current) {
    if (const auto row = row_of(current))
        selectionModel()->setCurrentIndex(model_.index(*row), QItemSelectionModel::NoUpdate);
    const std::set<std::int32_t> wanted(keys.begin(), keys.end());
    QItemSelection selection;
    for (int row = 0; row < count(); ++row)
        if (wanted.contains(key(row))) selection.select(model_.index(row), model_.index(row));
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void Entry_List::select_row(int row) {
    selectionModel()->setCurrentIndex(model_.index(row), QItemSelectionModel::ClearAndSelect);
    scrollTo(currentIndex());
}

void Entry_List::go_to_row(int row) {
    selectionModel()->setCurrentIndex(model_.index(row), QItemSelectionModel::Clear);
    scrollTo(currentIndex());
}

void Entry_List::selectionChanged(const QItemSelection& now, const QItemSelection& before) {
    QListView::selectionChanged(now, before);
    if (!refilling_) Q_EMIT selection_changed();
}

void Entry_List::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete && is_plain(*event)) {
        Q_EMIT delete_pressed();
    } else if (event->matches(QKeySequence::Copy)) {
        Q_EMIT copy_pressed();
    } else if (event->matches(QKeySequence::Paste)) {
        Q_EMIT paste_pressed();
    } else {
        QListView::keyPressEvent(event);
        if (!is_way(*event) || !currentIndex().isValid()) return;
        if (is_plain(*event))
            Q_EMIT chosen();
        else
            Q_EMIT visited();
    }
}

void Entry_List::keyboardSearch(const QString& search) {
    QListView::keyboardSearch(search);
    Q_EMIT visited();
}

void Entry_List::selectAll() {
    if (selectionMode() == SingleSelection) return;
    QListView::selectAll();
    Q_EMIT visited();
}

QItemSelectionModel::SelectionFlags Entry_List::selectionCommand(const QModelIndex& index,
                                                                 const QEvent* event) const {
    if (selectionMode() != SingleSelection) return QListView::selectionCommand(index, event);
    return index.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

void Entry_List::mousePressEvent(QMouseEvent* event) {
    QListView::mousePressEvent(event);
    pressed_on_entry_ = indexAt(event->pos()).isValid();
    if (event->button() != Qt::LeftButton && pressed_on_entry_) Q_EMIT visited();
}

void Entry_List::mouseReleaseEvent(QMouseEvent* event) {
    QListView::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton) return;
    if (pressed_on_entry_ || indexAt(event->pos()).isValid()) Q_EMIT chosen();
}

void Entry_List::contextMenuEvent(QContextMenuEvent* event) {
    const bool by_key = event->reason() == QContextMenuEvent::Keyboard;
    const QPoint place = visualRect(currentIndex()).bottomLeft();
    Q_EMIT context_menu_wanted(by_key ? viewport()->mapToGlobal(place) : event->globalPos());
}

// The full text where the row has no room for it.
bool Entry_List::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QListView::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QModelIndex index = indexAt(help->pos());
    const bool cut = sizeHintForIndex(index).width() > visualRect(index).width();
    QToolTip::showText(help->globalPos(), cut ? index.data().toString().toHtmlEscaped() : QString(),
                       viewport());
    return true;
}

} // namespace ui_main
