#include "ui/parts/status_line.h"

#include "app/one_line.h"

#include <QPainter>
#include <QStyle>
#include <utility>

namespace ui_parts {

Status_Line::Status_Line(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setIndent(4);
}

void Status_Line::say(const QString& said) {
    const QString sentence = app::in_one_line(said);
    if (commands_ == 0 || !std::exchange(spoken_, true)) message_.clear();
    if (!message_.contains(sentence)) message_.append(sentence);
    last_ = sentence;
    show_message();
}

void Status_Line::forget() {
    if (commands_ > 0 && spoken_) return;
    message_.clear();
    last_.clear();
    show_message();
}

void Status_Line::show_message() {
    setText(message_.join(u' '));
    setToolTip(text().toHtmlEscaped());
}

void Status_Line::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect place = contentsRect().adjusted(indent(), 0, -indent(), 0);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, place.width());
    style()->drawItemText(&painter, place, Qt::AlignVCenter | Qt::AlignLeft, palette(), isEnabled(),
                          shown, foregroundRole());
}

} // namespace ui_parts
