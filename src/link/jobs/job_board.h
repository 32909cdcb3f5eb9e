#pragma once

#include "link/types/link_values.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <mutex>
#include <optional>

namespace link_jobs {

/// What a job shows of itself. Names are those of the labels that show it.
struct Job_Display {
    QString Label1;      ///< what it does, or how it ended
    QString lab_warnung; ///< what the decoder can take
    QString lab_decoder;
    QString lab_sn;        ///< serial number, or the CV that is read or written
    int ProgressBar1 = 0;  ///< 0..100
    QString lab_time_left; ///< empty: not known
    bool operator==(const Job_Display&) const = default;
};

/// Where a job leaves what it has to show and to log, and a window fetches it, each in its thread.
class Job_Board final : public link_types::Link_Log {
public:
    /// @param wake called in the job's thread when there is something to fetch and there was
    /// nothing before
    explicit Job_Board(std::function<void()> wake) : wake_(std::move(wake)) {}

    void show(const std::function<void(Job_Display&)>& change);
    void line(const QString& text) override;

    struct News {
        Job_Display display;
        QStringList lines;
    };
    /// All that has come since the last time; nothing: nothing.
    std::optional<News> fetch();

private:
    void tell(std::unique_lock<std::mutex> lock);

    std::function<void()> wake_;
    std::mutex mutex_;
    News news_;
    bool waiting_ = false; ///< there is something to fetch
};

} // namespace link_jobs
