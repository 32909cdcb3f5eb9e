#include "link/jobs/job_texts.h"

namespace link_jobs {

QString time_left(timing::Milliseconds left) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(left).count();
    if (seconds < 60) return QStringLiteral("noch etwa %1 s").arg(seconds);
    return QStringLiteral("noch etwa %1 min %2 s").arg(seconds / 60).arg(seconds % 60);
}

} // namespace link_jobs
