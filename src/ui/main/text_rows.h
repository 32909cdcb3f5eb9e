#pragma once

#include <QStyledItemDelegate>

namespace ui_main {

/// Rows with a little more room between them than the bare text would have. A row that is text and
/// nothing else, as nearly all are, is drawn here, to the same picture: the style would set each
/// text four times.
class Text_Rows final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

} // namespace ui_main
