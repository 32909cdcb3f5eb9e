#include "ui/main/frm_get_2_string.h"

#include "ui/main/texts.h"
#include "ui/parts/name_field.h"
#include "ui/parts/number_field.h"

#include <QGridLayout>
#include <QHBoxLayout>

namespace ui_main {

frm_get_2_string::frm_get_2_string(QWidget* parent, int name_width)
    : QDialog(parent), Label1(new QLabel(text(Text::new_set_name), this)),
      Label2(new QLabel(text(Text::set_number), this)),
      Text1(new ui_parts::Name_Field(this, name_width)),
      Text2(new ui_parts::Number_Field(this, highest_set_number)), lab_hint(new QLabel(this)),
      cmd_ok(new QPushButton(text(Text::ok), this)),
      cmd_cancel(new QPushButton(text(Text::cancel), this)) {
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
    const QString name_cut = text(Text::name_cut).arg(name_width);
    const QString name_full = text(Text::name_full).arg(name_width);
    const QString too_high = text(Text::number_too_high).arg(highest_set_number);
    connect(Text1, &QLineEdit::textChanged, this,
            [=, this] { hint(name_hint_, Text1->was_cut() ? name_cut : QString()); });
    connect(Text1, &ui_parts::Name_Field::cut, this, [=, this] { hint(name_hint_, name_cut); });
    connect(Text1, &ui_parts::Name_Field::full, this, [=, this] { hint(name_hint_, name_full); });
    connect(Text2, &QLineEdit::textChanged, this, [this] { hint(number_hint_, {}); });
    connect(Text2, &ui_parts::Number_Field::too_high, this,
            [=, this] { hint(number_hint_, too_high); });
}

void frm_get_2_string::set_texts(const QString& caption, const QString& name,
                                 std::optional<int> number) {
    setWindowTitle(caption);
    Text1->setText(name);
    given_ = {name, Text1->text()};
    if (number) Text2->set_number(*number);
}

bool frm_get_2_string::name_was_cut() const {
    return Text1->was_cut() && Text1->text() != given_.second;
}

void frm_get_2_string::hint(QString& of_field, const QString& sentence) {
    of_field = sentence;
    QStringList hints{name_hint_, number_hint_};
    hints.removeAll({});
    lab_hint->setText(hints.join(u'\n'));
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
    const QString name = Text1->text();
    return {name == given_.second ? given_.first : name, Text2->text()};
}

} // namespace ui_main
