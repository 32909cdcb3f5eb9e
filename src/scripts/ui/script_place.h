#pragma once

#include "app/leaving_gate.h"
#include "platform/desktop/desktop.h"
#include "platform/files/disk.h"
#include "platform/timing/time.h"
#include "sim/surroundings.h"
#include "store/clsDBConn.h"

#include <functional>
#include <memory>

namespace scripts_ui {

/// Makes a cab that takes its timers from the simulation's clock.
using Make_Cab =
    std::function<std::unique_ptr<sim::Cab>(sim::Cab_Listener&, timing::Time&, sim::Script_CV)>;

/// What the main window gives to the script editor.
struct Script_Place {
    desktop::Desktop& desktop;
    files::Disk& disk;
    store::clsDBConn& database;
    app::Leaving_Gate& gate; ///< asks the editor before its set is left
    timing::Time& time;
    Make_Cab make_cab;
    std::function<void(const QString& sentence)> say; ///< at the foot of the main window
    std::function<void()> stored; ///< a script of the set was stored: the list shows it anew
};

} // namespace scripts_ui
