#pragma once

#include <QString>

namespace store {

/// A name as the list and the column take it: one line, and no longer than `width` characters.
QString fitted_name(QString name, int width);

} // namespace store
