#include "sim/ui/cab_form.h"

#include "sim/ui/cab_texts.h"

#include <QGridLayout>
#include <QScrollArea>

namespace sim_ui {
namespace {

constexpr int keys_in_a_row = 6;
constexpr int gap = 6; ///< between controls and between groups of values, in pixels
constexpr int initial_rate_place = 256 - 8;

QString numbered(const char* name, std::size_t index) {
    return QString::fromLatin1(name) + u'_' + QString::number(index);
}

/// The layout of a frame, or of a part of one, with as little around it as looks well.
template <class Layout>
Layout* tight(QWidget* around) {
    auto* layout = around == nullptr ? new Layout : new Layout(around);
    layout->setContentsMargins(gap, gap, gap, gap);
    layout->setSpacing(gap);
    return layout;
}

Light_Button* new_button(QWidget* frame, const QString& name, const QString& title) {
    auto* button = new Light_Button(frame);
    button->setObjectName(name);
    button->setAccessibleName(title);
    button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    return button;
}

/// Room for a text and for a frame around it.
int room(const QWidget& widget, const QString& text) {
    return widget.fontMetrics().horizontalAdvance(text + QStringLiteral("00"));
}

/// Fills one column of the values from the top down.
class Value_Column {
public:
    Value_Column(QGroupBox& frame, QHBoxLayout& beside) : frame_(frame), rows_(new QGridLayout) {
        rows_->setHorizontalSpacing(gap);
        rows_->setVerticalSpacing(2);
        rows_->setColumnStretch(0, 1);
        beside.addLayout(rows_);
    }
    /// @param longest of the texts that the value shows
    void add(Value_Array& to, std::size_t index, const char* caption_name, const char* value_name,
             const QString& caption, const QString& tip, const QString& longest) {
        auto* label = new Value_Label(&frame_, Value_Label::Kind::caption);
        auto* value = new Value_Label(&frame_, Value_Label::Kind::value);
        label->setObjectName(numbered(caption_name, index));
        value->setObjectName(numbered(value_name, index));
        label->setText(caption);
        value->setMinimumWidth(room(*value, longest));
        value->setAccessibleDescription(caption);
        for (QLabel* each : {label, value}) each->setToolTip(tip);
        rows_->addWidget(label, row_, 0);
        rows_->addWidget(value, row_++, 1);
        if (to.values.size() <= index) {
            to.captions.resize(index + 1);
            to.values.resize(index + 1);
        }
        to.captions[index] = label;
        to.values[index] = value;
    }
    void leave_gap() { rows_->setRowMinimumHeight(row_++, gap); }
    void end() { rows_->setRowStretch(row_, 1); }

private:
    QGroupBox& frame_;
    QGridLayout* rows_;
    int row_ = 0;
};

} // namespace

Cab_Form::Cab_Form(QWidget& window) : content(new QWidget) {
    auto* scrolled = new QScrollArea(&window);
    scrolled->setFrameShape(QFrame::NoFrame);
    scrolled->setFocusPolicy(Qt::NoFocus);
    scrolled->setWidgetResizable(true);
    auto* all = new QVBoxLayout(&window);
    all->setContentsMargins(0, 0, 0, 0);
    all->addWidget(scrolled);

    auto* columns = tight<QHBoxLayout>(content);
    auto* driving = tight<QGridLayout>(nullptr);
    driving->setContentsMargins(0, 0, 0, 0);
    driving->addWidget(speed_frame(), 0, 0, 4, 1);
    driving->addWidget(direction_frame(), 0, 1);
    driving->addWidget(stop_frame(), 1, 1);
    driving->addWidget(ramp_frame(), 2, 1, 2, 1);
    driving->addWidget(keys_frame(), 0, 2, 3, 2);
    driving->addWidget(button_frame(text(table::drive_sound), cmd_Fahrsound, "cmd_Fahrsound"), 3,
                       2);
    driving->addWidget(button_frame(text(own::man), cmd_MAN, "cmd_MAN"), 3, 3);
    driving->addWidget(inputs_frame(), 4, 0, 1, 4);
    driving->setRowStretch(1, 1); // room that is left makes the stop and the keys larger
    columns->addLayout(driving);
    auto* inside = tight<QVBoxLayout>(nullptr);
    inside->setContentsMargins(0, 0, 0, 0);
    inside->addWidget(values_frame(), 1);
    inside->addWidget(outputs_frame());
    columns->addLayout(inside, 1);
    scrolled->setWidget(content);
}

// As on a throttle, up is faster, by hand, wheel and keys; the value counts from there down.
QGroupBox* Cab_Form::speed_frame() {
    QGroupBox* frame = new QGroupBox(text(own::throttle));
    sli_speed = new QSlider(Qt::Vertical, frame);
    sli_speed->setObjectName(QStringLiteral("sli_speed"));
    sli_speed->setAccessibleName(text(own::throttle));
    sli_speed->setRange(0, sim::highest_step);
    sli_speed->setValue(sim::highest_step);
    sli_speed->setInvertedAppearance(true);
    sli_speed->setInvertedControls(true);
    QPalette plain; // else it is filled where the speed is 0
    plain.setColor(QPalette::Highlight, plain.color(QPalette::Mid));
    sli_speed->setPalette(plain);
    lab_speed = new QLabel(frame);
    lab_speed->setObjectName(QStringLiteral("lab_speed"));
    lab_speed->setAlignment(Qt::AlignCenter);
    QFont large = lab_speed->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.5);
    lab_speed->setFont(large);
    auto* column = tight<QVBoxLayout>(frame);
    column->addWidget(sli_speed, 1, Qt::AlignHCenter);
    column->addWidget(lab_speed);
    return frame;
}

