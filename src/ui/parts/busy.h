#pragma once

#include <QGuiApplication>

namespace ui_parts {

/// Shows the pointer of a busy program while it lives.
class [[nodiscard]] Busy {
public:
    Busy() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Busy() { QGuiApplication::restoreOverrideCursor(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
};

} // namespace ui_parts
