#include "ui/main/text_rows.h"

#include <QPainter>
#include <QTextLayout>

namespace ui_main {
namespace {

constexpr auto more_than_text =
    QStyle::State_Selected | QStyle::State_HasFocus | QStyle::State_MouseOver;

// Where the style puts the text of an item.
QRect place_of_text(const QStyleOptionViewItem& option) {
    const int margin =
        option.widget->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget);
    return option.rect.adjusted(margin + 1, 0, -margin - 1, 0);
}

QPalette::ColorGroup group_of(QStyle::State state) {
    if (!state.testFlag(QStyle::State_Enabled)) return QPalette::Disabled;
    return state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
}

// False, and nothing is drawn, if there is no room for the whole text.
bool draw_text(QPainter& painter, const QStyleOptionViewItem& option, const QString& text) {
    const QRect place = place_of_text(option);
    QTextLayout layout(text, option.font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (line.naturalTextWidth() > place.width()) return false;
    painter.setPen(option.palette.color(group_of(option.state), QPalette::Text));
    const int height = qCeil(line.height());
    layout.draw(&painter, QPoint(place.left(), place.top() + (place.height() - height) / 2));
    return true;
}

} // namespace

QSize Text_Rows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 4);
}

void Text_Rows::paint(QPainter* painter, const QStyleOptionViewItem& option,
                      const QModelIndex& index) const {
    if ((option.state & more_than_text) != 0 ||
        !draw_text(*painter, option, index.data().toString())) {
        QStyledItemDelegate::paint(painter, option, index);
    }
}

} // namespace ui_main
