#pragma once

#include "link/jobs/transfer.h"

#include <QString>

class QDateTime;

namespace ui_main {

/// Why a job with a decoder could not do its work, and what the user can do; empty: it could.
QString failure_sentence(const link_jobs::Outcome& outcome);
/// What a loaded or written set has lost on the way: CVs that were refused or do not go there.
QString losses(const link_jobs::Outcome& outcome);
/// The name of a set that keeps what was read: decoder, date, and how far, if not to the end.
QString name_of_read(const link_jobs::Outcome& outcome, const QDateTime& date);

} // namespace ui_main
