#pragma once

#include "app/twips.h"

namespace app {

/// What the desktop draws around a window: its title bar and borders.
struct Frame {
    Twips left;
    Twips top;
    Twips right;
    Twips bottom;
};

/// Of the inside of a window.
struct Inner_Size {
    Twips height;
    Twips width;
};

/// Index of the monitor that holds the window's centre, its edges not counted; 0 when none does.
int Monitor_Of_Form(const Rectangle& window);

/// The window, its frame included, moved and not resized, onto what panels leave of the monitor
/// that Monitor_Of_Form names. What is larger begins at the left or top edge.
Rectangle Keep_Form_On_Monitor(const Rectangle& window);

/// Where a window is to be shown that was wanted at a place which this desktop may not have:
/// nothing is outside the screen, and it is no larger than its monitor allows. A window that is
/// seen in full, on two monitors perhaps, stays where it is.
/// @param wanted of the settings, whatever stands there
/// @param least where that has no room, the top and the left are what is seen
Window_Place place_on_screen(Window_Place wanted, const Frame& frame, const Inner_Size& least);

} // namespace app
