// Saves what the X display shows as a PNG, as soon as a window has been painted on it.
//   screen_picture FILE.png        exit 0 saved, 1 nothing painted within 20 seconds or not writable
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QThread>
#include <cstdio>

namespace {

bool shows_a_window(const QImage& image) {
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            if (image.pixel(x, y) != image.pixel(image.width() - 1, image.height() - 1))
                return true;
    return false;
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: screen_picture FILE.png\n", stderr);
        return 1;
    }
    QElapsedTimer waited;
    waited.start();
    QImage image;
    while (waited.elapsed() < 20'000) {
        image = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        if (shows_a_window(image)) break;
        QThread::msleep(100);
    }
    QThread::msleep(500); // the first frame is up; let the rest of the start finish
    image = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    if (!shows_a_window(image) || !image.save(QString::fromLocal8Bit(argv[1]))) {
        std::fputs("screen_picture: no window to be seen, or the file cannot be written\n", stderr);
        return 1;
    }
    return 0;
}
