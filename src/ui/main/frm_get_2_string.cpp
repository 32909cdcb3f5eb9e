#include "ui/main/frm_get_2_string.h"

#include "store/set_name.h"
#include "ui/main/number_field.h"
#include "ui/main/texts.h"

#include <QGridLayout>
#include <QHBoxLayout>

namespace ui_main {

frm_get_2_string::frm_get_2_string(QWidget* parent, int name_width)
    : QDialog(parent), Label1(new QLabel(text(Text::new_set_name), this)),
      Label2(new QLabel(text(Text::set_number), this)), Text1(new QLineEdit(this)),
      Text2(new Number_Field(this, highest_set_number)), lab_hint(new QLabel(this)),
      cmd_ok(new QPushButton(text(Text::ok), this)),
      cmd_cancel(new QPushButton(text(Text::cancel), this)), name_width_(name_width) {
    setObjectName(QStringLiteral("frm_get_2_string"));
    Label1->setObjectName(QStringLiteral("Label1"));
    Label2->setObjectName(QStringLiteral("Label2"));
    Text1->setObjectName(QStringLiteral("Text1"));
    Text2->setObjectName(QStringLiteral("Text2"));
    lab_hint->setObjectName(QStringLiteral("lab_hint"));
    cmd_ok->setObjectName(QStringLiteral("cmd_ok"));
    cmd_cancel->setObjectName(QStringLiteral("cmd_cancel"));
    Label1->setBuddy(Text1);
    Label2->setBuddy(Text2);
    Text1->setAccessibleName(Label1->text());
    Text2->setAccessibleName(Label2->text());
    Text1->setMinimumWidth(360);
    Text2->setMaximumWidth(100);
    cmd_ok->setDefault(true);

    auto* grid = new QGridLayout(this);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    grid->addWidget(Label1, 0, 0);
    grid->addWidget(Text1, 0, 1);
    grid->addWidget(Label2, 1, 0);
    grid->addWidget(Text2, 1, 1);
    grid->addWidget(lab_hint, 2, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmd_ok);
    buttons->addWidget(cmd_cancel);
    grid->addLayout(buttons, 3, 0, 1, 2);

    connect(cmd_ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmd_cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(Text1, &QLineEdit::textChanged, this, &frm_get_2_string::keep_width);
    connect(Text2, &Number_Field::too_high, this,
            [this](int highest) { lab_hint->setText(text(Text::number_too_high).arg(highest)); });
}

void frm_get_2_string::set_texts(const QString& caption, const QString& name,
                                 std::optional<int> number) {
    setWindowTitle(caption);
    Text1->setText(name);
    if (number) Text2->set_number(*number);
}

void frm_get_2_string::keep_width() {
    const QString given = Text1->text();
    const QString name = store::fitted_name(given, name_width_);
    if (name == given) return;
    const int cursor = Text1->cursorPosition();
    if (name.size() < given.size()) {
        cut_ = true;
        lab_hint->setText(text(Text::name_cut).arg(name_width_));
    }
    Text1->setText(name);
    Text1->setCursorPosition(cursor);
}

// A dialog that is shown before the desktop has activated it tells its first field that Tab has led
// there, which selects all of the text. The first key must not replace the name.
void frm_get_2_string::setVisible(bool visible) {
    QDialog::setVisible(visible);
    if (!visible) return;
    Text1->setFocus();
    Text1->end(false);
}

Two_Strings frm_get_2_string::Get_2_Strings() {
    if (exec() != QDialog::Accepted) return {};
    return {Text1->text(), Text2->text()};
}

} // namespace ui_main
