#include "app/leaving_gate.h"

#include <QScopedValueRollback>
#include <algorithm>

namespace app {

/// One who was asked may have taken another one along.
bool Leaving_Gate::holds(const Work_Holder* holder) const {
    return std::ranges::find(holders_, holder) != holders_.end();
}

bool Leaving_Gate::pass() {
    if (asking_) return false;
    const QScopedValueRollback asking(asking_, true);
    const std::vector<Work_Holder*> latest_first(holders_.rbegin(), holders_.rend());
    for (Work_Holder* holder : latest_first)
        if (holds(holder) && !holder->may_leave()) return false;
    job_.end();
    return true;
}

void Leaving_Gate::pass_at_once() {
    const QScopedValueRollback asking(asking_, true), at_once(at_once_, true);
    const std::vector<Work_Holder*> latest_first(holders_.rbegin(), holders_.rend());
    for (Work_Holder* holder : latest_first)
        if (holds(holder)) holder->put_into_safety();
    job_.end();
}

} // namespace app
