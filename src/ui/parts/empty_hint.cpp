#include "ui/parts/empty_hint.h"

#include <QEvent>
#include <QPainter>

namespace ui_parts {
namespace {

constexpr int margin = 12; ///< around the text, in pixels

} // namespace

Empty_Hint::Empty_Hint(QAbstractItemView& view) : view_(view) {
    view.viewport()->installEventFilter(this);
    const QAbstractItemModel* model = view.model();
    connect(model, &QAbstractItemModel::modelReset, this, &Empty_Hint::update);
    connect(model, &QAbstractItemModel::rowsInserted, this, &Empty_Hint::update);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &Empty_Hint::update);
}

void Empty_Hint::set_text(const QString& text) {
    text_ = text;
    update();
}

void Empty_Hint::update() {
    const QString now = list_is_empty() ? text_ : QString();
    if (view_.accessibleDescription() == now) return;
    view_.setAccessibleDescription(now);
    view_.viewport()->update();
}

// The background is there when the event comes, and an empty list paints nothing over the text.
bool Empty_Hint::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Paint && list_is_empty()) {
        auto* viewport = static_cast<QWidget*>(watched);
        QPainter painter(viewport);
        painter.setPen(view_.palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport->rect().adjusted(margin, margin, -margin, -margin),
                         Qt::AlignCenter | Qt::TextWordWrap, text_);
    }
    return false;
}

} // namespace ui_parts
