#pragma once

#include <QLabel>
#include <QPushButton>

namespace sim_ui {

/// How a control shows its state: on or forward, active or reverse.
enum class Light { off, green, red };

/// A button that is lit. The colour is the same in all styles and in the dark.
class Light_Button final : public QPushButton {
    Q_OBJECT
public:
    using QPushButton::QPushButton;
    void show_state(const QString& caption, Light light);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Light light_ = Light::off;
};

/// A label that is lit.
class Light_Label final : public QLabel {
    Q_OBJECT
public:
    explicit Light_Label(QWidget* parent);
    void show_state(const QString& caption, Light light);

private:
    Light light_ = Light::off;
};

/// A value, or its caption; a click on either wants to edit the value. A value can be reached and
/// edited from the keyboard, too.
class Value_Label final : public QLabel {
    Q_OBJECT
public:
    enum class Kind { caption, value };
    Value_Label(QWidget* parent, Kind kind);

    /// Tints the value: it has changed.
    void mark(bool changed);
    bool marked() const { return marked_; }

Q_SIGNALS:
    void edit_wanted();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Kind kind_;
    bool marked_ = false;
};

} // namespace sim_ui
