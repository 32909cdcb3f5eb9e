#pragma once

#include <QString>

namespace app {

/// A text of the library as one line, whatever other programs have put into it: what would end the
/// line, or the text, is a blank.
QString in_one_line(QString text);

} // namespace app
