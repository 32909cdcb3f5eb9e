#include "store/set_name.h"

namespace store {

QString fitted_name(QString name, int width) {
    name.replace(u'\r', u' ').replace(u'\n', u' ');
    if (name.size() <= width) return name;
    name.truncate(width);
    // a character of two units is not cut in half
    if (!name.isEmpty() && name.back().isHighSurrogate()) name.chop(1);
    return name;
}

} // namespace store
