#pragma once

#include <QString>

namespace ui_desktop {

/// Makes Qt's own dialogs, buttons and context menus speak German: with Qt's translations where
/// they are installed, else with the texts that we bring along. Call once, after the application
/// object is made.
void speak_german();
/// The same with Qt's translations from a folder.
void speak_german(const QString& translations);

} // namespace ui_desktop
