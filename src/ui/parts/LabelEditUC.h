#pragma once

#include "ui/parts/label_edit.h"

#include <QPersistentModelIndex>
#include <QTreeView>
#include <array>

namespace ui_parts {

/// Edits cells of a list with columns in place. Rows and columns count from 1. An edit whose row
/// goes while the list is filled anew ends quietly.
class LabelEditUC final : public Label_Edit {
    Q_OBJECT
public:
    static constexpr int most_columns = 16;

    /// @param owner destroys it, unless somebody else does so before
    void Init(QTreeView& view, QObject* owner);
    /// The cells of the column, 1..16, can be edited.
    void Activate_Col(int column);
    /// Begins an edit, where the column allows it, as a release of the right button over the cell
    /// does. Brings the cell into view.
    void edit(int row, int column);

Q_SIGNALS:
    void TextChanged(int row, int column, const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    QWidget* edited() const override { return view(); }
    QString shown_text() const override;
    std::function<void()> news(const QString& text) override;
    void closed() override;

private:
    QTreeView* view() const;
    bool may_edit(const QModelIndex& cell) const;
    void open_at(const QModelIndex& cell);
    void place();

    QPointer<QObject> view_;
    std::array<bool, most_columns> editable_{};
    QPersistentModelIndex cell_;
    QPointer<QAbstractItemModel> model_; ///< that is listened to
};

} // namespace ui_parts
