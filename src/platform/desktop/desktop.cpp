#include "platform/desktop/desktop.h"

namespace desktop {

QString with_extension(const QString& path, const QString& extension) {
    return path.endsWith(extension, Qt::CaseInsensitive) ? path : path + extension;
}

} // namespace desktop
