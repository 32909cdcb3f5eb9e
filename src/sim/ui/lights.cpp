#include "sim/ui/lights.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace sim_ui {
namespace {

constexpr int tint_percent = 35; ///< of the colour of selections, over the background

QColor colour_of(Light light) {
    return light == Light::green ? QColor(100, 255, 100) : QColor(255, 100, 100);
}

/// The looks of a lit control; its text is dark in dark palettes, too.
QPalette lit_palette(Light light) {
    if (light == Light::off) return {};
    QPalette lit;
    for (const QPalette::ColorRole role : {QPalette::Button, QPalette::Window})
        lit.setColor(role, colour_of(light));
    for (const QPalette::ColorRole role : {QPalette::ButtonText, QPalette::WindowText})
        lit.setColor(role, Qt::black);
    return lit;
}

QColor mixed(const QColor& over, const QColor& under, int percent) {
    const auto part = [percent](int a, int b) { return (a * percent + b * (100 - percent)) / 100; };
    return {part(over.red(), under.red()), part(over.green(), under.green()),
            part(over.blue(), under.blue())};
}

void show_caption(QLabel& label, const QString& caption) {
    if (label.text() != caption) label.setText(caption);
}

} // namespace

void Light_Button::show_state(const QString& caption, Light light) {
    if (text() != caption) setText(caption);
    if (isCheckable()) setChecked(light != Light::off);
    if (light_ == light) return;
    light_ = light;
    setPalette(lit_palette(light));
}

// Styles shade the colours of buttons as they like.
void Light_Button::paintEvent(QPaintEvent* event) {
    if (light_ == Light::off) {
        QPushButton::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = palette().color(QPalette::Button);
    painter.setBrush(isDown() ? colour.darker(115) : colour);
    painter.setPen(QPen(colour.darker(220), hasFocus() ? 2 : 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 2, 2);
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (!hasFocus()) return;
    painter.setPen(QPen(palette().color(QPalette::ButtonText), 1, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(4, 4, -5, -5));
}

Light_Label::Light_Label(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
}

void Light_Label::show_state(const QString& caption, Light light) {
    show_caption(*this, caption);
    if (light_ == light) return;
    light_ = light;
    setPalette(lit_palette(light));
}

Value_Label::Value_Label(QWidget* parent, Kind kind) : QLabel(parent), kind_(kind) {
    setTextFormat(Qt::PlainText);
    if (kind == Kind::caption) return;
    setFrameShape(QFrame::StyledPanel);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::IBeamCursor);
}

void Value_Label::mark(bool changed) {
    if (marked_ == changed) return;
    marked_ = changed;
    update();
}

void Value_Label::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Q_EMIT edit_wanted();
}

void Value_Label::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_F2:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        Q_EMIT edit_wanted();
        return;
    case Qt::Key_Up:
        focusPreviousChild();
        return;
    case Qt::Key_Down:
        focusNextChild();
        return;
    default:
        QLabel::keyPressEvent(event);
    }
}

void Value_Label::paintEvent(QPaintEvent* event) {
    if (kind_ == Kind::value) {
        QPainter painter(this);
        const QColor base = palette().color(QPalette::Base);
        const QColor tint = palette().color(QPalette::Highlight);
        painter.fillRect(rect(), marked_ ? mixed(tint, base, tint_percent) : base);
    }
    QLabel::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace sim_ui
