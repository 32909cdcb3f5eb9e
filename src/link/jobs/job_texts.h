#pragma once

#include "platform/timing/time.h"

#include <QString>

namespace link_jobs {

/// "noch etwa 1 min 20 s"
QString time_left(timing::Milliseconds left);
/// As log lines write it.
inline QString boolean_text(bool value) {
    return value ? QStringLiteral("Wahr") : QStringLiteral("Falsch");
}

} // namespace link_jobs
