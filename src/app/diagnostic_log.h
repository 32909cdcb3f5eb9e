#pragma once

#include "platform/files/disk.h"
#include "platform/timing/time.h"

#include <QString>

namespace app {

/// The file in the user's data folder that keeps what the status bar said and why: one line each,
/// UTF-8, with the time. Several copies of the program may write it at once.
class Diagnostic_Log {
public:
    /// Beyond this size the older half is dropped.
    static constexpr std::uint64_t max_size = std::uint64_t{1} << 20;

    Diagnostic_Log(files::Disk& disk, QString path, timing::Time& time = timing::real_time());
    /// Appends one line. @return false: the log cannot be written
    [[nodiscard]] bool write(const QString& line) noexcept;

private:
    files::Disk& disk_;
    QString path_;
    timing::Time& time_;
};

} // namespace app
