// Linked into a program with windows, ends it when its first window has been painted and the
// picture has reached the display, so that whoever started it can measure how long that took.

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QTimer>
#include <QWindow>

#include <cstdlib>

namespace {

/// Sees the events of the whole program. A widget window is painted from within the expose event of
/// its QWindow, so once that has been handled, what is left is to send the picture off.
class First_Paint : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* window = qobject_cast<QWindow*>(object);
        if (window != nullptr && event->type() == QEvent::Expose && window->isExposed())
            QTimer::singleShot(0, this, [] {
                QGuiApplication::sync();
                std::_Exit(0);
            });
        return false;
    }
};

void watch() { qApp->installEventFilter(new First_Paint(qApp)); }

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watch)
