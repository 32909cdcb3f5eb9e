// The clipboard half of the desktop.

#include "ui/desktop/qt_desktop.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace ui_desktop {
namespace {

// Not registered, so no other program can take it for something of its own.
const QString own_format = QStringLiteral("application/x-cv-sets");

} // namespace

desktop::Clipboard Qt_Desktop::Get_Clipboard_Text() {
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    if (held == nullptr) return {};
    return {held->text(), QString::fromUtf8(held->data(own_format))};
}

bool Qt_Desktop::Set_Clipboard_Text(const desktop::Clipboard& content) {
    auto* given = new QMimeData;
    given->setText(content.text);
    if (!content.own.isEmpty()) given->setData(own_format, content.own.toUtf8());
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->setMimeData(given);
    return clipboard->text() == content.text;
}

} // namespace ui_desktop
