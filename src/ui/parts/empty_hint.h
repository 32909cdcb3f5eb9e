#pragma once

#include <QAbstractItemView>
#include <QString>

namespace ui_parts {

/// What an empty list says in grey instead of its entries. It is painted and no entry, so nothing
/// can select or count it; it is read out as the description of the list.
class Empty_Hint final : public QObject {
public:
    /// @param view has its model already, and lives longer than the hint: while it goes, its model
    ///        still tells of changes
    explicit Empty_Hint(QAbstractItemView& view);

    /// What is said from now on while the list is empty.
    void set_text(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool list_is_empty() const { return view_.model()->rowCount() == 0; }
    void update();

    QAbstractItemView& view_;
    QString text_;
};

} // namespace ui_parts
