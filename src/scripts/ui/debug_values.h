#pragma once

#include "sim/debugger.h"

#include <QComboBox>
#include <optional>
#include <vector>

namespace scripts_ui {

QString value_text(sim::Value_Ref value);
QString condition_text(const sim::Condition& condition); ///< "Timer-Wert > 5"
QString changes_text(const sim::Step& step);             ///< "Timer-Wert 0 → 5, FA1 0 → 31"

/// A choice of one value of the simulated decoder, which can be searched by typing a part of its
/// name or group. No value at first.
class Value_Choice final : public QComboBox {
    Q_OBJECT
public:
    explicit Value_Choice(QWidget* parent);

    void show_value(sim::Value_Ref value);
    void show_none();
    /// The value whose name stands there, else the first whose name contains what stands there.
    std::optional<sim::Value_Ref> value() const;

    void showPopup() override;

Q_SIGNALS:
    /// The user took an entry, or ended what he typed with Enter.
    void chosen(sim::Value_Ref value);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void add_group(sim::Value_Kind kind);
    void add_search();
    int row_of_text() const; ///< -1 for none

    std::vector<std::optional<sim::Value_Ref>> rows_; ///< nothing for the heading of a group
};

} // namespace scripts_ui
