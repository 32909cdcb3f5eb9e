#pragma once

#include "app/window_places.h"
#include "platform/desktop/desktop.h"

#include <QElapsedTimer>
#include <QObject>
#include <QWidget>
#include <optional>

namespace ui_parts {

/// Keeps the place of a top-level window: brings it to where the settings want it, with its frame
/// on the screen, and tells where it stands. A window that nobody has brought anywhere is brought
/// onto its monitor when it is shown. Monitors come and go: they are asked for each time.
///
/// What frame the desktop draws is known only once the window has been shown. The place is put
/// right then, as far as the frame makes a difference.
class Window_Placer final : public QObject {
public:
    /// @param window lives longer; its fixed width and its least height hold whatever is wanted
    Window_Placer(QWidget& window, desktop::Desktop& desktop);

    void bring_to(const app::Window_Place& wanted);

    /// Where the window stands, or stood before it filled the screen. Where the desktop does not
    /// tell (Wayland), left and top are those that were wanted last.
    app::Window_Place place() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    app::Window_Place fitted(const app::Frame& frame) const;
    void apply(const app::Frame& frame);
    void await_frame();
    bool frame_known();
    void put_right();

    QWidget& window_;
    desktop::Desktop& desktop_;
    app::Window_Place wanted_;
    std::optional<app::Window_Place> applied_; ///< what became of it
    bool shown_ = false;
    QElapsedTimer seen_; ///< runs from the first sight of the window
};

} // namespace ui_parts
