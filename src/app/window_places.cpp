#include "app/window_places.h"

#include "app/mod_main.h"

#include <algorithm>

namespace app {
namespace {

// Where a stretch of the given length begins so that it lies between first and last.
Twips kept_between(Twips begin, Twips length, Twips first, Twips last) {
    return std::max(first, std::min(begin, last - length));
}

Rectangle kept_in(const Rectangle& window, const Rectangle& area) {
    const Twips left = kept_between(window.left, window.width(), area.left, area.right);
    const Twips top = kept_between(window.top, window.height(), area.top, area.bottom);
    return {left, top, left + window.width(), top + window.height()};
}

Rectangle with_frame(const Window_Place& place, const Frame& frame) {
    return {place.left, place.top, place.left + frame.left + place.width + frame.right,
            place.top + frame.top + place.height + frame.bottom};
}

const Rectangle& area_of(const Rectangle& window) {
    return globals.MonitorAreas[static_cast<std::size_t>(Monitor_Of_Form(window))];
}

std::int64_t common_area(const Rectangle& a, const Rectangle& b) {
    const std::int64_t width = (std::min(a.right, b.right) - std::max(a.left, b.left)).value;
    const std::int64_t height = (std::min(a.bottom, b.bottom) - std::max(a.top, b.top)).value;
    return width > 0 && height > 0 ? width * height : 0;
}

bool seen_in_full(const Rectangle& window) {
    std::int64_t seen = 0;
    for (const Rectangle& area : globals.MonitorAreas) seen += common_area(window, area);
    return seen >= common_area(window, window);
}

} // namespace

int Monitor_Of_Form(const Rectangle& window) {
    const Twips x = window.left + window.width() / 2;
    const Twips y = window.top + window.height() / 2;
    const auto& monitors = globals.MonitorRects;
    const auto found = std::find_if(monitors.begin(), monitors.end(), [&](const Rectangle& m) {
        return m.left < x && x < m.right && m.top < y && y < m.bottom;
    });
    return found == monitors.end() ? 0 : static_cast<int>(found - monitors.begin());
}

Rectangle Keep_Form_On_Monitor(const Rectangle& window) {
    return globals.MonitorAreas.empty() ? window : kept_in(window, area_of(window));
}

Window_Place place_on_screen(Window_Place wanted, const Frame& frame, const Inner_Size& least) {
    if (globals.MonitorAreas.empty()) return wanted;
    const auto cut_to = [&](const Rectangle& room) {
        const Twips highest = room.height() - frame.top - frame.bottom;
        const Twips widest = room.width() - frame.left - frame.right;
        wanted.height = std::max(least.height, std::min(wanted.height, highest));
        wanted.width = std::max(least.width, std::min(wanted.width, widest));
    };
    const Rectangle& desktop = globals.VirtualScreen;
    cut_to(desktop);
    Rectangle window = kept_in(with_frame(wanted, frame), {{}, {}, desktop.right, desktop.bottom});
    if (!seen_in_full(window)) {
        const Rectangle& area = area_of(window);
        cut_to(area);
        window.right = window.left + frame.left + wanted.width + frame.right;
        window.bottom = window.top + frame.top + wanted.height + frame.bottom;
        window = kept_in(window, area);
    }
    wanted.left = window.left;
    wanted.top = window.top;
    return wanted;
}

} // namespace app
