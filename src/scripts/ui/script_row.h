#pragma once

#include "scripts/ui/row_fields.h"

#include <QWidget>
#include <array>

namespace scripts_ui {

/// Where the columns of the rows stand, in pixels from the left.
struct Columns {
    static constexpr int parameters = 4;
    struct Span {
        int left = 0, width = 0;
    };
    Span margin, number, command;
    std::array<Span, parameters> parameter;
    Span info; ///< no width: not shown
    int row_height = 0;
    int field_height = 0;
    bool single_line_info = true;
};

/// The widgets of one line. Which line they show changes while the view is scrolled; they are named
/// after it.
class Script_Row final : public QWidget {
    Q_OBJECT
public:
    explicit Script_Row(QWidget* parent);

    void lay_out(const Columns& columns);
    /// Names the widgets after the line that they show from now on.
    void name_after(int line);
    int line() const { return line_; }

    Break_Margin* margin;
    Number_Label* lab_nr;
    Entry_Box* combo_Command;
    std::array<Entry_Box*, Columns::parameters> combo_Param;
    Info_Field* txt_State_Info;

private:
    int line_ = -1;
};

} // namespace scripts_ui
