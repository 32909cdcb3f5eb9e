#pragma once

#include "sim/SimDecoderState.h"
#include "sim/cab_drive.h"
#include "sim/ui/lights.h"

#include <QGroupBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QSlider>
#include <array>
#include <vector>

namespace sim_ui {

constexpr std::size_t shown_outputs = 16;
constexpr int highest_pwm = 31;

/// Values with their captions, by their index.
struct Value_Array {
    std::vector<Value_Label*> captions;
    std::vector<Value_Label*> values;
};

/// The controls of the cab, in reading order, and where they stand; what they do is another's.
class Cab_Form {
public:
    explicit Cab_Form(QWidget& window);

    QWidget* content; ///< all of it, of the size that it wants
    QSlider* sli_speed;
    QLabel* lab_speed;
    Light_Button* cmd_richtung;
    Light_Label* lab_istrichtung;
    Light_Label* lab_sollrichtung;
    Light_Button* cmd_notstop;
    QLineEdit* txt_cv3;
    QScrollBar* spn_cv3;
    std::array<Light_Button*, sim::cab_keys> cmd_func;
    Light_Button* cmd_Fahrsound;
    Light_Button* cmd_MAN;
    std::array<Light_Button*, sim::input_count> cmd_reed;
    std::array<QProgressBar*, shown_outputs> ProgressBar1;
    QGroupBox* Fra_Debug;
    Value_Array decoder_values;
    Value_Array variables;
    Value_Array events;

private:
    QGroupBox* speed_frame();
    QGroupBox* direction_frame();
    QGroupBox* stop_frame();
    QGroupBox* ramp_frame();
    QGroupBox* keys_frame();
    QGroupBox* button_frame(const QString& title, Light_Button*& button, const char* name);
    QGroupBox* inputs_frame();
    QGroupBox* outputs_frame();
    QGroupBox* values_frame();
};

} // namespace sim_ui
