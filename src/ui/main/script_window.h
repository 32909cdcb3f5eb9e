#pragma once

#include "scripts/ui/frm_script.h"
#include "scripts/ui/script_safety.h"
#include "ui/main/surroundings.h"

#include <QObject>
#include <QTimer>
#include <memory>

namespace ui_main {

/// Opens the script editor on scripts of the selected set, one at a time.
class Script_Window final : public QObject {
public:
    Script_Window(const Surroundings& at, scripts_ui::Make_Cab make_cab);

    /// Another script that is open is closed first, with its question.
    void Open_Script(int position);
    /// Scripts of this library that were not stored when the program had to end, each as a new one
    /// of its set.
    void offer_kept_scripts();
    /// @return false: a script stays open
    bool close();

private:
    bool take_kept_script(const scripts_ui::Kept_Script& kept);

    Surroundings at_;
    scripts_ui::Make_Cab make_cab_;
    std::unique_ptr<scripts_ui::frm_script> window_; ///< made when it is first needed
    QTimer tmr_reopen_;
    int waiting_ = 0; ///< position of the script that is to be opened
};

} // namespace ui_main
