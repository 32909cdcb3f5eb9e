#pragma once

#include "scripts/cls_script.h"

#include <functional>
#include <memory>

namespace sim {

/// The editor, as the simulation needs it.
class Simulated_Script {
public:
    virtual ~Simulated_Script() = default;
    /// What is run, in editor form; nothing while no script is open.
    virtual const scripts::cls_script* working_script() const = 0;
    /// The simulation has gone from one line to another: marks it and scrolls to it.
    virtual void line_changed(int old_line, int new_line) = 0;
};

/// The window from which the simulated loco is driven. Destroying it closes it, and tells the
/// listener so as closing by hand does.
class Cab {
public:
    virtual ~Cab() = default;
    virtual void show_timer(int value) = 0;
    /// A step is done: shows what it changed, marks what differs from before it.
    virtual void step_done() = 0;
};

/// What a cab tells, in the order of its life.
class Cab_Listener {
public:
    virtual ~Cab_Listener() = default;
    virtual void AfterSimStart() = 0;
    virtual void BeforeSimStop() = 0; ///< closing begins
    /// The decoder has changed: by a step that was shown, a control, the ramp or by hand.
    virtual void CabActed() {}
    virtual void AfterSimStop() = 0; ///< closed; whoever destroys the cab for it does so later
};

/// Makes a cab and shows it.
using Make_Cab = std::function<std::unique_ptr<Cab>(Cab_Listener&)>;
/// The value of a CV in the current set; 0 for one that the set has not.
using Script_CV = std::function<int(int cv)>;

} // namespace sim
