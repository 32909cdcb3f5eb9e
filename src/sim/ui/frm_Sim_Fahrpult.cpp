#include "sim/ui/frm_Sim_Fahrpult.h"

#include "sim/ui/cab_texts.h"

#include <QCloseEvent>
#include <QScreen>
#include <algorithm>
#include <utility>

namespace sim_ui {
namespace {

constexpr int rate_and_place = 256; ///< the rate of the ramp and its scroll bar together
constexpr timing::Milliseconds tick_of_rate{3};
const QSize frame_room{20, 60}; ///< what a desktop puts around a window, at most

void put(QLabel& label, const QString& text) {
    if (label.text() != text) label.setText(text);
}

void put_on_off(Light_Button& button, bool on, Light light) {
    button.show_state(text(on ? table::on : table::off), on ? light : Light::off);
}

Light of_direction(int direction) { return direction == 0 ? Light::green : Light::red; }

QString direction_text(int direction) {
    return text(direction == 0 ? table::moves_forward : table::moves_backward);
}

template <class Values>
void mark_differing(const Value_Array& labels, const Values& now, const Values& before) {
    for (std::size_t i = 0; i < now.size(); ++i) labels.values[i]->mark(now[i] != before[i]);
}

} // namespace

frm_Sim_Fahrpult::frm_Sim_Fahrpult(sim::Cab_Listener& listener, timing::Time& time,
                                   sim::Script_CV script_cv, desktop::Desktop& desktop,
                                   sim::Simulated_Decoder& decoder,
                                   std::shared_ptr<std::optional<app::Window_Place>> last_place)
    : listener_(listener), decoder_(decoder), drive_(decoder, std::move(script_cv)), form_(*this),
      Timer2_(time.tick_timer([this] { tick(); })), placer_(*this, desktop),
      last_place_(std::move(last_place)) {
    setObjectName(QStringLiteral("frm_Sim_Fahrpult"));
    setWindowTitle(text(own::title));
    setAttribute(Qt::WA_QuitOnClose, false); // the program ends with its main window
    connect_controls();
    connect_values(form_.events, &frm_Sim_Fahrpult::store_event);
    connect_values(form_.variables, &frm_Sim_Fahrpult::store_variable);
    connect_values(form_.decoder_values, &frm_Sim_Fahrpult::store_value);
    if (last_place_ && *last_place_)
        placer_.bring_to(**last_place_);
    else
        resize(form_.content->sizeHint().boundedTo(screen()->availableSize() - frame_room));
}

frm_Sim_Fahrpult::~frm_Sim_Fahrpult() { stop_simulation(); }

void frm_Sim_Fahrpult::load() {
    drive_.reset();
    form_.txt_cv3->setText(QStringLiteral("8"));
    for (std::size_t row = 0; row < shown_.size(); ++row) {
        shown_[row] = decoder_.Werte[row];
        put(*form_.decoder_values.values[row], QString::number(shown_[row]));
    }
    loaded_ = true;
    acted();
    show();
    form_.sli_speed->setFocus();
    listener_.AfterSimStart();
}

void frm_Sim_Fahrpult::closeEvent(QCloseEvent* event) {
    stop_simulation();
    event->accept();
}

void frm_Sim_Fahrpult::stop_simulation() {
    if (!loaded_ || std::exchange(Unloading_, true)) return;
    if (last_place_) *last_place_ = placer_.place();
    listener_.BeforeSimStop();
    Timer2_->enable(false);
    editors_.clear();
    listener_.AfterSimStop();
}

void frm_Sim_Fahrpult::connect_controls() {
    const auto on_click = [this](Light_Button* button, auto press) {
        connect(button, &QPushButton::clicked, this, [this, press] {
            press(drive_);
            acted();
        });
    };
    using Drive = sim::Cab_Drive;
    on_click(form_.cmd_richtung, [](Drive& drive) { drive.press_direction(); });
    on_click(form_.cmd_notstop, [](Drive& drive) { drive.press_stop(); });
    on_click(form_.cmd_Fahrsound, [](Drive& drive) { drive.press_sound(); });
    on_click(form_.cmd_MAN, [](Drive& drive) { drive.press_man(); });
    for (std::size_t i = 0; i < form_.cmd_func.size(); ++i)
        on_click(form_.cmd_func[i], [i](Drive& drive) { drive.press_key(static_cast<int>(i)); });
    for (std::size_t i = 0; i < form_.cmd_reed.size(); ++i)
        on_click(form_.cmd_reed[i], [i](Drive& drive) { drive.press_input(i); });
    connect(form_.sli_speed, &QSlider::valueChanged, this, [this](int value) {
        const int speed = sim::highest_step - value;
        if (speed == drive_.CabSpeed()) return; // it follows the stop button
        drive_.choose_speed(speed);
        acted();
    });
    connect(form_.txt_cv3, &QLineEdit::textChanged, this, &frm_Sim_Fahrpult::type_rate);
    connect(form_.spn_cv3, &QScrollBar::valueChanged, this,
            [this](int place) { form_.txt_cv3->setText(QString::number(rate_and_place - place)); });
}

// What is no number is replaced at once; an empty field waits for one.
void frm_Sim_Fahrpult::type_rate(const QString& typed) {
    const auto rate = sim::typed_rate(typed);
    if (!rate) return;
    const QString shown = QString::number(*rate);
    if (typed != shown) {
        form_.txt_cv3->setText(shown);
        return;
    }
    form_.spn_cv3->setValue(rate_and_place - *rate);
    Timer2_->interval(tick_of_rate * *rate);
}

void frm_Sim_Fahrpult::connect_values(Value_Array& labels,
                                      void (frm_Sim_Fahrpult::*store)(int, std::int16_t)) {
    auto editor = std::make_unique<ui_parts::LabelEditLab>();
    editor->Init({labels.values.begin(), labels.values.end()}, nullptr);
    for (std::size_t i = 0; i < labels.values.size(); ++i) {
        const auto start = [edit = editor.get(), i] { edit->start(static_cast<int>(i)); };
        for (Value_Label* each : {labels.captions[i], labels.values[i]})
            connect(each, &Value_Label::edit_wanted, editor.get(), start);
    }
    connect(editor.get(), &ui_parts::LabelEditLab::TextChanged, this,
            [this, &labels, store](int i, const QString& typed) {
                const auto value = sim::typed_value(typed);
                if (!value) return;
                labels.values[static_cast<std::size_t>(i)]->setText(typed);
                (this->*store)(i, *value);
                before_step_ = decoder_;
                listener_.CabActed();
            });
    editors_.push_back(std::move(editor));
}

void frm_Sim_Fahrpult::store_value(int i, std::int16_t value) {
    const auto row = static_cast<std::size_t>(i);
    decoder_.Werte[row] = value;
    shown_[row] = value;
    if (row == sim::drive_sound) show_controls();
}

void frm_Sim_Fahrpult::store_variable(int i, std::int16_t value) {
    decoder_.Variables[static_cast<std::size_t>(i)] = value;
}

void frm_Sim_Fahrpult::store_event(int i, std::int16_t value) {
    decoder_.Events[static_cast<std::size_t>(i)] = value;
}

void frm_Sim_Fahrpult::tick() {
    Timer2_->enable(false);
    drive_.tick();
    acted();
}

void frm_Sim_Fahrpult::acted() {
    before_step_ = decoder_;
    show_controls();
    show_decoder();
    // A new interval only after a tick: else the ramp would stand while the slider is moved.
    if (!Unloading_ && !Timer2_->enabled()) Timer2_->enable(true);
    if (!Unloading_) listener_.CabActed();
}

void frm_Sim_Fahrpult::show_timer(int value) { show_row(sim::timer_value, value); }

void frm_Sim_Fahrpult::step_done() {
    mark_changes();
    acted();
}

void frm_Sim_Fahrpult::mark_changes() {
    mark_differing(form_.decoder_values, decoder_.Werte, before_step_.Werte);
    mark_differing(form_.variables, decoder_.Variables, before_step_.Variables);
    mark_differing(form_.events, decoder_.Events, before_step_.Events);
}

void frm_Sim_Fahrpult::show_controls() {
    form_.sli_speed->setValue(sim::highest_step - drive_.CabSpeed());
    const int way = drive_.CabDirection();
    form_.cmd_richtung->show_state(text(way == 0 ? table::forward : table::backward),
                                   of_direction(way));
    const bool stopped = decoder_.DriveStop;
    form_.cmd_notstop->show_state(stopped ? text(own::stopped) : text(table::off),
                                  stopped ? Light::red : Light::off);
    put_on_off(*form_.cmd_Fahrsound, decoder_.Werte[sim::drive_sound] != 0, Light::green);
    put_on_off(*form_.cmd_MAN, drive_.CabManKey() != 0, Light::red);
    for (std::size_t i = 0; i < form_.cmd_func.size(); ++i)
        form_.cmd_func[i]->show_state(form_.cmd_func[i]->text(),
                                      drive_.CabKeys()[i] != 0 ? Light::green : Light::off);
    for (std::size_t i = 0; i < form_.cmd_reed.size(); ++i)
        form_.cmd_reed[i]->show_state(form_.cmd_reed[i]->text(),
                                      decoder_.ReedLevel[i] ? Light::red : Light::off);
}

// A row keeps the text as it was typed until its value changes.
void frm_Sim_Fahrpult::show_row(std::size_t row, int value) {
    if (std::exchange(shown_[row], value) != value)
        put(*form_.decoder_values.values[row], QString::number(value));
}

void frm_Sim_Fahrpult::show_decoder() {
    for (std::size_t row = 0; row < sim::wert_count; ++row)
        show_row(row,
                 row == sim::target_drive_step ? decoder_.EffectiveSpeed : decoder_.Werte[row]);
    const int moves = decoder_.Werte[sim::direction];
    form_.lab_istrichtung->show_state(direction_text(moves), of_direction(moves));
    const int wanted = decoder_.EffectiveDirection;
    form_.lab_sollrichtung->show_state(direction_text(wanted), of_direction(wanted));
    put(*form_.lab_speed, QString::number(drive_.shown_speed()));
    for (std::size_t i = 0; i < sim::variable_count; ++i)
        put(*form_.variables.values[i], QString::number(decoder_.Variables[i]));
    for (std::size_t i = 0; i < sim::event_count; ++i)
        put(*form_.events.values[i], event_text(decoder_.Events[i]));
    for (std::size_t i = 0; i < shown_outputs; ++i)
        form_.ProgressBar1[i]->setValue(std::clamp<int>(decoder_.Outputs[i], 0, highest_pwm));
}

} // namespace sim_ui
