#pragma once

#include <QString>

namespace app_ui {

enum class Text { title, port, search, folder, folder_hint, choose, ok, cancel };

QString text(Text which);

} // namespace app_ui
