#pragma once

#include "scripts/cls_script.h"

#include <QString>

namespace scripts {

/// What the script list says of a script: numbers and names in order, each once, with commas. A key
/// or output that comes from a script CV is called by it, behind those that are named.
struct Script_Summary {
    QString keys;    ///< that lines query
    QString outputs; ///< that lines switch
    QString cvs;     ///< script CVs that lines refer to and an import can move
};

/// @param script in decoder form
Script_Summary summary(const cls_script& script);

} // namespace scripts
