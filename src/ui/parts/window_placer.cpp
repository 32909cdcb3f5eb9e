#include "ui/parts/window_placer.h"

#include "app/mod_main.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace ui_parts {
namespace {

using app::from_pixels;
using app::to_pixels;

// Window managers tell the frame with or soon after the first sight of the window. What comes
// later is the user's own doing.
constexpr int longest_wait = 2000; ///< in milliseconds

// A Wayland desktop does not tell programs where their windows stand, and moves them itself.
bool desktop_tells_places() { return !QGuiApplication::platformName().startsWith(u"wayland"); }

app::Frame frame_of(const QMargins& margins) {
    return {from_pixels(margins.left()), from_pixels(margins.top()), from_pixels(margins.right()),
            from_pixels(margins.bottom())};
}

QMargins margins_of(const QWidget& window) {
    const QWindow* shown = window.windowHandle();
    return shown == nullptr ? QMargins() : shown->frameMargins();
}

bool has_no_place_now(const QWidget& window) {
    return window.isMaximized() || window.isMinimized() || window.isFullScreen();
}

} // namespace

Window_Placer::Window_Placer(QWidget& window, desktop::Desktop& desktop)
    : window_(window), desktop_(desktop) {
    window.installEventFilter(this);
}

void Window_Placer::bring_to(const app::Window_Place& wanted) {
    app::Get_Monitors(desktop_);
    wanted_ = wanted;
    wanted_.width = from_pixels(
        std::clamp(to_pixels(wanted.width), window_.minimumWidth(), window_.maximumWidth()));
    apply(frame_of(margins_of(window_)));
}

app::Window_Place Window_Placer::fitted(const app::Frame& frame) const {
    return app::place_on_screen(
        wanted_, frame,
        {from_pixels(window_.minimumHeight()), from_pixels(window_.minimumWidth())});
}

void Window_Placer::apply(const app::Frame& frame) {
    const app::Window_Place place = fitted(frame);
    window_.resize(to_pixels(place.width), to_pixels(place.height));
    window_.move(to_pixels(place.left), to_pixels(place.top));
    applied_ = place;
}

app::Window_Place Window_Placer::place() const {
    const QRect inside = has_no_place_now(window_) ? window_.normalGeometry() : window_.geometry();
    app::Window_Place now{from_pixels(inside.height()), from_pixels(inside.width()), wanted_.left,
                          wanted_.top};
    if (!desktop_tells_places()) return now;
    const QPoint frame = window_.geometry().topLeft() - window_.frameGeometry().topLeft();
    now.left = from_pixels(inside.left() - frame.x());
    now.top = from_pixels(inside.top() - frame.y());
    return now;
}

bool Window_Placer::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &window_) {
        if (event->type() == QEvent::Show && !event->spontaneous()) await_frame();
    } else if (frame_known()) {
        watched->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &Window_Placer::put_right, Qt::QueuedConnection);
    }
    return false;
}

void Window_Placer::await_frame() {
    if (applied_ && !std::exchange(shown_, true))
        bring_to(wanted_);
    else
        applied_.reset(); // where it is shown is the desktop's choice or, the next time, the user's
    seen_.invalidate();
    window_.windowHandle()->installEventFilter(this);
}

// Asked at everything that happens to the window, for no event says that the frame is known.
bool Window_Placer::frame_known() {
    if (!window_.windowHandle()->isExposed()) return false;
    if (!seen_.isValid()) seen_.start();
    return seen_.hasExpired(longest_wait) || !margins_of(window_).isNull();
}

void Window_Placer::put_right() {
    const app::Frame frame = frame_of(margins_of(window_));
    if (seen_.hasExpired(longest_wait) || has_no_place_now(window_)) return;
    if (!applied_)
        bring_to(place());
    else if (fitted(frame) != *applied_)
        apply(frame);
}

} // namespace ui_parts
