#include "ui/parts/LabelEditUC.h"

#include <QHeaderView>
#include <QMouseEvent>

namespace ui_parts {

// The box still loses the focus when the view is half destroyed, and no view any more.
QTreeView* LabelEditUC::view() const { return qobject_cast<QTreeView*>(view_.data()); }

void LabelEditUC::Init(QTreeView& view, QObject* owner) {
    setParent(owner);
    if (QTreeView* before = this->view()) {
        before->viewport()->removeEventFilter(this);
        before->header()->disconnect(this);
    }
    make_box(*view.viewport());
    view_ = &view;
    view.viewport()->installEventFilter(this);
    connect(view.header(), &QHeaderView::geometriesChanged, this, &LabelEditUC::place);
    connect(view.header(), &QHeaderView::sectionResized, this, &LabelEditUC::place);
}

void LabelEditUC::Activate_Col(int column) {
    if (column >= 1 && column <= most_columns)
        editable_[static_cast<std::size_t>(column - 1)] = true;
}

bool LabelEditUC::may_edit(const QModelIndex& cell) const {
    return cell.isValid() && cell.column() < most_columns &&
           editable_[static_cast<std::size_t>(cell.column())];
}

void LabelEditUC::edit(int row, int column) {
    end();
    if (view() == nullptr || view()->model() == nullptr) return;
    const QModelIndex cell = view()->model()->index(row - 1, column - 1);
    if (!may_edit(cell)) return;
    view()->scrollTo(cell);
    open_at(cell);
}

// The view finds row and column, and knows how far it is scrolled.
bool LabelEditUC::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MouseButtonRelease || view() == nullptr ||
        watched != view()->viewport())
        return false;
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::RightButton) return false;
    end();
    if (view() == nullptr) return false;
    const QModelIndex cell = view()->indexAt(mouse->position().toPoint());
    if (may_edit(cell)) open_at(cell);
    return false;
}

void LabelEditUC::open_at(const QModelIndex& cell) {
    cell_ = cell;
    model_ = view()->model();
    const auto follow = [this](auto signal) { connect(model_, signal, this, [this] { place(); }); };
    follow(&QAbstractItemModel::modelReset);
    follow(&QAbstractItemModel::rowsInserted);
    follow(&QAbstractItemModel::rowsRemoved);
    follow(&QAbstractItemModel::rowsMoved);
    follow(&QAbstractItemModel::columnsRemoved);
    follow(&QAbstractItemModel::layoutChanged);
    connect(model_, &QObject::destroyed, this, &Label_Edit::drop);
    place();
    open();
}

void LabelEditUC::place() {
    if (model_ == nullptr) return;
    if (view() == nullptr || !cell_.isValid() || view()->model() != model_)
        drop();
    else
        box()->setGeometry(view()->visualRect(cell_));
}

QString LabelEditUC::shown_text() const { return cell_.data(Qt::DisplayRole).toString(); }

std::function<void()> LabelEditUC::news(const QString& text) {
    if (view() == nullptr || !cell_.isValid() || cell_.model() != view()->model()) return {};
    const int row = cell_.row() + 1;
    const int column = cell_.column() + 1;
    return [this, row, column, text] { Q_EMIT TextChanged(row, column, text); };
}

void LabelEditUC::closed() {
    if (model_ != nullptr) model_->disconnect(this);
    model_ = nullptr;
    cell_ = QPersistentModelIndex();
}

} // namespace ui_parts
