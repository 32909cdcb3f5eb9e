#include "app/job_state.h"

#include "platform/failure/sure.h"

#include <utility>

namespace app {

void Job_State::end() {
    if (const auto end = end_) end(); // a copy: the job takes its own away when it ends
}

Job_State::Run::Run(Job_State& state, std::function<void()> end) : state_(state) {
    SURE(!state_.runs() && end);
    state_.end_ = std::move(end);
    Q_EMIT state_.changed();
}

Job_State::Run::~Run() {
    SURE(state_.runs());
    state_.end_ = nullptr;
    Q_EMIT state_.changed();
}

} // namespace app