QGroupBox* Cab_Form::direction_frame() {
    QGroupBox* frame = new QGroupBox(text(table::direction));
    cmd_richtung = new_button(frame, QStringLiteral("cmd_richtung"), {});
    auto* rows = tight<QGridLayout>(frame);
    rows->addWidget(cmd_richtung, 0, 0, 1, 2);
    const auto label = [&](const char* name, const own::Text& caption, int row) {
        auto* made = new Light_Label(frame);
        made->setObjectName(QString::fromLatin1(name));
        rows->addWidget(new QLabel(text(caption), frame), row, 0);
        rows->addWidget(made, row, 1);
        return made;
    };
    lab_istrichtung = label("lab_istrichtung", own::direction_now, 1);
    lab_sollrichtung = label("lab_sollrichtung", own::direction_wanted, 2);
    return frame;
}

QGroupBox* Cab_Form::button_frame(const QString& title, Light_Button*& button, const char* name) {
    QGroupBox* frame = new QGroupBox(title);
    button = new_button(frame, QString::fromLatin1(name), title);
    button->setCheckable(true);
    tight<QHBoxLayout>(frame)->addWidget(button);
    return frame;
}

QGroupBox* Cab_Form::stop_frame() {
    return button_frame(text(own::stop), cmd_notstop, "cmd_notstop");
}

QGroupBox* Cab_Form::ramp_frame() {
    QGroupBox* frame = new QGroupBox(text(own::ramp));
    txt_cv3 = new QLineEdit(frame);
    txt_cv3->setObjectName(QStringLiteral("txt_cv3"));
    txt_cv3->setAccessibleName(text(own::ramp));
    txt_cv3->setMaximumWidth(room(*txt_cv3, QStringLiteral("00000")));
    spn_cv3 = new QScrollBar(Qt::Vertical, frame);
    spn_cv3->setObjectName(QStringLiteral("spn_cv3"));
    spn_cv3->setAccessibleName(text(own::ramp));
    spn_cv3->setRange(1, sim::highest_step);
    spn_cv3->setValue(initial_rate_place);
    auto* row = tight<QHBoxLayout>(frame);
    row->addWidget(txt_cv3);
    row->addWidget(spn_cv3);
    row->addStretch();
    return frame;
}

