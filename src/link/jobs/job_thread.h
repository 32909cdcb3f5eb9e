#pragma once

#include "link/jobs/job_board.h"
#include "platform/timing/time.h"

#include <QObject>
#include <QThread>
#include <functional>
#include <memory>

namespace link_jobs {

/// A job in a thread of its own. The window's thread sees it through the board, and it sees the
/// window through one flag.
class Job_Thread final : public QObject {
    Q_OBJECT
public:
    /// Runs in the thread. What it needs it owns, or it outlives the thread.
    using Work = std::function<void(timing::Interruption& abort, Job_Board& board)>;

    /// Begins at once.
    explicit Job_Thread(Work work);
    ~Job_Thread() override; ///< cancels and waits

    void cancel() { abort_.raise(); }
    bool cancelled() const { return abort_.raised(); }
    void wait();
    Job_Board& board() { return board_; }

Q_SIGNALS:
    void news();  ///< the board has something to fetch
    void ended(); ///< the work has returned; comes after all news

private:
    timing::Interruption abort_;
    Job_Board board_;
    std::unique_ptr<QThread> thread_;
};

} // namespace link_jobs
