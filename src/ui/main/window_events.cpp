// Where the window stands, and what happens when it comes to the front or goes.

#include "app/mod_save_settings.h"
#include "ui/main/Frm_Main.h"
#include "ui/main/main_form.h"
#include "ui/main/texts.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <algorithm>

namespace ui_main {
namespace {

// A Wayland desktop does not tell programs where their windows stand, and moves them itself.
bool desktop_tells_places() { return !QGuiApplication::platformName().startsWith(u"wayland"); }

} // namespace

app::Window_Place Frm_Main::place() {
    const bool filling = isMaximized() || isMinimized() || isFullScreen();
    const QRect inside = filling ? normalGeometry() : geometry();
    app::Window_Place now{app::from_pixels(inside.height()), app::from_pixels(inside.width()),
                          stored_left_, stored_top_};
    if (!desktop_tells_places()) return now;
    const QPoint frame = geometry().topLeft() - frameGeometry().topLeft();
    now.left = app::from_pixels(inside.left() - frame.x());
    now.top = app::from_pixels(inside.top() - frame.y());
    return now;
}

void Frm_Main::move_to(const app::Window_Place& place) {
    stored_left_ = place.left;
    stored_top_ = place.top;
    const app::Twips highest = app::globals.VirtualScreen.height();
    resize(width(), app::to_pixels(std::min(place.height, highest)));
    const app::Window_Place kept = app::keep_on_screen(
        {app::from_pixels(height()), app::from_pixels(width()), place.left, place.top});
    move(app::to_pixels(kept.left), app::to_pixels(kept.top));
}

void Frm_Main::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) refill_if_changed();
}

// Another running copy of the program may have changed the library while this window was behind.
void Frm_Main::refill_if_changed() {
    if (!database_.Connection_Active()) return;
    const std::optional<std::uint64_t> now = database_.change_count();
    if (!now) {
        say_trouble();
        return;
    }
    if (std::exchange(shown_state_, *now) == *now) return;
    const std::int32_t SetID = form_->lst_sets->selected_key();
    const std::vector<std::int32_t> cvs = form_->lst_CVs->selected_keys();
    const std::int32_t current = form_->lst_CVs->key(form_->lst_CVs->current_row());
    const QString before = shown_set();
    const bool there = refill_sets(SetID);
    form_->lst_CVs->select_keys(cvs, current);
    if (!say_trouble() && !there && SetID != 0) say_set_gone(before);
}

void Frm_Main::unload() {
    if (std::exchange(unloaded_, true)) return;
    if (const auto trouble = app::shut_down(*this, disk_))
        say_and_log(text(Text::settings_not_saved), QString::fromUtf8(trouble->what()));
}

void Frm_Main::closeEvent(QCloseEvent* event) {
    unload();
    event->accept();
}

} // namespace ui_main
