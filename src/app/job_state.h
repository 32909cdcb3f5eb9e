#pragma once

#include <QObject>
#include <functional>

namespace app {

/// Whether a job runs, for all who must not act meanwhile: commands, lists, fields, keys, pasting,
/// settings, filling anew. One job at a time; it works on copies of its own.
class Job_State final : public QObject {
    Q_OBJECT
public:
    bool runs() const { return end_ != nullptr; }
    /// Cancels the job and returns when it has ended; nothing where none runs.
    void end();

    /// A job runs while this lives.
    class Run {
    public:
        /// @param end cancels the job and waits until this is gone; the event loop may run
        /// meanwhile, and then it may be called again
        [[nodiscard]] Run(Job_State& state, std::function<void()> end);
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;
        ~Run();

    private:
        Job_State& state_;
    };

Q_SIGNALS:
    void changed(); ///< a job has begun or ended

private:
    std::function<void()> end_;
};

} // namespace app
