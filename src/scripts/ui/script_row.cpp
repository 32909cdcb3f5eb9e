#include "scripts/ui/script_row.h"

namespace scripts_ui {

Script_Row::Script_Row(QWidget* parent)
    : QWidget(parent), margin(new Break_Margin(this)), lab_nr(new Number_Label(this)),
      combo_Command(new Entry_Box(this)), txt_State_Info(nullptr) {
    for (Entry_Box*& box : combo_Param) box = new Entry_Box(this);
    txt_State_Info = new Info_Field(this);
}

void Script_Row::lay_out(const Columns& columns) {
    const int top = (columns.row_height - columns.field_height) / 2;
    const auto put = [&](QWidget* field, const Columns::Span& span) {
        field->setGeometry(span.left, top, span.width, columns.field_height);
    };
    put(margin, columns.margin);
    put(lab_nr, columns.number);
    put(combo_Command, columns.command);
    for (std::size_t i = 0; i < combo_Param.size(); ++i) put(combo_Param[i], columns.parameter[i]);
    txt_State_Info->setVisible(columns.info.width > 0);
    txt_State_Info->show_single_line(columns.single_line_info);
    if (columns.single_line_info)
        put(txt_State_Info, columns.info);
    else
        txt_State_Info->setGeometry(columns.info.left, 1, columns.info.width,
                                    columns.row_height - 2);
}

void Script_Row::name_after(int line) {
    if (line == line_) return;
    line_ = line;
    const auto name = [line](QWidget* field, const QString& kind, const QString& spoken) {
        field->setObjectName(QStringLiteral("%1_%2").arg(kind).arg(line));
        field->setAccessibleName(QStringLiteral("%1, State %2").arg(spoken).arg(line));
    };
    name(margin, QStringLiteral("break_margin"), QStringLiteral("Haltepunkt"));
    name(lab_nr, QStringLiteral("lab_nr"), QStringLiteral("Nummer"));
    name(combo_Command, QStringLiteral("combo_Command"), QStringLiteral("Befehl"));
    for (std::size_t i = 0; i < combo_Param.size(); ++i)
        name(combo_Param[i], QStringLiteral("combo_Param%1").arg(i + 1),
             QStringLiteral("Parameter %1").arg(i + 1));
    name(txt_State_Info, QStringLiteral("txt_State_Info"), QStringLiteral("Info"));
}

} // namespace scripts_ui
