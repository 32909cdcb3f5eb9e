#include "link/jobs/job_thread.h"

namespace link_jobs {

// Signals that are sent in the thread reach this object's own thread as events.
Job_Thread::Job_Thread(Work work) : board_([this] { Q_EMIT news(); }) {
    thread_.reset(QThread::create([this, work = std::move(work)] { work(abort_, board_); }));
    connect(thread_.get(), &QThread::finished, this, &Job_Thread::ended);
    thread_->start();
}

Job_Thread::~Job_Thread() {
    cancel();
    wait();
}

void Job_Thread::wait() { thread_->wait(); }

} // namespace link_jobs
