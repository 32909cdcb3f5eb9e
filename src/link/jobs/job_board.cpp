#include "link/jobs/job_board.h"

#include <utility>

namespace link_jobs {

void Job_Board::show(const std::function<void(Job_Display&)>& change) {
    std::unique_lock lock(mutex_);
    change(news_.display);
    tell(std::move(lock));
}

void Job_Board::line(const QString& text) {
    std::unique_lock lock(mutex_);
    news_.lines.append(text);
    tell(std::move(lock));
}

void Job_Board::tell(std::unique_lock<std::mutex> lock) {
    const bool first = !std::exchange(waiting_, true);
    lock.unlock();
    if (first) wake_();
}

std::optional<Job_Board::News> Job_Board::fetch() {
    const std::lock_guard lock(mutex_);
    if (!std::exchange(waiting_, false)) return std::nullopt;
    return News{news_.display, std::exchange(news_.lines, {})};
}

} // namespace link_jobs