QGroupBox* Cab_Form::keys_frame() {
    QGroupBox* frame = new QGroupBox(text(table::functions));
    auto* grid = tight<QGridLayout>(frame);
    for (std::size_t key = 0; key < cmd_func.size(); ++key) {
        const QString caption = text(own::key) + QString::number(key);
        cmd_func[key] = new_button(frame, numbered("cmd_func", key), {});
        cmd_func[key]->setCheckable(true);
        cmd_func[key]->setText(caption);
        cmd_func[key]->setMinimumWidth(room(*frame, QStringLiteral("F28")));
        const int place = static_cast<int>(key);
        grid->addWidget(cmd_func[key], place / keys_in_a_row, place % keys_in_a_row);
    }
    return frame;
}

QGroupBox* Cab_Form::inputs_frame() {
    QGroupBox* frame = new QGroupBox(text(table::inputs));
    auto* row = tight<QHBoxLayout>(frame);
    for (std::size_t i = 0; i < cmd_reed.size(); ++i) {
        cmd_reed[i] = new_button(frame, numbered("cmd_reed", i), {});
        cmd_reed[i]->setCheckable(true);
        cmd_reed[i]->setToolTip(text(own::inputs_tip));
        cmd_reed[i]->setText(text(own::input) + QString::number(i + 1));
        row->addWidget(cmd_reed[i]);
    }
    return frame;
}

QGroupBox* Cab_Form::outputs_frame() {
    QGroupBox* frame = new QGroupBox(text(own::outputs));
    auto* grid = tight<QGridLayout>(frame);
    grid->setSpacing(2);
    const QString widest = output_caption(shown_outputs - 1);
    for (std::size_t i = 0; i < ProgressBar1.size(); ++i) {
        auto* bar = new QProgressBar(frame);
        auto* label = new QLabel(output_caption(i), frame);
        bar->setObjectName(numbered("ProgressBar1", i));
        bar->setAccessibleName(output_caption(i));
        bar->setOrientation(Qt::Vertical);
        bar->setTextVisible(false);
        bar->setRange(0, highest_pwm);
        bar->setValue(0);
        bar->setMinimumHeight(2 * highest_pwm);
        label->setObjectName(numbered("LabOutput", i));
        label->setAlignment(Qt::AlignCenter);
        for (QWidget* each : {static_cast<QWidget*>(bar), static_cast<QWidget*>(label)})
            each->setToolTip(text(own::outputs_tip));
        const int column = static_cast<int>(i);
        grid->addWidget(bar, 0, column, Qt::AlignHCenter);
        grid->addWidget(label, 1, column);
        grid->setColumnMinimumWidth(column, label->fontMetrics().horizontalAdvance(widest));
        grid->setColumnStretch(column, 1);
        ProgressBar1[i] = bar;
    }
    return frame;
}

// A click beside the values takes the focus, and so ends an edit.
QGroupBox* Cab_Form::values_frame() {
    Fra_Debug = new QGroupBox(text(table::values));
    Fra_Debug->setObjectName(QStringLiteral("Fra_Debug"));
    Fra_Debug->setFocusPolicy(Qt::ClickFocus);
    auto* columns = tight<QHBoxLayout>(Fra_Debug);
    columns->setSpacing(2 * gap);
    const QString number = QStringLiteral("000");
    const auto add_groups = [&](Value_Column& column, std::span<const Rows> groups) {
        for (const Rows& group : groups) {
            for (const std::size_t row : group)
                column.add(decoder_values, row, "LabWerte", "lab_SPW", value_caption(row),
                           value_tip(row), number);
            column.leave_gap();
        }
    };
    Value_Column left(*Fra_Debug, *columns);
    add_groups(left, first_column());
    left.end();
    Value_Column middle(*Fra_Debug, *columns);
    add_groups(middle, second_column());
    for (std::size_t i = 0; i < sim::variable_count; ++i)
        middle.add(variables, i, "LabVar", "lab_var", variable_caption(i), {}, number);
    middle.end();
    Value_Column right(*Fra_Debug, *columns);
    QString longest;
    for (int value = 0; value <= 2; ++value)
        if (event_text(value).size() > longest.size()) longest = event_text(value);
    for (std::size_t i = 0; i < sim::event_count; ++i)
        right.add(events, i, "LabEvent", "lab_event", text(own::event) + QString::number(i + 1),
                  text(own::events_tip), longest);
    right.end();
    return Fra_Debug;
}

} // namespace sim_ui
