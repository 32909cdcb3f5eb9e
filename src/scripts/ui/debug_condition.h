#pragma once

#include "scripts/ui/debug_values.h"
#include "sim/debugger.h"
#include "ui/parts/number_field.h"

#include <QDialog>
#include <QPushButton>
#include <QRadioButton>

namespace scripts_ui {

/// Asks on what condition the simulation stops before a line.
class Condition_Dialog final : public QDialog {
    Q_OBJECT
public:
    static constexpr int highest_number = 32767;

    Condition_Dialog(QWidget* parent, int line, const std::optional<sim::Condition>& condition);

    /// What has been accepted; nothing for a break point without a condition.
    std::optional<sim::Condition> condition() const;

private:
    void lay_out();
    void connect_controls();
    void show_condition(const std::optional<sim::Condition>& condition);
    void enable();

    QRadioButton* without_;
    QRadioButton* with_;
    Value_Choice* value_;
    QComboBox* comparison_;
    ui_parts::Number_Field* number_;
    QPushButton* ok_;
    QPushButton* cancel_;
};

} // namespace scripts_ui
