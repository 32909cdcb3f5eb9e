#include "scripts/ui/debug_condition.h"

#include "app/mod_main.h"
#include "scripts/catalogue/lists.h"
#include "scripts/ui/debug_texts.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace scripts_ui {
namespace {

template <class Widget>
Widget* known(Widget* widget, const char* name, QStringView says) {
    widget->setObjectName(QString::fromLatin1(name));
    widget->setAccessibleName(says.toString());
    return widget;
}

} // namespace

Condition_Dialog::Condition_Dialog(QWidget* parent, int line,
                                   const std::optional<sim::Condition>& condition)
    : QDialog(parent), without_(new QRadioButton(debug_text::without_condition.toString(), this)),
      with_(new QRadioButton(debug_text::only_if.toString(), this)),
      value_(known(new Value_Choice(this), "debug_condition_value", debug_text::condition_value)),
      comparison_(known(new QComboBox(this), "debug_condition_comparison",
                        debug_text::condition_comparison)),
      number_(known(new ui_parts::Number_Field(this, highest_number), "debug_condition_number",
                    debug_text::condition_number)),
      ok_(new QPushButton(debug_text::ok.toString(), this)),
      cancel_(new QPushButton(debug_text::cancel.toString(), this)) {
    setObjectName(QStringLiteral("debug_condition_dialog"));
    setWindowTitle(debug_text::condition_title.toString().arg(line));
    without_->setObjectName(QStringLiteral("debug_without_condition"));
    with_->setObjectName(QStringLiteral("debug_with_condition"));
    ok_->setObjectName(QStringLiteral("debug_condition_ok"));
    cancel_->setObjectName(QStringLiteral("debug_condition_cancel"));
    lay_out();
    show_condition(condition);
    connect_controls();
    enable();
    value_->setFocus();
}

void Condition_Dialog::lay_out() {
    using namespace scripts_catalogue;
    for (int i = 0; i < static_cast<int>(std::size(debug_text::signs)); ++i)
        comparison_->addItem(entry_text(List::comparison, i, app::globals.LanguageIndex));
    value_->setMinimumContentsLength(28);
    value_->lineEdit()->setPlaceholderText(debug_text::value_hint.toString());
    number_->setFixedWidth(number_->fontMetrics().horizontalAdvance(QStringLiteral("00000000")));
    ok_->setDefault(true);
    auto* comparing = new QHBoxLayout;
    for (QWidget* each : {static_cast<QWidget*>(with_), static_cast<QWidget*>(value_),
                          static_cast<QWidget*>(comparison_), static_cast<QWidget*>(number_)})
        comparing->addWidget(each);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok_);
    buttons->addWidget(cancel_);
    auto* rows = new QVBoxLayout(this);
    rows->setSizeConstraint(QLayout::SetFixedSize);
    rows->addWidget(without_);
    rows->addLayout(comparing);
    rows->addLayout(buttons);
}

void Condition_Dialog::show_condition(const std::optional<sim::Condition>& condition) {
    (condition ? with_ : without_)->setChecked(true);
    number_->set_number(condition ? condition->number : 0);
    if (!condition) return;
    value_->show_value(condition->value);
    comparison_->setCurrentIndex(condition->comparison);
}

// Who touches the condition wants one.
void Condition_Dialog::connect_controls() {
    const auto touched = [this] {
        with_->setChecked(true);
        enable();
    };
    connect(value_, &QComboBox::editTextChanged, this, touched);
    connect(comparison_, &QComboBox::currentIndexChanged, this, touched);
    connect(number_, &QLineEdit::textChanged, this, touched);
    connect(without_, &QRadioButton::toggled, this, &Condition_Dialog::enable);
    connect(value_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (const auto named = value_->value()) value_->show_value(*named);
    });
    connect(ok_, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void Condition_Dialog::enable() {
    ok_->setEnabled(without_->isChecked() || (value_->value() && !number_->text().isEmpty()));
}

std::optional<sim::Condition> Condition_Dialog::condition() const {
    const auto value = value_->value();
    if (without_->isChecked() || !value) return {};
    return sim::Condition{*value, comparison_->currentIndex(),
                          static_cast<std::int16_t>(number_->number())};
}

} // namespace scripts_ui
