#include "ui/main/script_window.h"

#include "platform/timing/time.h"
#include "scripts/cls_script_coll.h"
#include "scripts/ui/UC_Scripte.h"
#include "ui/main/library_view.h"
#include "ui/main/main_form.h"
#include "ui/main/messages.h"

#include <utility>

namespace ui_main {

Script_Window::Script_Window(const Surroundings& at, scripts_ui::Make_Cab make_cab)
    : at_(at), make_cab_(std::move(make_cab)) {
    constexpr int milliseconds = 100;
    tmr_reopen_.setInterval(milliseconds);
    connect(&tmr_reopen_, &QTimer::timeout, this, [this] { Open_Script(waiting_); });
    connect(at.form.UC_Scripte1, &scripts_ui::UC_Scripte::open_wanted, this, [this](int position) {
        at_.messages.command([this, position] { Open_Script(position); })();
    });
    connect(&at.view, &Library_View::shown, this, [this] {
        if (window_) window_->scripts_loaded();
    });
}

void Script_Window::Open_Script(int position) {
    tmr_reopen_.stop();
    if (!scripts::AktScripts().exists(position)) return;
    if (window_ && window_->is_closing()) { // by a question that is still being asked
        waiting_ = position;
        tmr_reopen_.start();
        return;
    }
    if (!close()) return;
    if (!window_)
        window_ = std::make_unique<scripts_ui::frm_script>(scripts_ui::Script_Place{
            at_.desktop, at_.disk, at_.database, at_.gate, timing::real_time(), make_cab_, [this] {
                at_.view.note_state();
                at_.view.Redraw_Script_List();
            }});
    window_->open(position);
}

bool Script_Window::close() { return !window_ || window_->request_close(); }

} // namespace ui_main
