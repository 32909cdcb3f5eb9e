#pragma once

#include "ui/parts/label_edit.h"

#include <QLabel>
#include <vector>

namespace ui_parts {

/// Edits the captions of an array of labels in place, one at a time.
class LabelEditLab final : public Label_Edit {
    Q_OBJECT
public:
    /// @param labels in one widget @param owner destroys it, unless somebody else does so before
    void Init(const std::vector<QLabel*>& labels, QObject* owner);
    /// Begins an edit of label i, from 0; nothing for one that there is not.
    void start(int i);

Q_SIGNALS:
    void TextChanged(int i, const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    QWidget* edited() const override { return label(); }
    QString shown_text() const override;
    std::function<void()> news(const QString& text) override;
    void closed() override;

private:
    QLabel* label() const;
    void place();

    std::vector<QPointer<QLabel>> labels_;
    QPointer<QObject> label_; ///< that is edited
    int index_ = 0;
};

} // namespace ui_parts
