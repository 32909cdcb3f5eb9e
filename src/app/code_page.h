#pragma once

#include <QByteArray>
#include <QString>

namespace app {

/// Windows-1252; the five bytes that it leaves undefined stay what they are.
QString from_code_page(const QByteArray& bytes);

/// @param replaced raised by each character that the code page does not have; it becomes "?"
QByteArray to_code_page(const QString& text, int& replaced);

} // namespace app
