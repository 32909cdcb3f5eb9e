#pragma once

#include <QLabel>

namespace ui_main {

/// One sentence at the foot of the window; what has no room is elided and shown as a tooltip.
class Status_Line final : public QLabel {
    Q_OBJECT
public:
    explicit Status_Line(QWidget* parent);
    void say(const QString& sentence);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace ui_main
